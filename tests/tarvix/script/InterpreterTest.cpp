#include "tarvix/master/clsLIN.h"
#include "tarvix/script/clsLINScriptInterpreter.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeDevice.h"
#include "tests/support/SlaveAnswer.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace Tarvix {

using namespace Testing;
using Calls = std::vector<std::string>;
using Positions = std::vector<std::int32_t>;

namespace {

Failure Script(std::uint32_t Number, const char* Description)
{
    return {Number, "clsLINScriptInterpreter", Description};
}

const Failure OpenStream = Script(0x8004C3C9, "Syntax error in script");
const Failure EmptyCommand = Script(0x8004C3CA, "Empty commands are not allowed");
const Failure ExpectedKeyword = Script(0x8004C3CB, "Expected keyword");
const Failure InvalidKeyword = Script(0x8004C3CC, "Invalid keyword");
const Failure EndExpected = Script(0x8004C3CE, "Error in command, end of command expected");

struct Bench {
    FakeDevice Device;
    clsLIN Master;
    clsLINScriptInterpreter Interpreter;
    Positions Progress;

    Bench()
    {
        Master.Initialize(Device);
        Interpreter.Initialize(Master);
        Interpreter.ExecutionProgress = [this](std::int32_t CodePos) { Progress.push_back(CodePos); };
        Device.Calls.clear();
    }
    Failure Run(std::string_view Text)
    {
        return FailureOf([&] { Interpreter.ExecuteScript(Text); });
    }
};

const std::string Break = "SendSamples 14 1 0";

} // namespace

TEST(Interpreter, ReportsStartLineEndsAndEnd)
{
    struct Case {
        const char* Text;
        Positions Expected;
        std::size_t Breaks;
    };
    for (const auto& [Text, Expected, Breaks] : {
             Case{"", {1, 1}, 0},
             {"BREAK", {1, 6}, 0}, // a last word that nothing closes is dropped
             {"BREAK;", {1, 7}, 1},
             {"BREAK;\r\n", {1, 9, 9}, 1},
             {"BREAK; BREAK;", {1, 14}, 2},
             {"BREAK;;", {1, 8}, 1}, // likewise a last ";"
             {"// only\n\n  // this", {1, 9, 10, 19}, 0},
             {"BREAK // a comment inside\r\n;BREAK\n;\n", {1, 28, 35, 37, 37}, 2},
             {"  \t ", {1, 5}, 0},
         }) {
        Bench Bus;
        EXPECT_EQ(Bus.Run(Text), NoFailure) << Text;
        EXPECT_EQ(Bus.Progress, Expected) << Text;
        EXPECT_EQ(Bus.Device.Calls, Calls(Breaks, Break)) << Text;
    }
}

TEST(Interpreter, ReportsALineEndAfterTheCommandsOfItsLine)
{
    Bench Bus;
    std::vector<std::size_t> Done;
    Bus.Interpreter.ExecutionProgress = [&](std::int32_t) { Done.push_back(Bus.Device.Calls.size()); };
    EXPECT_EQ(Bus.Run("BREAK; BREAK;\nBREAK;\n"), NoFailure);
    EXPECT_EQ(Done, (std::vector<std::size_t>{0, 2, 3, 3}));
}

TEST(Interpreter, CountsUTF16CodeUnits)
{
    Bench Bus;
    EXPECT_EQ(Bus.Run("// \xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\n"), NoFailure);
    EXPECT_EQ(Bus.Progress, (Positions{1, 9, 9}));
    Bus.Progress.clear();
    Bus.Interpreter.ExecuteScript(u"// \u00e9\u20ac\U0001F600\n");
    EXPECT_EQ(Bus.Progress, (Positions{1, 9, 9}));
    Bus.Progress.clear();
    EXPECT_EQ(Bus.Run("// \xFF\xC3\n"), NoFailure) << "ill-formed bytes are one code unit each";
    EXPECT_EQ(Bus.Progress, (Positions{1, 7, 7}));
}

TEST(Interpreter, StopsAtTheFirstErrorAndKeepsWhatRan)
{
    struct Case {
        const char* Text;
        Failure Expected;
        std::int32_t Stood;
        Positions Progress;
        std::size_t Breaks;
    };
    for (const Case& Fault : {
             Case{"BREAK;;\n", EmptyCommand, 8, {1}, 1},
             {"ID 5;", InvalidKeyword, 3, {1}, 0},
             {"BRAKE;", ExpectedKeyword, 6, {1}, 0},
             {"BREAK;\nBREAK;\n10 BREAK;", ExpectedKeyword, 17, {1, 8, 15}, 2},
             {"BREAK\n", EndExpected, 7, {1, 7}, 0},
             {"(01\nBREAK;", OpenStream, 4, {1}, 0},
             {"BREAK; #;\n", ExpectedKeyword, 10, {1}, 1},
             {"WAIT\n-5;\n", EndExpected, 10, {1, 6, 10}, 0}, // "-5;" is one unknown construct
         }) {
        Bench Bus;
        EXPECT_EQ(Bus.Run(Fault.Text), Fault.Expected) << Fault.Text;
        EXPECT_EQ(Bus.Interpreter.CodePos(), Fault.Stood) << Fault.Text;
        EXPECT_EQ(Bus.Progress, Fault.Progress) << Fault.Text;
        EXPECT_EQ(Bus.Device.Calls, Calls(Fault.Breaks, Break)) << Fault.Text;
        EXPECT_EQ(Bus.Run("BREAK;"), NoFailure) << "ready for the next script";
    }
}

