#include "tarvix/common/Error.h"
#include "tarvix/script/clsLINScriptLexer.h"
#include "tests/support/Errors.h"
#include "tests/support/PlainLexer.h"
#include "tests/support/Random.h"
#include "tests/support/UnreadText.h"

#include <gtest/gtest.h>

namespace Tarvix {

namespace {

using Testing::FailureOf;
using Testing::PlainLexer;
using Testing::PlainToken;

struct Scanned {
    std::int32_t Type;
    std::u16string Value;

    bool operator==(const Scanned&) const = default;
};

/// All tokens but the `ettNothing` at the end; for `ettOpenByteStream` the value is left out.
std::vector<Scanned> Scan(std::u16string_view Script)
{
    clsLINScriptLexer Lexer;
    Lexer.ScanInput(Script);
    std::vector<Scanned> Tokens;
    std::u16string_view Value;
    while (const std::int32_t Type = Lexer.GetToken(Value)) {
        Tokens.push_back({Type, std::u16string(Type == ettOpenByteStream ? std::u16string_view() : Value)});
    }
    return Tokens;
}

std::vector<PlainToken> ScanWithPositions(clsLINScriptLexer& Lexer, const std::u16string& Script)
{
    Lexer.ScanInput(Script);
    std::vector<PlainToken> Tokens;
    std::u16string_view Value;
    do {
        const std::int32_t Type = Lexer.GetToken(Value);
        Tokens.push_back(
            {Type, std::u16string(Type == ettOpenByteStream ? std::u16string_view() : Value), Lexer.ScanPos()});
    } while (Tokens.back().Type != ettNothing);
    return Tokens;
}

/// Compares with the plain rules; false after the first difference, so that a fault is told once.
bool AgreesWithPlainRules(clsLINScriptLexer& Lexer, const std::u16string& Script)
{
    const bool Same = ScanWithPositions(Lexer, Script) == PlainLexer(Script).Tokens();
    EXPECT_TRUE(Same) << "script " << testing::PrintToString(std::vector<unsigned>(Script.begin(), Script.end()));
    return Same;
}

} // namespace

struct ScanCase {
    std::u16string Script;
    std::vector<Scanned> Tokens;
};

class LexerScan : public testing::TestWithParam<ScanCase> {};

TEST_P(LexerScan, GivesTheTokens)
{
    EXPECT_EQ(Scan(GetParam().Script), GetParam().Tokens);
}

INSTANTIATE_TEST_SUITE_P(Commands, LexerScan,
                         testing::Values(ScanCase{u"", {}}, ScanCase{u" \t\r\v\x01 ", {}},
                                         ScanCase{u"WAIT 10;", {{1, u"WAIT"}, {2, u"10"}, {6, u";"}}},
                                         ScanCase{u"WRITE_FRAME ID (3C) LEN 2 TX(01 02); // send\r\n",
                                                  {{1, u"WRITE_FRAME"},
                                                   {1, u"ID"},
                                                   {4, u"3C"},
                                                   {1, u"LEN"},
                                                   {2, u"2"},
                                                   {1, u"TX"},
                                                   {4, u"01 02"},
                                                   {6, u";"},
                                                   {7, u" send"},
                                                   {8, u"\r\n"}}},
                                         ScanCase{u"wait Lin2_0 \u00E91 \x7F",
                                                  {{1, u"wait"}, {5, u"Lin2_0"}, {5, u"\u00E91"}, {9, u"\x7F"}}}));

INSTANTIATE_TEST_SUITE_P(
    LineBreaks, LexerScan,
    testing::Values(ScanCase{u"x\r\ny\rz\n\r", {{5, u"x"}, {8, u"\r\n"}, {5, u"y"}, {5, u"z"}, {8, u"\n"}}},
                    ScanCase{u"//a\r\r\n//\r\n//\n//b\r",
                             {{7, u"a\r"}, {8, u"\r\n"}, {7, u""}, {8, u"\r\n"}, {7, u""}, {8, u"\n"}, {7, u"b\r"}}},
                    ScanCase{u"()(a\rb)(\r\n(;//(\n(c\r",
                             {{4, u""}, {4, u"a\rb"}, {10, u""}, {8, u"\r\n"}, {10, u""}, {8, u"\n"}, {10, u""}}}));

INSTANTIATE_TEST_SUITE_P(
    Numbers, LexerScan,
    testing::Values(
        ScanCase{u"0 5. .5 1e5 1.5e-3 2E+08",
                 {{2, u"0"}, {3, u"5."}, {3, u".5"}, {3, u"1e5"}, {3, u"1.5e-3"}, {3, u"2E+08"}}},
        ScanCase{
            u"1.2.3 1e 1e5.5 1ee2 . 1e+ -5 +5",
            {{9, u"1.2.3"}, {9, u"1e"}, {9, u"1e5.5"}, {9, u"1ee2"}, {9, u"."}, {9, u"1e+"}, {9, u"-5"}, {9, u"+5"}}},
        ScanCase{u"1e5+2 12abc 0x1F 1;",
                 {{3, u"1e5"}, {9, u"+2"}, {2, u"12"}, {5, u"abc"}, {2, u"0"}, {5, u"x1F"}, {2, u"1"}, {6, u";"}}},
        ScanCase{u"+5", {{9, u"+5"}}}, ScanCase{u"#x;(1)//y z", {{9, u"#x;(1)//y"}, {5, u"z"}}},
        ScanCase{u"/ /x)", {{9, u"/"}, {9, u"/x)"}}}));

TEST(Lexer, FindsEveryKeywordInAnyCaseAndNothingElse)
{
    for (const std::string_view Keyword : KeywordTable) {
        const std::u16string Capitals(Keyword.begin(), Keyword.end());
        std::u16string Small = Capitals;
        for (char16_t& Letter : Small) {
            Letter = Letter == u'_' ? u'_' : static_cast<char16_t>(Letter + 32);
        }
        EXPECT_EQ(Scan(Capitals), (std::vector<Scanned>{{ettKeyword, Capitals}}));
        EXPECT_EQ(Scan(Small), (std::vector<Scanned>{{ettKeyword, Small}}));
        for (std::size_t k = 0; k < Capitals.size(); ++k) {
            std::u16string Other = Capitals;
            Other[k] = static_cast<char16_t>(Other[k] + 0x100); // a letter that is not of ASCII
            EXPECT_EQ(Scan(Other), (std::vector<Scanned>{{ettConstant, Other}}));
        }
        EXPECT_EQ(Scan(Capitals + u"_").front().Type, ettConstant);
        EXPECT_EQ(Scan(Capitals.substr(0, 1)).front().Type, ettConstant);
    }
}

TEST(Lexer, AgreesWithThePlainRulesOnEveryShortText)
{
    clsLINScriptLexer Lexer;
    const auto Exhaust = [&Lexer](std::u16string_view Alphabet, std::size_t Longest) {
        for (std::size_t Length = 0, Count = 1; Length <= Longest; ++Length, Count *= Alphabet.size()) {
            std::u16string Script(Length, u' ');
            for (std::size_t Number = 0; Number < Count; ++Number) {
                std::size_t Rest = Number;
                for (char16_t& Unit : Script) {
                    Unit = Alphabet[Rest % Alphabet.size()];
                    Rest /= Alphabet.size();
                }
                if (!AgreesWithPlainRules(Lexer, Script)) {
                    return;
                }
            }
        }
    };
    Exhaust(u"1.e+-(; )/x\r\n", 5);
    Exhaust(u"1.E+;", 7);
    Exhaust(u"(/)\r\n", 7);
}

TEST(Lexer, AgreesWithThePlainRulesOnRandomTexts)
{
    const std::vector<std::u16string> Pieces = {
        u"1", u"23", u".",      u"e",      u"E",          u"+",
        u"-", u"(",  u")",      u";",      u" ",          u"\t",
        u"/", u"//", u"\r",     u"\n",     u"\r\n",       u"x",
        u"_", u"ID", u"rxmask", u"Break",  u"WAIT",       u"\x7F",
        u"@", u"`",  u"\u0080", u"\u010D", u"\U0001F600", std::u16string(1, u'\0')};
    Testing::Random Random;
    clsLINScriptLexer Lexer;
    for (int Run = 0; Run < 20000; ++Run) {
        std::u16string Script;
        for (std::int32_t Left = Random.Between(0, 39); Left > 0; --Left) {
            Script += Pieces[Random.Next() % Pieces.size()];
        }
        if (!AgreesWithPlainRules(Lexer, Script)) {
            return;
        }
    }
}

TEST(Lexer, ScansLongTextsInTimeLinearInTheirLength)
{
    // A scanner that reads a token's text again for each of its parts would need days for these.
    struct Case {
        std::u16string_view Piece;
        std::size_t Tokens;
    };
    constexpr std::size_t Times = 1000000;
    for (const auto& [Piece, Tokens] : {Case{u"1.", 1}, Case{u"1e", 1}, Case{u"1+", 2}, Case{u"1e5+", 2}, Case{u"(", 1},
                                        Case{u"/", 1}, Case{u"\r", 0}, Case{u" ", 0}, Case{u"(\r", 1},
                                        Case{u"(\n", 2 * Times}, Case{u"1(", 2}, Case{u".;", 1}, Case{u"x", 1}}) {
        std::u16string Script;
        for (std::size_t k = 0; k < Times; ++k) {
            Script += Piece;
        }
        EXPECT_EQ(Scan(Script).size(), Tokens) << testing::PrintToString(Piece);
    }
}

TEST(Lexer, TellsItsPositionAndItsEnd)
{
    clsLINScriptLexer Lexer;
    std::u16string_view Value;
    EXPECT_EQ(Lexer.ScanPos(), 0);
    EXPECT_FALSE(Lexer.EndOfInput());
    EXPECT_EQ(FailureOf([&] { Lexer.GetToken(Value); }), Testing::InvalidArgument);

    Lexer.ScanInput(u"");
    EXPECT_EQ(Lexer.ScanPos(), 1);
    EXPECT_TRUE(Lexer.EndOfInput());
    EXPECT_EQ(Lexer.GetToken(Value), ettNothing);
    EXPECT_EQ(Lexer.ScanPos(), 1);

    Lexer.ScanInput(u"WAIT\r\nx ");
    Lexer.GetToken(Value);
    EXPECT_EQ(Lexer.ScanPos(), 5);
    Lexer.GetToken(Value);
    EXPECT_EQ(Lexer.ScanPos(), 7);
    Lexer.GetToken(Value);
    EXPECT_FALSE(Lexer.EndOfInput()); // a blank is left
    EXPECT_EQ(Lexer.GetToken(Value), ettNothing);
    EXPECT_TRUE(Value.empty());
    EXPECT_EQ(Lexer.ScanPos(), 9);
    EXPECT_TRUE(Lexer.EndOfInput());
}

TEST(Lexer, KeepsItsOwnCopyOfTheInput)
{
    clsLINScriptLexer Lexer;
    std::u16string Script = u"SYNC_BYTE (55); // long enough for memory of its own";
    Lexer.ScanInput(Script);
    Script.assign(Script.size(), u'?');
    std::u16string_view Value;
    EXPECT_EQ(Lexer.GetToken(Value), ettKeyword);
    EXPECT_EQ(Value, u"SYNC_BYTE");

    std::u16string Taken = u"WAIT 10; // also long enough for memory of its own";
    const char16_t* const Memory = Taken.data();
    Lexer.TakeInput(std::move(Taken));
    EXPECT_EQ(Lexer.GetToken(Value), ettKeyword);
    EXPECT_EQ(Value.data(), Memory);
}

TEST(Lexer, RefusesATextWhosePositionsDoNotFit)
{
    const Testing::UnreadText TooLong((std::size_t{1} << 31U) - 1);
    clsLINScriptLexer Lexer;
    Lexer.ScanInput(u"BREAK WAIT");
    std::u16string_view Value;
    Lexer.GetToken(Value);
    EXPECT_EQ(FailureOf([&] { Lexer.ScanInput(TooLong.Text()); }), Testing::Overflow);
    EXPECT_EQ(Lexer.ScanPos(), 6);
    EXPECT_EQ(Lexer.GetToken(Value), ettKeyword);
    EXPECT_EQ(Value, u"WAIT");
}

TEST(TokenTypeName, NamesEveryTypeAndNothingElse)
{
    const std::vector<std::string> Names = {
        "unknown construct", "nothing", "keyword", "integer number", "real number",       "byte stream",
        "symbolic constant", ";",       "comment", "end of line",    "unknown construct", "unknown construct",
        "unknown construct"};
    for (std::int32_t Type = -1; Type < 12; ++Type) {
        EXPECT_EQ(TokenTypeName(Type), Names[static_cast<std::size_t>(Type + 1)]) << Type;
    }
}

} // namespace Tarvix
