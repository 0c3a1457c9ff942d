#include "tarvix/script/clsLINScriptLexer.h"

#include "tarvix/common/CheckedArithmetic.h"
#include "tarvix/script/Characters.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Tarvix {

// A scanner looks at the text from `Text` on and tells how many code units its token has; it never looks beyond the NUL
// that ends every std::u16string. NUL is white space, which no word, no number and no unknown construct contains, so
// their loops need no test for the end of the input. Lengths, not pointers, are handed up: thus the processor can start
// on a token before it knows the length of the one before.

namespace {

using Units = const char16_t*;

enum class CharacterClass : std::uint8_t { WhiteSpace, Letter, Digit, Point, OpenParenthesis, Semicolon, Slash, Other };

consteval std::array<CharacterClass, 128> ClassesOfASCII()
{
    std::array<CharacterClass, 128> Classes{};
    for (std::size_t k = 0; k < Classes.size(); ++k) {
        const auto Unit = static_cast<char16_t>(k);
        const bool Letter = (Unit >= u'a' && Unit <= u'z') || (Unit >= u'A' && Unit <= u'Z') || Unit == u'_';
        Classes[k] = Letter               ? CharacterClass::Letter
                     : IsDigit(Unit)      ? CharacterClass::Digit
                     : IsWhiteSpace(Unit) ? CharacterClass::WhiteSpace
                                          : CharacterClass::Other;
    }
    Classes[u'.'] = CharacterClass::Point;
    Classes[u'('] = CharacterClass::OpenParenthesis;
    Classes[u';'] = CharacterClass::Semicolon;
    Classes[u'/'] = CharacterClass::Slash;
    return Classes;
}

constexpr std::array<CharacterClass, 128> ASCIIClasses = ClassesOfASCII();

CharacterClass ClassOf(char16_t Unit) noexcept
{
    return Unit < ASCIIClasses.size() ? ASCIIClasses[Unit] : CharacterClass::Letter;
}

bool IsExponentLetter(char16_t Unit) noexcept
{
    return Unit == u'e' || Unit == u'E';
}

/// 2 for CR LF, 1 for LF alone, 0 for anything else.
std::size_t EndOfLineLength(Units Text) noexcept
{
    if (*Text == u'\r') {
        return Text[1] == u'\n' ? 2 : 0;
    }
    return *Text == u'\n' ? 1 : 0;
}

/// Length of the white space up to the next token, line break or end.
std::size_t WhiteSpaceLength(Units Text, std::size_t Size) noexcept
{
    std::size_t Length = 0;
    while (Length < Size && IsWhiteSpace(Text[Length]) && EndOfLineLength(Text + Length) == 0) {
        ++Length;
    }
    return Length;
}

std::size_t DigitsLength(Units Text) noexcept
{
    std::size_t Length = 0;
    while (IsDigit(Text[Length])) {
        ++Length;
    }
    return Length;
}

std::size_t IdentifierLength(Units Text) noexcept
{
    std::size_t Length = 1;
    for (auto Class = ClassOf(Text[Length]); Class == CharacterClass::Letter || Class == CharacterClass::Digit;) {
        Class = ClassOf(Text[++Length]);
    }
    return Length;
}

std::size_t UnknownLength(Units Text) noexcept
{
    std::size_t Length = 0;
    while (!IsWhiteSpace(Text[Length])) {
        ++Length;
    }
    return Length;
}

struct Number {
    std::size_t Length; ///< 0 when there is no number
    bool Real;
};

/// Digits with one point before, between or after them, then an exponent with at least one digit. A second point or
/// exponent that follows directly spoils the whole number; a sign that does not follow the exponent letter ends it.
Number ScanNumber(Units Text) noexcept
{
    std::size_t Length = DigitsLength(Text);
    std::size_t Digits = Length;
    const bool Point = Text[Length] == u'.';
    if (Point) {
        const std::size_t Fraction = DigitsLength(Text + Length + 1);
        Digits += Fraction;
        Length += 1 + Fraction;
    }
    const bool Exponent = Digits > 0 && IsExponentLetter(Text[Length]);
    if (Exponent) {
        const bool Sign = Text[Length + 1] == u'+' || Text[Length + 1] == u'-';
        Length += Sign ? 2 : 1;
        Digits = DigitsLength(Text + Length);
        Length += Digits;
    }
    const bool Spoilt = ((Point || Exponent) && Text[Length] == u'.') || (Exponent && IsExponentLetter(Text[Length]));
    return Digits > 0 && !Spoilt ? Number{Length, Point || Exponent} : Number{0, false};
}

struct Token {
    eTokenType Type;
    std::size_t Length;
    Units Value; // not a string_view: the members stay in registers
    std::size_t ValueLength;
};

/// A token whose value is all of its text.
Token WholeToken(eTokenType Type, Units Text, std::size_t Length) noexcept
{
    return {Type, Length, Text, Length};
}

/// A line break; without one, the end of the input.
Token ScanEndOfLine(Units Text) noexcept
{
    const std::size_t Length = EndOfLineLength(Text);
    return WholeToken(Length > 0 ? ettEndOfLine : ettNothing, Text, Length);
}

Token ScanIdentifier(Units Text) noexcept
{
    const std::size_t Length = IdentifierLength(Text);
    return WholeToken(FindKeyword({Text, Length}) == ekwNone ? ettConstant : ettKeyword, Text, Length);
}

Token ScanUnknown(Units Text) noexcept
{
    return WholeToken(ettUnknown, Text, UnknownLength(Text));
}

Token ScanNumberOrUnknown(Units Text) noexcept
{
    const Number Found = ScanNumber(Text);
    return Found.Length == 0 ? ScanUnknown(Text) : WholeToken(Found.Real ? ettReal : ettInteger, Text, Found.Length);
}

/// `Line` without the CR that belongs to its line break, when a LF follows it.
std::u16string_view WithoutCarriageReturn(std::u16string_view Line, bool LineFeedFollows) noexcept
{
    Line.remove_suffix(LineFeedFollows && Line.ends_with(u'\r') ? 1 : 0);
    return Line;
}

Token ScanByteStream(Units Text, std::size_t Size) noexcept
{
    const Units Begin = Text + 1;
    const Units End = Text + Size;
    const Units Stop = std::find_if(Begin, End, [](char16_t Unit) { return Unit == u')' || Unit == u'\n'; });
    if (Stop != End && *Stop == u')') {
        const std::u16string_view Value(Begin, Stop);
        return {ettByteStream, Value.size() + 2, Begin, Value.size()};
    }
    const std::u16string_view Rest = WithoutCarriageReturn({Begin, Stop}, Stop != End);
    return {ettOpenByteStream, Rest.size() + 1, Begin, Rest.size()};
}

Token ScanCommentOrUnknown(Units Text, std::size_t Size) noexcept
{
    if (Text[1] != u'/') {
        return ScanUnknown(Text);
    }
    const Units Begin = Text + 2;
    const Units End = Text + Size;
    const Units LineFeed = std::find(Begin, End, u'\n');
    const std::u16string_view Value = WithoutCarriageReturn({Begin, LineFeed}, LineFeed != End);
    return {ettComment, Value.size() + 2, Begin, Value.size()};
}

/// The token at the front of `Text`, where no white space is but the line break. Its first character alone tells which
/// rules can apply.
Token ScanToken(Units Text, std::size_t Size) noexcept
{
    switch (ClassOf(*Text)) {
    case CharacterClass::WhiteSpace: return ScanEndOfLine(Text);
    case CharacterClass::Letter: return ScanIdentifier(Text);
    case CharacterClass::Digit:
    case CharacterClass::Point: return ScanNumberOrUnknown(Text);
    case CharacterClass::OpenParenthesis: return ScanByteStream(Text, Size);
    case CharacterClass::Semicolon: return WholeToken(ettEndOfCommand, Text, 1);
    case CharacterClass::Slash: return ScanCommentOrUnknown(Text, Size);
    case CharacterClass::Other: break;
    }
    return ScanUnknown(Text);
}

/// Raises the overflow error unless every position of a text of `Length`, the one past its end included, is 32-bit.
void RequirePositions(std::size_t Length)
{
    CheckedNarrow<std::int32_t>(static_cast<std::int64_t>(Length) + 1);
}

} // namespace

void clsLINScriptLexer::ScanInput(std::u16string_view InputString)
{
    RequirePositions(InputString.size()); // before anything that long is copied
    TakeInput(std::u16string(InputString));
}

void clsLINScriptLexer::TakeInput(std::u16string&& InputString)
{
    RequirePositions(InputString.size());
    Input_ = std::move(InputString);
    ScanPos_ = 1;
}

std::int32_t clsLINScriptLexer::GetToken(std::u16string_view& TokenValue)
{
    if (ScanPos_ == 0) {
        Raise(errGeneral::errInvalidArgument);
    }
    const Units Text = Input_.data() + Scanned();
    const std::size_t Size = Input_.size() - Scanned();
    const std::size_t WhiteSpace = WhiteSpaceLength(Text, Size);
    const Token Next = ScanToken(Text + WhiteSpace, Size - WhiteSpace);
    ScanPos_ += static_cast<std::int32_t>(WhiteSpace + Next.Length); // fits: the length of the input was tested
    TokenValue = {Next.Value, Next.ValueLength};
    return Next.Type;
}

} // namespace Tarvix
