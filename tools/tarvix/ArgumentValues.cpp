#include "tools/tarvix/ArgumentValues.h"

#include "tarvix/master/clsLIN.h"
#include "tools/tarvix/Text.h"

#include <charconv>
#include <optional>

namespace Tarvix::Tool {

namespace {

[[noreturn]] void Refuse(std::string_view Text, std::string_view Reason)
{
    throw ArgumentError(std::string("\"").append(Text).append("\" ").append(Reason));
}

/// The number that is all of `Text`.
template <typename Number, typename Form>
std::optional<Number> WholeText(std::string_view Text, Form Base)
{
    Number Value{};
    const char* const End = Text.data() + Text.size();
    const auto [Stop, Failure] = std::from_chars(Text.data(), End, Value, Base);
    return Failure == std::errc{} && Stop == End ? std::optional(Value) : std::nullopt;
}

std::optional<std::uint8_t> HexadecimalByte(std::string_view Text)
{
    if (Text.starts_with("0x") || Text.starts_with("0X")) {
        Text.remove_prefix(2);
    }
    return Text.size() <= 2 ? WholeText<std::uint8_t>(Text, 16) : std::nullopt;
}

} // namespace

std::uint8_t ParseIdentifier(std::string_view Text)
{
    constexpr std::uint8_t Last = 0x3F;
    const std::optional<std::uint8_t> Value = HexadecimalByte(Text);
    if (!Value) {
        Refuse(Text, "is no frame identifier; give a hexadecimal number from 00 to 3F.");
    }
    if (*Value > Last) {
        const auto Identifier = static_cast<std::uint8_t>(*Value & Last);
        std::string Reason = "is no frame identifier: those end at 3F.";
        if (clsLIN::ComputeIDParity(Identifier) == *Value) {
            Reason.append(" It is the protected form of ").append(HexByte(Identifier));
            Reason.append("; give that, the parity bits are added to it.");
        }
        Refuse(Text, Reason);
    }
    return *Value;
}

std::uint8_t ParseByte(std::string_view Text)
{
    const std::optional<std::uint8_t> Value = HexadecimalByte(Text);
    if (!Value) {
        Refuse(Text, "is no byte; give one or two hexadecimal digits, for example 0A.");
    }
    return *Value;
}

std::int32_t ParseDataLength(std::string_view Text)
{
    const auto Value = WholeText<std::int32_t>(Text, 10);
    if (!Value || *Value < 1 || *Value > 8) {
        Refuse(Text, "is no frame length; a frame carries 1 to 8 data bytes, the checksum not counted.");
    }
    return *Value;
}

std::int32_t ParseBitRate(std::string_view Text)
{
    const auto Value = WholeText<std::int32_t>(Text, 10);
    if (!Value || *Value < 1) {
        Refuse(Text, "is no bit rate; give bits per second as a whole number, for example 19200.");
    }
    return *Value;
}

float ParseBreakWidth(std::string_view Text)
{
    const auto Value = WholeText<float>(Text, std::chars_format::general);
    if (!Value || !(*Value >= 0.125F && *Value <= 1000.0F)) {
        Refuse(Text, "is no break width; give bit times from 0.125 to 1000, for example 13.");
    }
    return *Value;
}

} // namespace Tarvix::Tool
