// Scripts: what they print, and how their failures are told.

#include "tests/tool/Program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace Tarvix::Testing {

namespace {

constexpr const char* Candump = "candump";

Outcome RunScript(const std::string& Script, const std::string& Format = Candump)
{
    return RunQuietly({"run", "-", "--format", Format}, {.Input = Script});
}

TEST(RunScripts, AFrameALine)
{
    const Outcome Result = RunScript("WRITE_FRAME ID (20) LEN 2 TX (01 02); READ_FRAME ID (61) LEN 2;\n"
                                     "WAIT 10; BREAK;\n"
                                     "READ_FRAME ID (7D) LEN 2;\n");
    EXPECT_EQ(Result.Status, 0);
    EXPECT_EQ(Result.Out, "(0.000000) lin0 20#0102\n(0.003328) lin0 21#0102\n(0.013624) lin0 3D#1234\n");
    EXPECT_EQ(Result.Error, "");
}

TEST(RunScripts, OneAfterTheOtherOnOneBus)
{
    const TemporaryDirectory Directory;
    const std::string First = Directory.Write("a.lin", "CHKSUM_MODE LIN1_3; WRITE_FRAME ID (20) LEN 1 TX (07);");
    const std::string Last = Directory.Write("b.lin", "READ_FRAME ID (11) LEN 1;"); // right in the mode set before
    const Outcome Result = RunQuietly({"run", First, "-", Last, "--format", Candump},
                                      {.Input = "CHKSUM_MODE LIN2_0; READ_FRAME ID (61) LEN 1; CHKSUM_MODE LIN1_3;"});
    EXPECT_EQ(Result.Status, 0) << Result.Error;
    EXPECT_EQ(Result.Out, "(0.000000) lin0 20#07\n(0.002808) lin0 21#07\n(0.011856) lin0 11#5A\n");
}

TEST(RunScripts, TheFirstFailureEndsTheRun)
{
    const TemporaryDirectory Directory;
    const std::string Bad = Directory.Write("bad.lin", "READ_FRAME ID (7D) LEN 2;\nREAD_FRAME ID (6A) LEN 2;\n");
    const std::string Good = Directory.Write("good.lin", "READ_FRAME ID (7D) LEN 2;\n");
    const Outcome Result = RunQuietly({"run", Bad, Good, "--format", Candump});
    EXPECT_EQ(Result.Status, 1);
    EXPECT_EQ(Result.Out, "(0.000000) lin0 3D#1234\n(0.009048) lin0 2A#R\n");
    EXPECT_EQ(Result.Error,
              "tarvix: " + Bad +
                  ":2:25: No response: header sent, no response within the 14 byte slots (0x8004C3D1, "
                  "clsLINScriptInterpreter).\n"
                  "    READ_FRAME ID (6A) LEN 2;\n"
                  "                            ^\n"
                  "Check that the node is powered and wired, that it answers this identifier, and that the bit rate is "
                  "right.\n");
}

TEST(RunScripts, AllScriptsAreReadBeforeAnythingIsDone)
{
    const Outcome Result = RunQuietly({"run", "-", "/nowhere.lin"}, {.Input = "READ_FRAME ID (7D) LEN 2;"});
    EXPECT_EQ(Result.Status, 2);
    EXPECT_EQ(Result.Out, "");
}

TEST(RunScripts, FailedFramesArePrintedWithTheirError)
{
    const Outcome Result = RunScript("READ_FRAME ID (7D) LEN 2 RX (12 35);", "json");
    EXPECT_EQ(Result.Status, 1);
    EXPECT_EQ(Result.Out, R"({"time":0.000000,"op":"read","id":"0x3D","pid":"0x7D","data":"12 34","checksum":"0x3C",)"
                          R"("ok":false,"error":{"number":"0x8004C3D0","source":"clsLINScriptInterpreter",)"
                          R"("description":"Rx data check error"}})"
                          "\n");
}

TEST(RunScripts, AFrameBeforeAFaultyCommandWasAllRight)
{
    for (const char* const Script : {"READ_FRAME ID (7D) LEN 2; NONSENSE;", "READ_FRAME ID (7D) LEN 2; SYNC_BYTE ();",
                                     "READ_FRAME ID (7D) LEN 2; WRITE_FRAME ID (20) LEN 0;"}) {
        const Outcome Result = RunScript(Script, "json");
        EXPECT_EQ(Result.Status, 1);
        EXPECT_EQ(nlohmann::json::parse(Result.Out)["ok"], true) << Script;
    }
}

TEST(RunScripts, IdentifiersGoOnTheBusAsWritten)
{
    const Outcome Result = RunScript("WRITE_FRAME ID (3D) LEN 1 TX (01);", "json");
    const auto Frame = nlohmann::json::parse(Result.Out);
    EXPECT_EQ(Frame["id"], "0x3D");
    EXPECT_EQ(Frame["pid"], "0x3D");
}

TEST(RunScripts, TheScriptsBitRateHasTheLastWord)
{
    const Outcome Result = RunQuietly({"run", "-", "-b", "9600", "--format", Candump},
                                      {.Input = "BAUDRATE 10000 BD; BREAK; READ_FRAME ID (7D) LEN 2;"});
    EXPECT_EQ(Result.Out, "(0.001400) lin0 3D#1234\n"); // 14 bits of 100 us
}

TEST(RunScripts, UTF16IsReadAndPositionsCountCharacters)
{
    std::string Script = "\xFF\xFE";
    for (const char Character : std::string("READ_FRAME ID (7D) LEN 2;\r\n  WAIT x;")) {
        Script.append({Character, '\0'});
    }
    const Outcome Result = RunScript(Script);
    EXPECT_EQ(Result.Status, 1);
    EXPECT_EQ(Result.Out, "(0.000000) lin0 3D#1234\n");
    EXPECT_EQ(Result.Error,
              "tarvix: standard input:2:9: Expected integer number (0x8004C3CB, clsLINScriptInterpreter).\n"
              "      WAIT x;\n"
              "            ^\n"
              "Look at the word above the caret: it is misspelt, missing, or a value of another kind.\n");
}

TEST(RunScripts, AnEmptyScriptDoesNothing)
{
    const Outcome Result = RunScript("");
    EXPECT_EQ(Result.Status, 0);
    EXPECT_EQ(Result.Out + Result.Error, "");
}

TEST(RunScripts, LongRunsPrintEveryFrame)
{
    std::string Script;
    for (int k = 0; k < 5000; ++k) {
        Script += "WRITE_FRAME ID (20) LEN 1 TX (00);\n";
    }
    const Outcome Result = RunScript(Script);
    EXPECT_EQ(Result.Status, 0);
    EXPECT_EQ(std::count(Result.Out.begin(), Result.Out.end(), '\n'), 5000);
    EXPECT_TRUE(Result.Out.ends_with("(14.037192) lin0 20#00\n")); // 4999 frames of 432 samples of 6.5 us
}

} // namespace

} // namespace Tarvix::Testing
