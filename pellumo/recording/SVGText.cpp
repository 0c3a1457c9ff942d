#include "pellumo/recording/SVGText.h"

#include <array>
#include <charconv>

namespace Pellumo {

std::string EscapeXML(std::string_view Text)
{
    std::string Escaped;
    for (const char Character : Text) {
        switch (Character) {
        case '&': Escaped += "&amp;"; break;
        case '<': Escaped += "&lt;"; break;
        case '>': Escaped += "&gt;"; break;
        case '"': Escaped += "&quot;"; break;
        default: Escaped += static_cast<unsigned char>(Character) < 0x20 ? ' ' : Character;
        }
    }
    return Escaped;
}

std::string Tenths(std::int64_t Value)
{
    std::string Text = std::to_string(Value / 10);
    if (Value % 10 != 0) {
        Text.append(1, '.').append(1, static_cast<char>('0' + Value % 10));
    }
    return Text;
}

std::string BitTimes(std::int64_t Samples)
{
    constexpr std::array<const char*, 8> Eighths{"", ".125", ".25", ".375", ".5", ".625", ".75", ".875"};
    return std::to_string(Samples / 8).append(Eighths[static_cast<std::size_t>(Samples % 8)]);
}

std::string Decimal(double Value, int Digits)
{
    std::array<char, 64> Text{};
    const auto [End, Failure] =
        std::to_chars(Text.data(), Text.data() + Text.size(), Value, std::chars_format::fixed, Digits);
    return {Text.data(), End};
}

std::string TwoDigits(std::uint8_t Byte)
{
    constexpr std::string_view Digits = "0123456789ABCDEF";
    return {Digits[Byte >> 4U], Digits[Byte & 0xFU]};
}

} // namespace Pellumo
