#include "tests/support/FakeTransport.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Pellumo::Testing {

namespace {

std::string TextOf(std::span<const std::uint8_t> Out, std::size_t In)
{
    constexpr std::string_view Digits = "0123456789ABCDEF";
    std::string Text;
    for (const std::uint8_t Byte : Out) {
        Text.append(Text.empty() ? "" : " ").append({Digits[Byte >> 4], Digits[Byte & 15]});
    }
    return In == 0 ? Text : Text.append(" <").append(std::to_string(In));
}

} // namespace

void FakeTransport::Count(std::string Call)
{
    if (Record_.BeforeCall) {
        Record_.BeforeCall(Record_.Calls.size());
    }
    Record_.Calls.push_back(std::move(Call));
}

void FakeTransport::Transfer(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In,
                             std::chrono::nanoseconds Limit)
{
    Count(TextOf(Out, In.size()));
    Record_.Transfers.push_back({{Out.begin(), Out.end()}, In.size(), Limit});
    constexpr std::size_t ShiftHeader = 3;
    if (Out.front() == 0xAA) {
        std::copy_n(Record_.BogusAnswer.begin(), std::min(In.size(), Record_.BogusAnswer.size()), In.begin());
    } else if (Out.size() >= In.size() + ShiftHeader) {
        std::transform(Out.begin() + ShiftHeader, Out.begin() + ShiftHeader + std::ssize(In), In.begin(),
                       [](std::uint8_t Byte) { return static_cast<std::uint8_t>(~Byte); });
    }
}

} // namespace Pellumo::Testing
