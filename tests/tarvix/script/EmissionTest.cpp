#include "tarvix/script/clsLINScriptLexer.h"
#include "tests/support/DecimalCommaLocale.h"
#include "tests/support/Errors.h"
#include "tests/support/Random.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <cmath>
#include <limits>
#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace Tarvix {

namespace {

using Testing::FailureOf;

std::string MakeCommand(const std::vector<std::string>& Tokens)
{
    return clsLINScriptLexer().CodeMakeCommand(Tokens);
}

} // namespace

TEST(CodeMakeCommand, JoinsWithSingleBlanks)
{
    EXPECT_EQ(MakeCommand({}), ";\r\n");
    EXPECT_EQ(MakeCommand({"BREAK"}), "BREAK;\r\n");
    EXPECT_EQ(MakeCommand({"READ_FRAME", "ID", "(3C)", "LEN", "2"}), "READ_FRAME ID (3C) LEN 2;\r\n");
    EXPECT_EQ(MakeCommand({"", "", "WAIT", "", "10"}), "WAIT  10;\r\n");
    EXPECT_EQ(MakeCommand({"WAIT", ""}), "WAIT ;\r\n");
}

TEST(CodeFromKeyword, GivesTheTableEntry)
{
    const clsLINScriptLexer Lexer;
    EXPECT_EQ(Lexer.CodeFromKeyword(ekwBaudrate), "BAUDRATE");
    EXPECT_EQ(Lexer.CodeFromKeyword(15), "CHKSUM_MODE");
    for (const std::int32_t Code : {-1, 16, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(FailureOf([&] { Lexer.CodeFromKeyword(Code); }), Testing::IndexOutOfRange);
    }
}

TEST(CodeFromNumberInteger, WritesPlainDigitsUnderEveryLocale)
{
    const Testing::DecimalCommaLocale Locale; // it groups digits: 2.147.483.647
    const clsLINScriptLexer Lexer;
    EXPECT_EQ(Lexer.CodeFromNumberInteger(std::numeric_limits<std::int32_t>::max()), "2147483647");
    EXPECT_EQ(Lexer.CodeFromNumberInteger(std::numeric_limits<std::int32_t>::min()), "-2147483648");
    EXPECT_EQ(Lexer.CodeFromNumberInteger(0), "0");
}

TEST(CodeFromNumberReal, WritesSevenDigitsUnderEveryLocaleAndRoundingMode)
{
    struct Case {
        float Value;
        const char* Text;
    };
    constexpr std::array Cases = {
        Case{0.0F, "0"},
        Case{-0.0F, "0"},
        Case{13.0F, "13"},
        Case{13.5F, "13.5"},
        Case{-2.25F, "-2.25"},
        Case{100.0F, "100"},
        Case{7.0F / 3.0F, "2.333333"},
        Case{1.0F / 19200.0F, "5.208333E-05"},
        Case{0.0001F, "0.0001"},
        Case{0.00009999999F, "9.999999E-05"},
        Case{9999999.0F, "9999999"},
        Case{10000000.0F, "1E+07"},
        Case{12345678.0F, "1.234568E+07"},
        Case{1.0000005F, "1"},       // 1.00000047...
        Case{1048576.5F, "1048576"}, // a tie goes to the even digit
        Case{1048577.5F, "1048578"},
        Case{-1048576.5F, "-1048576"},
        Case{8388609.0F, "8388609"},
        Case{std::numeric_limits<float>::max(), "3.402823E+38"},
        Case{std::numeric_limits<float>::denorm_min(), "1.401298E-45"},
    };
    const auto ExpectAll = [&Cases] {
        for (const Case& Each : Cases) {
            EXPECT_EQ(clsLINScriptLexer().CodeFromNumberReal(Each.Value), Each.Text);
        }
    };
    ExpectAll();
    {
        const Testing::DecimalCommaLocale Locale;
        ExpectAll();
    }
    for (const int Mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        std::fesetround(Mode);
        ExpectAll();
    }
    std::fesetround(FE_TONEAREST);
#if defined(__SSE2__)
    const unsigned Before = _mm_getcsr();
    _mm_setcsr(Before | 0x8040); // denormals count as zero, and become zero
    ExpectAll();
    _mm_setcsr(Before);
#endif
}

TEST(CodeFromNumberReal, RefusesWhatHasNoDigits)
{
    const clsLINScriptLexer Lexer;
    for (const float Value : {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_EQ(FailureOf([&] { Lexer.CodeFromNumberReal(Value); }), Testing::Overflow);
    }
}

TEST(CodeFromNumberReal, ReadsBackAsOneNumberToSevenDigits)
{
    Testing::Random Random;
    clsLINScriptLexer Lexer;
    for (int Run = 0; Run < 20000; ++Run) {
        const auto Value = std::bit_cast<float>(static_cast<std::uint32_t>(Random.Next() % 0x7F800000));
        const std::string Text = Lexer.CodeFromNumberReal(Value);
        Lexer.TakeInput(std::u16string(Text.begin(), Text.end()));
        std::u16string_view Token;
        const std::int32_t Type = Lexer.GetToken(Token);
        ASSERT_TRUE((Type == ettInteger || Type == ettReal) && Lexer.EndOfInput()) << Text;
        ASSERT_LE(std::fabs(Lexer.TokenToNumberReal(Token) - Value), 0.5000001e-6 * Value) << Text;
    }
}

TEST(CodeFromByteStreamHex, WritesTwoDigitsPerByte)
{
    const clsLINScriptLexer Lexer;
    const std::vector<std::uint8_t> Data = {0x01, 0x02, 0xA5, 0xFF};
    EXPECT_EQ(Lexer.CodeFromByteStreamHex(Data, 0, true), "()");
    EXPECT_EQ(Lexer.CodeFromByteStreamHex(Data, 1, true), "(01)");
    EXPECT_EQ(Lexer.CodeFromByteStreamHex(Data, 4, true), "(01 02 A5 FF)");
    EXPECT_EQ(Lexer.CodeFromByteStreamHex(Data, 2, false), "(01 02)");
    EXPECT_EQ(Lexer.CodeFromByteStreamHex(Data, -1, true), "()");
    for (const std::int32_t Length : {5, std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(FailureOf([&] { Lexer.CodeFromByteStreamHex(Data, Length, true); }), Testing::IndexOutOfRange);
    }
}

TEST(Emission, PassesTextsThrough)
{
    const clsLINScriptLexer Lexer;
    EXPECT_EQ(Lexer.CodeFromConstant("LIN2_0"), "LIN2_0");
    EXPECT_EQ(Lexer.CodeFromComment("x"), "// x");
}

} // namespace Tarvix
