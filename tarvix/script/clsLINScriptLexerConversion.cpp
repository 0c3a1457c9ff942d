#include "tarvix/common/CheckedArithmetic.h"
#include "tarvix/common/DecimalText.h"
#include "tarvix/common/ErrorNumbers.h"
#include "tarvix/script/Characters.h"
#include "tarvix/script/clsLINScriptLexer.h"

#include <algorithm>
#include <array>

namespace Tarvix {

namespace {

constexpr std::string_view Source = "clsLINScriptLexer";

[[noreturn]] void RaiseSecondaryLexical(std::string_view Reason)
{
    Raise(errLINScriptLexer::errSecondaryLexical, Source,
          std::string("Error in secondary lexical analysis, ").append(Reason));
}

/// The base that the letter of a prefix selects.
std::int32_t BaseOf(char16_t Letter)
{
    switch (Letter) {
    case u'h':
    case u'H': return 16;
    case u'b':
    case u'B': return 2;
    case u'o':
    case u'O': return 8;
    case u'd':
    case u'D': return 10;
    default: RaiseSecondaryLexical("unknown number-base prefix");
    }
}

/// The value of a digit; one that no base has for any other character.
std::int32_t DigitValue(char16_t Unit) noexcept
{
    constexpr std::int32_t NoDigit = 16;
    if (IsDigit(Unit)) {
        return Unit - u'0';
    }
    if (Unit >= u'a' && Unit <= u'f') {
        return Unit - u'a' + 10;
    }
    return Unit >= u'A' && Unit <= u'F' ? Unit - u'A' + 10 : NoDigit;
}

/// The value of the digits at the front of `Stream` up to white space or the end; removes them.
std::int32_t ReadDigits(std::u16string_view& Stream, std::int32_t Base)
{
    std::int32_t Value = 0;
    for (; !Stream.empty() && !IsWhiteSpace(Stream.front()); Stream.remove_prefix(1)) {
        if (Stream.front() == u'_') {
            continue;
        }
        const std::int32_t Digit = DigitValue(Stream.front());
        if (Digit >= Base) {
            RaiseSecondaryLexical("unknown character");
        }
        Value = CheckedAdd(CheckedMultiply(Value, Base), Digit);
    }
    return Value;
}

/// The value of the digits behind the apostrophe and the letter at the front of `Stream`; removes all of them.
std::int32_t ReadPrefixedDigits(std::u16string_view& Stream)
{
    const std::int32_t Base = BaseOf(Stream.size() > 1 ? Stream[1] : u'\0');
    Stream.remove_prefix(2);
    const std::size_t Length = Stream.size();
    const std::int32_t Value = ReadDigits(Stream, Base);
    if (Stream.size() == Length) {
        RaiseSecondaryLexical("syntax error");
    }
    return Value;
}

/// The byte that the literal at the front of `Stream` denotes; removes the literal.
std::uint8_t ParseByte(std::u16string_view& Stream)
{
    const std::int32_t Value = Stream.front() == u'\'' ? ReadPrefixedDigits(Stream) : ReadDigits(Stream, 16);
    if (Value > 0xFF) {
        RaiseSecondaryLexical("byte overflow");
    }
    return static_cast<std::uint8_t>(Value);
}

void SkipWhiteSpace(std::u16string_view& Stream) noexcept
{
    while (!Stream.empty() && IsWhiteSpace(Stream.front())) {
        Stream.remove_prefix(1);
    }
}

char NarrowToASCII(char16_t Unit) noexcept
{
    return Unit < 0x80 ? static_cast<char>(Unit) : '?';
}

} // namespace

// The conversions belong to the lexer's interface although none of them needs the state of a scan.
// NOLINTBEGIN(readability-convert-member-functions-to-static)

std::int32_t clsLINScriptLexer::TokenToKeyword(std::u16string_view TokenValue) const
{
    const eKeyword Code = FindKeyword(TokenValue);
    if (Code == ekwNone) {
        Raise(errLINScriptLexer::errTokenConversion, Source, "Error in token value conversion");
    }
    return Code;
}

std::int32_t clsLINScriptLexer::TokenToNumberInteger(std::u16string_view TokenValue) const
{
    if (TokenValue.empty() || !std::all_of(TokenValue.begin(), TokenValue.end(), IsDigit)) {
        Raise(errGeneral::errTypeMismatch);
    }
    std::int32_t Value = 0;
    for (const char16_t Digit : TokenValue) {
        Value = CheckedAdd(CheckedMultiply(Value, 10), Digit - u'0');
    }
    return Value;
}

double clsLINScriptLexer::TokenToNumberReal(std::u16string_view TokenValue) const
{
    std::array<char, 64> Short{}; // holds any number that a person writes
    if (TokenValue.size() <= Short.size()) {
        std::transform(TokenValue.begin(), TokenValue.end(), Short.begin(), NarrowToASCII);
        return DecimalToReal({Short.data(), TokenValue.size()});
    }
    std::string Long(TokenValue.size(), '\0');
    std::transform(TokenValue.begin(), TokenValue.end(), Long.begin(), NarrowToASCII);
    return DecimalToReal(Long);
}

void clsLINScriptLexer::TokenToByteStream(std::u16string_view TokenValue, std::int32_t& ResultLength,
                                          std::vector<std::uint8_t>& Result) const
{
    ResultLength = 0;
    if (TokenValue.empty()) {
        Raise(errGeneral::errIndexOutOfRange);
    }
    Result.assign(TokenValue.size(), 0);
    for (SkipWhiteSpace(TokenValue); !TokenValue.empty(); SkipWhiteSpace(TokenValue)) {
        Result[static_cast<std::size_t>(ResultLength)] = ParseByte(TokenValue);
        ResultLength = CheckedAdd(ResultLength, 1);
    }
}

std::u16string clsLINScriptLexer::TokenToCodeConstant(std::u16string_view TokenValue) const
{
    return std::u16string(TokenValue);
}

// NOLINTEND(readability-convert-member-functions-to-static)

} // namespace Tarvix
