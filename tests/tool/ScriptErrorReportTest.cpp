#include "tools/tarvix/ScriptErrorReport.h"

#include <gtest/gtest.h>

#include <string>

namespace Tarvix::Tool {

namespace {

/// An error without advice.
const Error Plain(1, "source", "Description");

struct PlaceCase {
    std::string Name;
    std::u16string Text;
    std::int32_t CodePos;
    std::string Report;
};

class Place : public testing::TestWithParam<PlaceCase> {};
TEST_P(Place, IsTheLastCharacterThatWasRead)
{
    EXPECT_EQ(ScriptErrorReport({"a.lin", GetParam().Text}, GetParam().CodePos, Plain), GetParam().Report);
}
INSTANTIATE_TEST_SUITE_P(
    Each, Place,
    testing::Values(
        PlaceCase{"FirstLine", u"WAIT x;", 7, "a.lin:1:6: Description (1, source).\n    WAIT x;\n         ^\n"},
        PlaceCase{"Empty", u"", 1, "a.lin:1:1: Description (1, source).\n    \n    ^\n"},
        PlaceCase{"NothingRead", u"BREAK;", 1, "a.lin:1:1: Description (1, source).\n    BREAK;\n    ^\n"},
        PlaceCase{"LastLine", u"BREAK;\nWAIT", 12, "a.lin:2:4: Description (1, source).\n    WAIT\n       ^\n"},
        PlaceCase{"BlanksAndLineEndsAreNotCounted", u"BREAK\r\n\r\n  ", 12,
                  "a.lin:1:5: Description (1, source).\n    BREAK\n        ^\n"},
        PlaceCase{"CarriageReturnIsNotShown", u"BREAK;\r\nx;\r\ny", 11,
                  "a.lin:2:2: Description (1, source).\n    x;\n     ^\n"},
        PlaceCase{"TabsStay", u"\tWAIT\tx;", 8, "a.lin:1:7: Description (1, source).\n    \tWAIT\tx;\n    \t    \t^\n"},
        PlaceCase{"PairsTakeOneColumn", u"\U0001F600\u00FCx;", 5,
                  "a.lin:1:3: Description (1, source).\n    \xF0\x9F\x98\x80\xC3\xBCx;\n      ^\n"},
        PlaceCase{"ControlCharactersDoNotReachTheTerminal", u"\x1B[31mx;", 7,
                  "a.lin:1:6: Description (1, source).\n    ?[31mx;\n         ^\n"},
        PlaceCase{"PositionBeyondTheText", u"ab", 99, "a.lin:1:2: Description (1, source).\n    ab\n     ^\n"}),
    [](const auto& Info) { return Info.param.Name; });

TEST(ScriptErrorReport, ShowsThePartOfALongLineAroundTheCaret)
{
    const std::u16string Long = std::u16string(5000, u'a') + u'!' + std::u16string(5000, u'b');
    EXPECT_EQ(ScriptErrorReport({"a", Long}, 5002, Plain), std::string("a:1:5001: Description (1, source).\n    ")
                                                               .append(70, 'a')
                                                               .append("!")
                                                               .append(29, 'b')
                                                               .append("\n    ")
                                                               .append(70, ' ')
                                                               .append("^\n"));
}

TEST(ScriptErrorReport, ClippingKeepsSurrogatePairsWhole)
{
    std::u16string Pairs;
    for (int k = 0; k < 100; ++k) {
        Pairs += u"\U0001F600";
    }
    // At every caret the shown part has whole characters alone.
    for (std::int32_t CodePos = 2; CodePos <= 201; ++CodePos) {
        EXPECT_EQ(ScriptErrorReport({"a", Pairs}, CodePos, Plain).find("\xEF\xBF\xBD"), std::string::npos) << CodePos;
    }
}

TEST(ScriptErrorReport, TellsWhatToDo)
{
    const Error Syntax(static_cast<std::int32_t>(errLINScriptInterpreter::errEmptyCommand), "clsLINScriptInterpreter",
                       "Empty commands are not allowed");
    EXPECT_EQ(ScriptErrorReport({"a", u";"}, 2, Syntax),
              "a:1:1: Empty commands are not allowed (0x8004C3CA, clsLINScriptInterpreter).\n    ;\n    ^\n"
              "Delete the \";\" that stands alone.\n");
}

} // namespace

} // namespace Tarvix::Tool
