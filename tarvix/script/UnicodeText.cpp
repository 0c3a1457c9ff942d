#include "tarvix/script/UnicodeText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Tarvix {

namespace {

constexpr char32_t Replacement = 0xFFFD;
constexpr char32_t FirstSupplementary = 0x10000;

struct Character {
    char32_t CodePoint;
    std::size_t Bytes;
};

/// What a lead byte asks of the bytes that follow it (The Unicode Standard, table 3-7).
struct Lead {
    std::size_t Bytes;  ///< of the whole character; 0 when no character begins like this
    std::uint8_t Low;   ///< the second byte is at least this,
    std::uint8_t High;  ///< and at most this: no overlong form, no surrogate, nothing above U+10FFFF
    std::uint8_t Value; ///< the lead's bits of the code point
};

Lead LeadOf(std::uint8_t Byte) noexcept
{
    if (Byte >= 0xC2 && Byte <= 0xDF) {
        return {2, 0x80, 0xBF, static_cast<std::uint8_t>(Byte & 0x1FU)};
    }
    if (Byte >= 0xE0 && Byte <= 0xEF) {
        const std::uint8_t Low = Byte == 0xE0 ? 0xA0 : 0x80;
        const std::uint8_t High = Byte == 0xED ? 0x9F : 0xBF;
        return {3, Low, High, static_cast<std::uint8_t>(Byte & 0x0FU)};
    }
    if (Byte >= 0xF0 && Byte <= 0xF4) {
        const std::uint8_t Low = Byte == 0xF0 ? 0x90 : 0x80;
        const std::uint8_t High = Byte == 0xF4 ? 0x8F : 0xBF;
        return {4, Low, High, static_cast<std::uint8_t>(Byte & 0x07U)};
    }
    return {};
}

/// The character at the front of `Text`, which is not empty and does not begin with ASCII.
Character FrontCharacter(std::string_view Text) noexcept
{
    const auto ByteAt = [Text](std::size_t k) { return static_cast<std::uint8_t>(Text[k]); };
    const Lead First = LeadOf(ByteAt(0));
    char32_t CodePoint = First.Value;
    for (std::size_t k = 1; k < First.Bytes; ++k) {
        const std::uint8_t Low = k == 1 ? First.Low : 0x80;
        const std::uint8_t High = k == 1 ? First.High : 0xBF;
        if (k == Text.size() || ByteAt(k) < Low || ByteAt(k) > High) {
            return {Replacement, k};
        }
        CodePoint = CodePoint << 6U | (ByteAt(k) & 0x3FU);
    }
    return First.Bytes > 0 ? Character{CodePoint, First.Bytes} : Character{Replacement, 1};
}

/// Number of ASCII characters at the front of `Text`, tested eight at a time.
std::size_t ASCIILength(std::string_view Text) noexcept
{
    constexpr std::uint64_t HighBits = 0x8080808080808080;
    std::size_t Length = 0;
    for (std::uint64_t Eight = 0; Length + sizeof(Eight) <= Text.size(); Length += sizeof(Eight)) {
        std::memcpy(&Eight, Text.data() + Length, sizeof(Eight));
        if ((Eight & HighBits) != 0) {
            break;
        }
    }
    while (Length < Text.size() && static_cast<std::uint8_t>(Text[Length]) < 0x80) {
        ++Length;
    }
    return Length;
}

/// Hands the text over in order: each run of ASCII to `OnASCII`, each other character's code point to `OnOther`.
template <typename ASCIIHandler, typename OtherHandler>
void Decode(std::string_view Text, ASCIIHandler OnASCII, OtherHandler OnOther)
{
    while (!Text.empty()) {
        const std::size_t Length = ASCIILength(Text);
        OnASCII(Text.substr(0, Length));
        Text.remove_prefix(Length);
        if (!Text.empty()) {
            const Character Next = FrontCharacter(Text);
            OnOther(Next.CodePoint);
            Text.remove_prefix(Next.Bytes);
        }
    }
}

std::size_t UTF16Length(std::string_view Text)
{
    std::size_t Units = 0;
    Decode(
        Text, [&Units](std::string_view Run) { Units += Run.size(); },
        [&Units](char32_t CodePoint) { Units += CodePoint < FirstSupplementary ? 1 : 2; });
    return Units;
}

} // namespace

std::u16string UTF8ToUTF16(std::string_view Text)
{
    std::u16string Result(UTF16Length(Text), u'\0');
    auto Next = Result.begin();
    Decode(
        Text, [&Next](std::string_view Run) { Next = std::copy(Run.begin(), Run.end(), Next); },
        [&Next](char32_t CodePoint) {
            if (CodePoint < FirstSupplementary) {
                *Next++ = static_cast<char16_t>(CodePoint);
                return;
            }
            const char32_t Offset = CodePoint - FirstSupplementary;
            *Next++ = static_cast<char16_t>(0xD800 | Offset >> 10U);
            *Next++ = static_cast<char16_t>(0xDC00 | (Offset & 0x3FFU));
        });
    return Result;
}

} // namespace Tarvix
