#include "tools/tarvix/Text.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <string_view>

namespace Tarvix::Tool {

namespace {

constexpr std::string_view Digits = "0123456789ABCDEF";

std::string Hexadecimal(std::uint32_t Value, int Width)
{
    std::string Text;
    for (int Shift = 4 * (Width - 1); Shift >= 0; Shift -= 4) {
        Text += Digits[Value >> Shift & 0xF];
    }
    return Text;
}

} // namespace

std::string HexByte(std::uint8_t Value)
{
    return std::string("0x").append(Hexadecimal(Value, 2));
}

std::string HexBytes(std::span<const std::uint8_t> Bytes, const char* Separator)
{
    std::string Text;
    for (const std::uint8_t Byte : Bytes) {
        if (!Text.empty()) {
            Text += Separator;
        }
        Text += Hexadecimal(Byte, 2);
    }
    return Text;
}

std::string ErrorNumber(std::int32_t Number)
{
    return Number < 0 ? std::string("0x").append(Hexadecimal(static_cast<std::uint32_t>(Number), 8))
                      : std::to_string(Number);
}

std::string Fixed(double Value, int Decimals)
{
    std::array<char, 400> Buffer{}; // the largest 64-bit float has 309 digits before the point
    const auto End =
        std::to_chars(Buffer.data(), Buffer.data() + Buffer.size(), Value, std::chars_format::fixed, Decimals);
    const std::string_view Text(Buffer.data(), static_cast<std::size_t>(End.ptr - Buffer.data()));
    const bool IsMinusZero = Text.starts_with('-') && Text.find_first_of("123456789") == std::string_view::npos;
    return std::string(Text.substr(IsMinusZero ? 1 : 0));
}

} // namespace Tarvix::Tool
