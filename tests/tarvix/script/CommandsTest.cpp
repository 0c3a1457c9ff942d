#include "tarvix/master/clsLIN.h"
#include "tarvix/script/clsLINScriptInterpreter.h"
#include "tests/support/CollectingLog.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeDevice.h"
#include "tests/support/SlaveAnswer.h"

#include <gtest/gtest.h>

namespace Tarvix {

using namespace Testing;
using Lines = std::vector<std::string>;

namespace {

constexpr const char* Interpreter = "clsLINScriptInterpreter";
const Failure ExpectedKeyword{0x8004C3CB, Interpreter, "Expected keyword"};
const Failure ExpectedInteger{0x8004C3CB, Interpreter, "Expected integer number"};
const Failure ExpectedReal{0x8004C3CB, Interpreter, "Expected real number"};
const Failure ExpectedStream{0x8004C3CB, Interpreter, "Expected byte stream"};
const Failure ExpectedConstant{0x8004C3CB, Interpreter, "Expected symbolic constant"};
const Failure InvalidConstant{0x8004C3CC, Interpreter, "Invalid symbolic constant"};
const Failure InvalidByte{0x8004C3CD, Interpreter, "Invalid byte definition"};
const Failure ErrorInCommand{0x8004C3CE, Interpreter, "Error in command"};
const Failure EndExpected{0x8004C3CE, Interpreter, "Error in command, end of command expected"};
const Failure InvalidLength{0x8004C3CF, Interpreter, "Invalid data length"};
const Failure RxDataCheck{0x8004C3D0, Interpreter, "Rx data check error"};
const Failure NoResponse{0x8004C3D1, Interpreter, "No response"};
const Failure OpenStream{0x8004C3C9, Interpreter, "Syntax error in script"};

Failure SecondaryLexical(const char* Fault)
{
    return {0x8004C3DE, "clsLINScriptLexer", std::string("Error in secondary lexical analysis, ").append(Fault)};
}

// What a command does is seen in the log line that the master writes for it.
struct Bench {
    FakeDevice Device;
    CollectingLog Log;
    clsLIN Master;
    clsLINScriptInterpreter Runner;

