#include "tarvix/script/clsLINScriptLexer.h"
#include "tests/support/DecimalCommaLocale.h"
#include "tests/support/Errors.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <limits>

namespace Tarvix {

namespace {

using Testing::Failure;
using Testing::FailureOf;

std::u16string Repeat(std::u16string_view Text, std::size_t Times)
{
    std::u16string Result;
    for (std::size_t k = 0; k < Times; ++k) {
        Result += Text;
    }
    return Result;
}

struct Stream {
    std::int32_t Length = 7; // neither is what a conversion leaves
    std::vector<std::uint8_t> Bytes = std::vector<std::uint8_t>(3, 0xEE);

    bool operator==(const Stream&) const = default;
};

const Failure TokenConversion{0x8004C3DD, "clsLINScriptLexer", "Error in token value conversion"};

void ExpectSecondaryLexical(std::u16string_view Text, const std::string& Reason)
{
    Stream Result;
    EXPECT_EQ(FailureOf([&] { clsLINScriptLexer().TokenToByteStream(Text, Result.Length, Result.Bytes); }),
              (Failure{0x8004C3DE, "clsLINScriptLexer", "Error in secondary lexical analysis, " + Reason}))
        << std::string(Text.begin(), Text.end());
}

} // namespace

TEST(TokenToKeyword, GivesTheCodeWhateverTheCase)
{
    const clsLINScriptLexer Lexer;
    for (std::size_t k = 0; k < KeywordTable.size(); ++k) {
        const std::u16string Word(KeywordTable[k].begin(), KeywordTable[k].end());
        EXPECT_EQ(Lexer.TokenToKeyword(Word), static_cast<std::int32_t>(k));
    }
    EXPECT_EQ(Lexer.TokenToKeyword(u"chksum_Mode"), 15);
    EXPECT_EQ(KeywordTable[ekwChksumMask], "CHKSUMMASK");
    EXPECT_EQ(KeywordTable[ekwChksumMode], "CHKSUM_MODE");
}

TEST(TokenToKeyword, RefusesEverythingElse)
{
    // "\x7F" differs from "_", and KELVIN SIGN from "K", in bits that a careless comparison of cases ignores; nine
    // times "WAIT" has the hash, the first and the last letters of "WAIT".
    const std::u16string NineTimes = Repeat(u"WAIT", 9);
    for (const std::u16string_view Text :
         {std::u16string_view(), std::u16string_view(u"LIN1_3"), std::u16string_view(u"W"),
          std::u16string_view(u"WAIT "), std::u16string_view(u"BREAK\x7FWIDTH"), std::u16string_view(u"BREA\u212A"),
          std::u16string_view(NineTimes)}) {
        EXPECT_EQ(FailureOf([&] { clsLINScriptLexer().TokenToKeyword(Text); }), TokenConversion);
    }
}

TEST(TokenToNumberInteger, ReadsDigits)
{
    const clsLINScriptLexer Lexer;
    EXPECT_EQ(Lexer.TokenToNumberInteger(u"0"), 0);
    EXPECT_EQ(Lexer.TokenToNumberInteger(u"9600"), 9600);
    EXPECT_EQ(Lexer.TokenToNumberInteger(u"2147483647"), 2147483647);
    EXPECT_EQ(Lexer.TokenToNumberInteger(Repeat(u"0", 1000000) + u"12"), 12);
    for (const std::u16string_view Text : {u"2147483648", u"4294967296", u"99999999999999999999"}) {
        EXPECT_EQ(FailureOf([&] { Lexer.TokenToNumberInteger(Text); }), Testing::Overflow);
    }
    for (const std::u16string_view Text :
         {u"", u"-5", u"+5", u" 5", u"5 ", u"1.5", u"1e2", u"12x", u"99999999999x", u"\uFF15"}) {
        EXPECT_EQ(FailureOf([&] { Lexer.TokenToNumberInteger(Text); }), Testing::TypeMismatch);
    }
}

TEST(TokenToNumberReal, ReadsTheNearestFloatUnderEveryLocaleAndRoundingMode)
{
    const clsLINScriptLexer Lexer;
    const auto ExpectNearest = [&Lexer] {
        EXPECT_EQ(Lexer.TokenToNumberReal(u"13.5"), 13.5);
        EXPECT_EQ(Lexer.TokenToNumberReal(u"1.35e1"), 13.5);
        EXPECT_EQ(Lexer.TokenToNumberReal(u".5"), 0.5);
        EXPECT_EQ(Lexer.TokenToNumberReal(u"5."), 5.0);
        EXPECT_EQ(Lexer.TokenToNumberReal(u"12E+2"), 1200.0);
        EXPECT_EQ(Lexer.TokenToNumberReal(u"0.1"), 0x1.999999999999ap-4);
        EXPECT_EQ(Lexer.TokenToNumberReal(u"1.7976931348623157e308"), std::numeric_limits<double>::max());
        EXPECT_EQ(Lexer.TokenToNumberReal(u"4.9e-324"), std::numeric_limits<double>::denorm_min());
        EXPECT_EQ(Lexer.TokenToNumberReal(u"1e-400"), 0.0);
    };
    ExpectNearest();
    {
        const Testing::DecimalCommaLocale Locale;
        ExpectNearest();
        EXPECT_EQ(FailureOf([&] { Lexer.TokenToNumberReal(u"13,5"); }), Testing::TypeMismatch);
    }
    std::fesetround(FE_UPWARD);
    ExpectNearest();
    std::fesetround(FE_TONEAREST);
}

TEST(TokenToNumberReal, ReadsNumbersOfAnyLength)
{
    const clsLINScriptLexer Lexer;
    EXPECT_EQ(Lexer.TokenToNumberReal(u"0." + Repeat(u"3", 62)), 1.0 / 3.0); // 64 code units, and 65
    EXPECT_EQ(Lexer.TokenToNumberReal(u"0." + Repeat(u"3", 63)), 1.0 / 3.0);
    EXPECT_EQ(Lexer.TokenToNumberReal(u"0." + Repeat(u"3", 1000000)), 1.0 / 3.0);
    EXPECT_EQ(Lexer.TokenToNumberReal(Repeat(u"0", 1000000) + u"1.5"), 1.5);
    EXPECT_EQ(Lexer.TokenToNumberReal(u"1" + Repeat(u"0", 1000000) + u"e-1000000"), 1.0);
    EXPECT_EQ(Lexer.TokenToNumberReal(u"0." + Repeat(u"0", 1000000) + u"1e1000001"), 1.0);
    EXPECT_EQ(Lexer.TokenToNumberReal(u"0e" + Repeat(u"9", 1000)), 0.0);
    // One digit far behind the tie between 1 and the next float decides the rounding.
    const std::u16string Tie = u"1.00000000000000011102230246251565404236316680908203125";
    EXPECT_EQ(Lexer.TokenToNumberReal(Tie + Repeat(u"0", 5000)), 1.0);
    EXPECT_EQ(Lexer.TokenToNumberReal(Tie + Repeat(u"0", 5000) + u"1"), 1.0 + std::numeric_limits<double>::epsilon());
}

TEST(TokenToNumberReal, RefusesWhatIsTooLargeOrNoNumber)
{
    const clsLINScriptLexer Lexer;
    for (const std::u16string& Text :
         {std::u16string(u"1e309"), std::u16string(u"1.8e308"), Repeat(u"9", 310), u"1e" + Repeat(u"9", 1000)}) {
        EXPECT_EQ(FailureOf([&] { Lexer.TokenToNumberReal(Text); }), Testing::Overflow);
    }
    for (const std::u16string_view Text : {u"", u".", u"1e", u"1e+", u"-1", u"+1", u" 1", u"1 ", u"1.2.3", u"0x1p3",
                                           u"inf", u"nan", u"1\u00E9", u"1e5\u0130"}) {
        EXPECT_EQ(FailureOf([&] { Lexer.TokenToNumberReal(Text); }), Testing::TypeMismatch);
    }
}

struct StreamCase {
    std::u16string_view Text;
    std::vector<std::uint8_t> Bytes;
};

class ByteStream : public testing::TestWithParam<StreamCase> {};

TEST_P(ByteStream, DenotesTheBytes)
{
    const auto& [Text, Bytes] = GetParam();
    Stream Result;
    clsLINScriptLexer().TokenToByteStream(Text, Result.Length, Result.Bytes);
    std::vector<std::uint8_t> Padded = Bytes;
    Padded.resize(Text.size());
    EXPECT_EQ(Result, (Stream{static_cast<std::int32_t>(Bytes.size()), Padded}));
}

INSTANTIATE_TEST_SUITE_P(Literals, ByteStream,
                         testing::Values(StreamCase{u"01 02 3C", {1, 2, 60}}, StreamCase{u" \t01\r02  ", {1, 2}},
                                         StreamCase{u"  ", {}}, StreamCase{u"0", {0}},
                                         StreamCase{u"ff 'd255 'b1111_1111 'o377", {255, 255, 255, 255}},
                                         StreamCase{u"A5 'hA5 'HaF 'B10 'O17 'D19", {0xA5, 0xA5, 0xAF, 2, 15, 19}},
                                         StreamCase{u"00000000FF 'b0000000000000000000000000000000000001", {255, 1}},
                                         StreamCase{u"_ 'h_ _5_ 'd_2_0", {0, 0, 5, 20}}));

TEST(ByteStream, NamesWhatIsWrongWithALiteral)
{
    for (const std::u16string_view Text : {u"'x12", u"'", u"' h1", u"''h1"}) {
        ExpectSecondaryLexical(Text, "unknown number-base prefix");
    }
    for (const std::u16string_view Text : {u"'h", u"'h 01", u"'B\r1"}) {
        ExpectSecondaryLexical(Text, "syntax error");
    }
    for (const std::u16string_view Text :
         {u"01,02", u"01;", u"G1", u"g", u"@", u"`", u"'b2", u"'o8", u"'dA", u"'h'h1", u"1'h1", u"\uFF11", u"\u00B2"}) {
        ExpectSecondaryLexical(Text, "unknown character");
    }
    for (const std::u16string_view Text : {u"0102", u"100", u"'d256", u"'o400", u"'b100000000", u"7FFFFFFF"}) {
        ExpectSecondaryLexical(Text, "byte overflow");
    }
    // The accumulator overflows at its digit, before anything behind it is looked at.
    for (const std::u16string_view Text : {u"80000000", u"123456789", u"'d2147483648", u"FFFFFFFFF,"}) {
        Stream Result;
        EXPECT_EQ(FailureOf([&] { clsLINScriptLexer().TokenToByteStream(Text, Result.Length, Result.Bytes); }),
                  Testing::Overflow);
    }
}

TEST(ByteStream, LeavesTheBytesBeforeTheFault)
{
    const clsLINScriptLexer Lexer;
    Stream Result;
    EXPECT_THROW(Lexer.TokenToByteStream(u"01 02 100", Result.Length, Result.Bytes), Error);
    EXPECT_EQ(Result, (Stream{2, {1, 2, 0, 0, 0, 0, 0, 0, 0}}));

    Stream Untouched;
    EXPECT_EQ(FailureOf([&] { Lexer.TokenToByteStream(u"", Untouched.Length, Untouched.Bytes); }),
              Testing::IndexOutOfRange);
    EXPECT_EQ(Untouched, (Stream{0, Stream().Bytes}));
}

TEST(Conversion, LeavesTheScanAlone)
{
    clsLINScriptLexer Lexer;
    Lexer.ScanInput(u"(G) ID");
    std::u16string_view Value;
    ASSERT_EQ(Lexer.GetToken(Value), ettByteStream);
    Stream Result;
    EXPECT_THROW(Lexer.TokenToByteStream(Value, Result.Length, Result.Bytes), Error);
    EXPECT_EQ(Lexer.ScanPos(), 4);
    EXPECT_EQ(Lexer.GetToken(Value), ettKeyword);
    EXPECT_EQ(Lexer.TokenToCodeConstant(u"Lin2_0"), u"Lin2_0");
}

} // namespace Tarvix
