#include "tarvix/script/clsLINScriptLexer.h"

#include "tarvix/common/CheckedArithmetic.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Tarvix {

// Scanners walk with a bare position up to the NUL that ends every std::u16string. NUL is white space, which no word, no
// number and no unknown construct contains, so their loops need no test for the end of the input; the others test it.

namespace {

using Position = const char16_t*;

enum class CharacterClass : std::uint8_t { WhiteSpace, Letter, Digit, Point, OpenParenthesis, Semicolon, Slash, Other };

consteval std::array<CharacterClass, 128> ClassesOfASCII()
{
    std::array<CharacterClass, 128> Classes{};
    for (char16_t Unit = 0; Unit < Classes.size(); ++Unit) {
        const bool Letter = (Unit >= u'a' && Unit <= u'z') || (Unit >= u'A' && Unit <= u'Z') || Unit == u'_';
        const bool Digit = Unit >= u'0' && Unit <= u'9';
        Classes[Unit] = Letter         ? CharacterClass::Letter
                        : Digit        ? CharacterClass::Digit
                        : Unit <= u' ' ? CharacterClass::WhiteSpace
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

bool IsWhiteSpace(char16_t Unit) noexcept
{
    return Unit <= u' ';
}

bool IsDigit(char16_t Unit) noexcept
{
    return Unit >= u'0' && Unit <= u'9';
}

bool IsExponentLetter(char16_t Unit) noexcept
{
    return Unit == u'e' || Unit == u'E';
}

/// 2 for CR LF, 1 for LF alone, 0 for anything else.
std::ptrdiff_t EndOfLineLength(Position Begin) noexcept
{
    if (*Begin == u'\r') {
        return Begin[1] == u'\n' ? 2 : 0;
    }
    return *Begin == u'\n' ? 1 : 0;
}

Position SkipWhiteSpace(Position Begin, Position End) noexcept
{
    while (Begin != End && IsWhiteSpace(*Begin) && EndOfLineLength(Begin) == 0) {
        ++Begin;
    }
    return Begin;
}

Position SkipDigits(Position Begin) noexcept
{
    while (IsDigit(*Begin)) {
        ++Begin;
    }
    return Begin;
}

Position EndOfIdentifier(Position Begin) noexcept
{
    auto Class = CharacterClass::Letter;
    while (Class == CharacterClass::Letter || Class == CharacterClass::Digit) {
        Class = ClassOf(*++Begin);
    }
    return Begin;
}

Position EndOfUnknown(Position Begin) noexcept
{
    while (!IsWhiteSpace(*Begin)) {
        ++Begin;
    }
    return Begin;
}

/// Where the line break begins that ends with `LineFeed`, in a text from `Begin` on.
Position BeginOfLineBreak(Position Begin, Position LineFeed) noexcept
{
    return LineFeed != Begin && LineFeed[-1] == u'\r' ? LineFeed - 1 : LineFeed;
}

struct Number {
    Position End; ///< its beginning when there is no number
    bool Real;
};

/// Digits with one point before, between or after them, then an exponent with at least one digit. A second point or
/// exponent that follows directly spoils the whole number; a sign that does not follow the exponent letter ends it.
Number ScanNumber(Position Begin) noexcept
{
    const Number None{Begin, false};
    Position End = SkipDigits(Begin);
    bool Digits = End != Begin;
    const bool Point = *End == u'.';
    if (Point) {
        const Position Fraction = End + 1;
        End = SkipDigits(Fraction);
        Digits = Digits || End != Fraction;
    }
    const bool Exponent = Digits && IsExponentLetter(*End);
    if (Exponent) {
        ++End;
        const Position ExponentDigits = *End == u'+' || *End == u'-' ? End + 1 : End;
        End = SkipDigits(ExponentDigits);
        Digits = End != ExponentDigits;
    }
    const bool Spoilt = (*End == u'.' && (Point || Exponent)) || (Exponent && IsExponentLetter(*End));
    return Digits && !Spoilt ? Number{End, Point || Exponent} : None;
}

struct Token {
    eTokenType Type;
    Position End;
    std::u16string_view Value;
};

/// A token whose value is all of its text.
Token WholeToken(eTokenType Type, Position Begin, Position End) noexcept
{
    return {Type, End, {Begin, End}};
}

/// A line break; without one, the end of the input.
Token ScanEndOfLine(Position Begin) noexcept
{
    const std::ptrdiff_t Length = EndOfLineLength(Begin);
    return WholeToken(Length > 0 ? ettEndOfLine : ettNothing, Begin, Begin + Length);
}

Token ScanIdentifier(Position Begin) noexcept
{
    const Position End = EndOfIdentifier(Begin);
    return WholeToken(FindKeyword({Begin, End}) ? ettKeyword : ettConstant, Begin, End);
}

Token ScanUnknown(Position Begin) noexcept
{
    return WholeToken(ettUnknown, Begin, EndOfUnknown(Begin));
}

Token ScanNumberOrUnknown(Position Begin) noexcept
{
    const Number Found = ScanNumber(Begin);
    return Found.End == Begin ? ScanUnknown(Begin) : WholeToken(Found.Real ? ettReal : ettInteger, Begin, Found.End);
}

Token ScanByteStream(Position Begin, Position End) noexcept
{
    const Position Text = Begin + 1;
    const Position Stop = std::find_if(Text, End, [](char16_t Unit) { return Unit == u')' || Unit == u'\n'; });
    if (Stop != End && *Stop == u')') {
        return {ettByteStream, Stop + 1, {Text, Stop}};
    }
    const Position LineEnd = Stop == End ? End : BeginOfLineBreak(Text, Stop);
    return {ettOpenByteStream, LineEnd, {Text, LineEnd}};
}

Token ScanCommentOrUnknown(Position Begin, Position End) noexcept
{
    if (Begin[1] != u'/') {
        return ScanUnknown(Begin);
    }
    const Position Text = Begin + 2;
    const Position LineFeed = std::find(Text, End, u'\n');
    const Position LineEnd = LineFeed == End ? End : BeginOfLineBreak(Text, LineFeed);
    return {ettComment, LineEnd, {Text, LineEnd}};
}

/// The token at `Begin`, where white space has been skipped. The first character alone tells which rules can apply.
Token ScanToken(Position Begin, Position End) noexcept
{
    switch (ClassOf(*Begin)) {
    case CharacterClass::WhiteSpace: return ScanEndOfLine(Begin);
    case CharacterClass::Letter: return ScanIdentifier(Begin);
    case CharacterClass::Digit:
    case CharacterClass::Point: return ScanNumberOrUnknown(Begin);
    case CharacterClass::OpenParenthesis: return ScanByteStream(Begin, End);
    case CharacterClass::Semicolon: return WholeToken(ettEndOfCommand, Begin, Begin + 1);
    case CharacterClass::Slash: return ScanCommentOrUnknown(Begin, End);
    case CharacterClass::Other: break;
    }
    return ScanUnknown(Begin);
}

} // namespace

void clsLINScriptLexer::ScanInput(std::u16string_view InputString)
{
    CheckedNarrow<std::int32_t>(static_cast<std::int64_t>(InputString.size()) + 1); // before anything that long is copied
    TakeInput(std::u16string(InputString));
}

void clsLINScriptLexer::TakeInput(std::u16string&& InputString)
{
    CheckedNarrow<std::int32_t>(static_cast<std::int64_t>(InputString.size()) + 1);
    Input_ = std::move(InputString);
    ScanPos_ = 1;
}

std::int32_t clsLINScriptLexer::GetToken(std::u16string_view& TokenValue)
{
    if (ScanPos_ == 0) {
        Raise(errGeneral::errInvalidArgument);
    }
    const Position Input = Input_.data();
    const Position End = Input + Input_.size();
    const Token Next = ScanToken(SkipWhiteSpace(Input + Scanned(), End), End);
    ScanPos_ = static_cast<std::int32_t>(Next.End - Input) + 1; // fits: the length of the input was tested
    TokenValue = Next.Value;
    return Next.Type;
}

} // namespace Tarvix