    Bench()
    {
        Master.Initialize(Device);
        Master.Log(&Log);
        Runner.Initialize(Master);
        Device.Calls.clear();
    }
    Failure Run(std::string_view Text)
    {
        return FailureOf([&] { Runner.ExecuteScript(std::string(Text).append("\n")); });
    }
};

} // namespace

TEST(Commands, ReachTheMasterWithTheirValues)
{
    struct Case {
        const char* Text = "";
        const char* Line = "";
    };
    for (const auto& [Text, Line] : {
             Case{"BAUDRATE 9600 BD;", "BAUDRATE 9600 BD;"},
             {"baudrate 9600\n// comment\nbd // another\n;", "BAUDRATE 9600 BD;"},
             {"BAUDRATE 5.208333E-05;", "BAUDRATE 5.208333E-05;"},
             {"BAUDRATE 1;", "BAUDRATE 1;"}, // seconds per bit
             {"WAIT 32767;", "WAIT 32767;"},
             {"BREAK;", "BREAK;"},
             {"BREAK_WIDTH 13;", "BREAK_WIDTH 13;"},
             {"Break_Width .5e+2;", "BREAK_WIDTH 50;"},
             {"SYNC_BYTE (55);", "SYNC_BYTE (55);"},
             {"SYNC_BYTE 85;", "SYNC_BYTE (55);"},
             {"SYNC_BYTE ( 'b0101_0101 );", "SYNC_BYTE (55);"},
             {"CHKSUM_MODE LIN2_0;", "CHKSUM_MODE LIN2_0;"},
             {"chksum_mode lin1_3;", "CHKSUM_MODE LIN1_3;"},
             {"WRITE_FRAME ID (3C) LEN 2 TX (01 02);", "WRITE_FRAME ID (3C) LEN 2 TX (01 02);"},
             {"write_frame id 60 len 2 tx(01 02)chksum('hfc);", "WRITE_FRAME ID (3C) LEN 2 TX (01 02) CHKSUM (FC);"},
             {"WRITE_FRAME ID 255 LEN 8 TX (1 2 3 4 5 6 7 8) CHKSUM 0;",
              "WRITE_FRAME ID (FF) LEN 8 TX (01 02 03 04 05 06 07 08) CHKSUM (00);"},
         }) {
        Bench Bus;
        EXPECT_EQ(Bus.Run(Text), NoFailure) << Text;
        EXPECT_EQ(Bus.Log.Lines, Lines{std::string(Line).append("\r\n")}) << Text;
    }
}

TEST(Commands, FaultsLeaveTheMasterUntouched)
{
    struct Case {
        const char* Text = "";
        Failure Expected;
    };
    for (const auto& [Text, Expected] : {
             Case{"BAUDRATE 9600 ID;", ErrorInCommand},
             {"BAUDRATE 9600 BD 5;", EndExpected},
             {"BAUDRATE 9600 5;", ExpectedKeyword},
             {"BAUDRATE 9600", ExpectedKeyword}, // the end of the text is no keyword
             {"BAUDRATE 9600.5 BD;", ExpectedInteger},
             {"BAUDRATE 9600.5 BD", EndExpected}, // structure before value
             {"BAUDRATE x;", ExpectedReal},
             {"BAUDRATE (01) BD;", ExpectedInteger},
             {"BAUDRATE 1e400;", Overflow},
             {"BAUDRATE 1e39;", Overflow}, // beyond a 32-bit float
             {"BAUDRATE 2147483648 BD;", Overflow},
             {"BAUDRATE 0 BD;", DivisionByZero},
             {"BAUDRATE 0;", DivisionByZero},
             {"WAIT 10.5;", ExpectedInteger},
             {"WAIT 32768;", Overflow},
             {"WAIT 10", EndExpected},
             {"WAIT 10 BREAK;", EndExpected},
             {"WAIT ;;", ExpectedInteger}, // the first ";" stands where the value belongs
             {"BREAK 1;", EndExpected},
             {"BREAK_WIDTH 0;", InvalidParameter},
             {"BREAK_WIDTH x;", ExpectedReal},
             {"SYNC_BYTE (55 55);", InvalidByte},
             {"SYNC_BYTE ( );", InvalidByte},
             {"SYNC_BYTE ();", IndexOutOfRange},
             {"SYNC_BYTE 1.0;", InvalidByte},
             {"SYNC_BYTE x;", InvalidByte},
             {"SYNC_BYTE 256;", Overflow},
             {"SYNC_BYTE (100);", SecondaryLexical("byte overflow")},
             {"CHKSUM_MODE LIN2_1;", InvalidConstant},
             {"CHKSUM_MODE l\xC4\xB1n2_0;", InvalidConstant}, // dotless i: no ASCII letter
             {"CHKSUM_MODE 1;", ExpectedConstant},
             {"CHKSUM_MODE BREAK;", ExpectedConstant},
             {"WRITE_FRAME LEN 2 ID (3C) TX (01 02);", ErrorInCommand},
             {"WRITE_FRAME 60 LEN 2 TX (01 02);", ExpectedKeyword},
             {"WRITE_FRAME ID x LEN 2 TX (01 02);", InvalidByte},
             {"WRITE_FRAME ID (3C) TX (01);", ErrorInCommand},
             {"WRITE_FRAME ID (3C) LEN (02) TX (01 02);", ExpectedInteger},
             {"WRITE_FRAME ID (3C) LEN 256 TX (01 02);", Overflow},
             {"WRITE_FRAME ID (3C) LEN 2 TX (01);", InvalidLength},
             {"WRITE_FRAME ID (3C) LEN 2 TX 01;", ExpectedStream},
             {"WRITE_FRAME ID (3C) LEN 2 TX (01,02);", SecondaryLexical("unknown character")},
             {"WRITE_FRAME ID (3C) LEN 2 TX (01\n02);", OpenStream},
             {"WRITE_FRAME ID (3C) LEN 2;", ExpectedKeyword},
             {"WRITE_FRAME ID (3C) LEN 2 RX (01 02);", ErrorInCommand},
             {"WRITE_FRAME ID (3C) LEN 2 TX (01 02) RX (01 02);", ErrorInCommand},
             {"WRITE_FRAME ID (3C) LEN 2 TX (01 02) CHKSUM (01 02);", InvalidByte},
             {"WRITE_FRAME ID (3C) LEN 2 TX (01 02) CHKSUM 1", EndExpected},
             {"WRITE_FRAME ID (3C) LEN 0 TX ();", ErrorInCommand},
             {"WRITE_FRAME ID (3C) LEN 0;", InvalidDataBytes},
             {"WRITE_FRAME ID 1 LEN 9 TX (1 2 3 4 5 6 7 8 9);", InvalidDataBytes},
             {"READ_FRAME ID (3D) LEN 0;", InvalidDataBytes},
             {"READ_FRAME ID (3D) LEN 2 TX (01 02);", EndExpected},
             {"READ_FRAME ID (3D) LEN 2", ExpectedKeyword},
             {"READ_FRAME ID (3D) LEN 2 5;", ExpectedKeyword},
             {"READ_FRAME ID (3D) LEN 2 RX (12);", InvalidLength},
             {"READ_FRAME ID (3D) LEN 2 RX (12 34) RXMASK (FF);", InvalidLength},
             {"READ_FRAME ID (3D) LEN 2 RXMASK (FF FF);", EndExpected},
             {"READ_FRAME ID (3D) LEN 2 CHKSUMMASK (FF);", EndExpected},
             {"READ_FRAME ID (3D) LEN 2 CHKSUM (A5) RX (12 34);", EndExpected},
             {"READ_FRAME ID (3D) LEN 2 RX (12 34) CHKSUM (A5) CHKSUMMASK (FF)", EndExpected},
         }) {
        Bench Bus;
        EXPECT_EQ(Bus.Run(Text), Expected) << Text;
        EXPECT_EQ(Bus.Log.Lines, Lines{}) << Text;
        EXPECT_TRUE(Bus.Device.Sent.empty()) << Text;
    }
}

TEST(Commands, ReadFrameJudgesTheAnswer)
{
    // identifier 0x7D, data 0x12 0x35: enhanced checksum 0x3B, classic 0xB8
    struct Case {
        const char* Parameters;
        std::vector<std::uint8_t> Answer;
        Failure Expected;
    };
    const std::vector<std::uint8_t> Right = {0x12, 0x35, 0x3B};
    const std::vector<std::uint8_t> WrongSum = {0x12, 0x35, 0xA5};
    for (const Case& Read : {
             Case{"", {}, NoResponse},
             {"", {0x12, 0x35}, ResponseLength(2)},
             {"", Right, NoFailure},
             {"", WrongSum, RxChecksum},
             {"RX (12 35)", Right, NoFailure},
             {"RX (12 34)", Right, RxDataCheck},
             {"RX (12 34)", WrongSum, RxChecksum}, // the master's own test comes first
             {"RX (12 34) RXMASK (FF F0)", Right, NoFailure},
             {"RX (12 34) RXMASK (FF 01)", Right, RxDataCheck},
             {"CHKSUM (A5)", WrongSum, NoFailure}, // takes the place of the master's test
             {"CHKSUM (3B)", WrongSum, RxDataCheck},
             {"CHKSUM 165 CHKSUMMASK (0F)", {0x12, 0x35, 0xB5}, NoFailure},
             {"CHKSUM 165 CHKSUMMASK (1F)", {0x12, 0x35, 0xB5}, RxDataCheck},
             {"CHKSUM (00) CHKSUMMASK (00)", WrongSum, NoFailure},
             {"RX (12 35) CHKSUM (A5)", WrongSum, NoFailure},
             {"RX (12 34) RXMASK (FF 0F) CHKSUM (A5) CHKSUMMASK (F0)", WrongSum, RxDataCheck},
             {"RX (12 34) RXMASK (FF F0) CHKSUM (A0) CHKSUMMASK (F0)", WrongSum, NoFailure},
         }) {
        Bench Bus;
        Bus.Device.Bus = Answering(Read.Answer);
        EXPECT_EQ(Bus.Run(std::string("READ_FRAME ID (7D) LEN 2 ").append(Read.Parameters).append(";")), Read.Expected)
            << Read.Parameters;
        EXPECT_EQ(Bus.Device.Sent.size(), 1U);
        if (!Read.Answer.empty()) {
            EXPECT_EQ(Bus.Master.Checksum(), Read.Answer.back()) << "the frame stays readable";
        }
    }
}

TEST(Commands, ReadFrameJudgesASingleByte)
{
    Bench Bus;
    Bus.Device.Bus = Answering({0x12, 0x70});
    EXPECT_EQ(Bus.Run("READ_FRAME ID (7D) LEN 1 RX (12);"), NoFailure);
    EXPECT_EQ(Bus.Run("READ_FRAME ID (7D) LEN 1 RX (13);"), RxDataCheck);
}

TEST(Commands, TheLogRunAgainRepeatsTheSession)
{
    const auto Session = [](clsLIN& Master, FakeDevice& Device) {
        const std::uint8_t Bytes[] = {1, 2, 3, 4, 5, 6, 7, 8};
        Master.BaudrateTbit(1.0F / 19200);
        Master.BaudrateBd(9600);
        Master.BreakWidth(14.375F);
        Master.SyncByte(0x54);
        Master.ChecksumMode(elcLIN13);
        Master.Wait(7);
        Master.GenerateBreak();
        for (std::int32_t Length = 1; Length <= 8; ++Length) {
            Master.WriteFrame(static_cast<std::uint8_t>(Length), Length, Bytes);
        }
        Master.WriteFrame(0xFF, 1, Bytes, "17");
        Device.Bus = Answering({1, 2, 0xFC}, 115 + 168);
        Master.ReadFrame(0x7D, 2);
    };
    Bench First;
    Session(First.Master, First.Device);
    std::string Record;
    for (const std::string& Line : First.Log.Lines) {
        Record += Line;
    }
    Bench Second;
    Second.Device.Bus = [&](std::span<std::uint8_t> Stream) {
        if (Second.Device.Sent.size() == First.Device.Sent.size()) {
            Answering({1, 2, 0xFC}, 115 + 168)(Stream);
        }
    };
    EXPECT_EQ(FailureOf([&] { Second.Runner.ExecuteScript(Record); }), NoFailure);
    EXPECT_EQ(Second.Log.Lines, First.Log.Lines);
    EXPECT_EQ(Second.Device.Calls, First.Device.Calls);
    EXPECT_EQ(Second.Device.Sent, First.Device.Sent);
}

} // namespace Tarvix