TEST(Interpreter, RefusesEveryParameterNameAsACommand)
{
    for (const char* const Word : {"BD", "ID", "LEN", "TX", "RX", "CHKSUM", "RXMASK", "CHKSUMMASK"}) {
        Bench Bus;
        EXPECT_EQ(Bus.Run(std::string(Word).append(" 1;")), InvalidKeyword) << Word;
    }
}

TEST(Interpreter, NeedsAMasterForCommandsOnly)
{
    clsLINScriptInterpreter Interpreter;
    EXPECT_EQ(Interpreter.CodePos(), 0);
    EXPECT_EQ(FailureOf([&] { Interpreter.ExecuteScript("// nothing to do\n"); }), NoFailure);
    EXPECT_EQ(FailureOf([&] { Interpreter.ExecuteScript("BREAK;"); }), NotAttached);
    EXPECT_EQ(FailureOf([&] { Interpreter.ExecuteScript("WAIT 40000;"); }), Overflow) << "the value is read first";

    Bench Bus;
    Bus.Interpreter.Terminate();
    EXPECT_EQ(Bus.Run("BREAK;"), NotAttached);
    Bus.Interpreter.Initialize(Bus.Master);
    EXPECT_EQ(Bus.Run("BREAK;"), NoFailure);
    EXPECT_EQ(Bus.Device.Calls, Calls{Break}) << "detaching did not call the master";
}

TEST(Interpreter, RefusesToRunInsideItself)
{
    Bench Bus;
    int Handled = 0;
    Bus.Interpreter.ExecutionProgress = [&](std::int32_t) {
        EXPECT_EQ(FailureOf([&] { Bus.Interpreter.ExecuteScript("WAIT 1;"); }), InvalidArgument);
        EXPECT_EQ(FailureOf([&] { Bus.Interpreter.ExecuteScript(u"WAIT 1;"); }), InvalidArgument);
        ++Handled;
    };
    EXPECT_EQ(Bus.Run("BREAK;\nBREAK;"), NoFailure);
    EXPECT_EQ(Handled, 3);
    EXPECT_EQ(Bus.Device.Calls, Calls(2, Break));
}

TEST(Interpreter, LetsHandlersFailDetachAndChangeThemselves)
{
    Bench Bus;
    Bus.Interpreter.ExecutionProgress = [](std::int32_t CodePos) {
        if (CodePos > 1) {
            throw std::runtime_error("the host's own");
        }
    };
    EXPECT_THROW(Bus.Interpreter.ExecuteScript("BREAK;\nBREAK;"), std::runtime_error);
    EXPECT_EQ(Bus.Device.Calls, Calls{Break});

    int First = 0;
    Bus.Interpreter.ExecutionProgress = [&](std::int32_t) {
        ++First;
        Bus.Interpreter.ExecutionProgress = nullptr;
    };
    EXPECT_EQ(Bus.Run("BREAK;"), NoFailure);
    EXPECT_EQ(First, 2) << "a run reports to the handler that it started with";
    EXPECT_EQ(Bus.Run("BREAK;"), NoFailure) << "without a handler";
}

TEST(Interpreter, KeepsNothingOfAHandlerAfterTheRun)
{
    Bench Bus;
    const auto Held = std::make_shared<int>(0);
    Bus.Interpreter.ExecutionProgress = [Held](std::int32_t) { ++*Held; };
    EXPECT_EQ(Bus.Run("BREAK;"), NoFailure);
    Bus.Interpreter.ExecutionProgress = nullptr;
    EXPECT_EQ(*Held, 2);
    EXPECT_EQ(Held.use_count(), 1);
}

TEST(Interpreter, DeviceFailuresArriveUntouched)
{
    Bench Bus;
    struct Unplugged {};
    Bus.Device.BeforeCall = [](std::size_t Call) {
        if (Call == 1) {
            throw Unplugged();
        }
    };
    EXPECT_THROW(Bus.Interpreter.ExecuteScript("BREAK;\nBREAK;\n"), Unplugged);
    EXPECT_EQ(Bus.Progress, (Positions{1, 8}));
    EXPECT_EQ(Bus.Interpreter.CodePos(), 14);
}

} // namespace Tarvix
