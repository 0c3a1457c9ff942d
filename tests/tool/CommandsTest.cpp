// The commands that send single frames, the scan, and those that need no bus.

#include "tests/tool/Program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace Tarvix::Testing {

namespace {

constexpr const char* Head = "    TIME/s  OP     ID    PID   DATA                     CHECKSUM  RESULT\n";
constexpr const char* Notice = "tarvix: The bus is simulated (sim:); use -d to name a real device.\n";

/// A bus on which each kind of trouble has an identifier.
constexpr const char* TroubledBus = R"([[slave]]
name = "patient"
[[slave.frame]]
id = 0x01
data = [0x11, 0x22]
[[slave.frame]]
id = 0x02
data = [0x11, 0x22]
checksum = 0x75
[[slave.frame]]
id = 0x03
data = [0x11, 0x22]
[[slave.frame]]
id = 0x3C
data = [0x11, 0x22]
checksum = "classic"
[[fault]]
kind = "glitch"
level = "dominant"
frame = 0x01
byte = 1
sample = 75
length = 2
[[fault]]
kind = "long_answer"
frame = 0x03
bytes = 8
[[fault]]
kind = "missing_echo"
frame = 0x20
length = 800
)";

TEST(Read, PrintsTheFrame)
{
    const Outcome Result = RunProgram({"read", "0x3D", "2"});
    EXPECT_EQ(Result.Status, 0);
    EXPECT_EQ(Result.Out, std::string(Head) + "  0.000000  read   0x3D  0x7D  12 34                    0x3C      ok\n");
    EXPECT_EQ(Result.Error, Notice);
}

TEST(Read, SilenceIsAFailureInWords)
{
    const Outcome Result = RunQuietly({"read", "2A", "2"});
    EXPECT_EQ(Result.Status, 1);
    EXPECT_EQ(Result.Out, std::string(Head) + "  0.000000  read   0x2A  0x6A  -                        -         "
                                              "No response: header sent, no response within the 14 byte slots\n");
    EXPECT_EQ(Result.Error,
              "tarvix: Reading 0x2A failed: No response: header sent, no response within the 14 byte slots "
              "(0x8004C3D1, tarvix).\n"
              "Check that the node is powered and wired, that it answers this identifier, and that the bit rate is "
              "right.\n");
}

TEST(Write, PrintsTheFrame)
{
    const Outcome Result = RunQuietly({"write", "20", "1", "0x02", "--format", "json"});
    EXPECT_EQ(Result.Status, 0);
    EXPECT_EQ(Result.Out, R"({"time":0.000000,"op":"write","id":"0x20","pid":"0x20","data":"01 02",)"
                          R"("checksum":"0xDC","ok":true})"
                          "\n");
    EXPECT_EQ(Result.Error, "");
}

struct FailureCase {
    std::vector<std::string> Arguments;
    std::string Data; ///< "null", or as printed
    std::string Checksum;
    std::string Number;
    std::string Description;

    friend std::ostream& operator<<(std::ostream& Stream, const FailureCase& Case)
    {
        return Stream << Case.Arguments[0] << ' ' << Case.Arguments[1];
    }
};

class FrameFailureOnBus : public testing::TestWithParam<FailureCase> {};
TEST_P(FrameFailureOnBus, IsPrintedWithTheFrame)
{
    const FailureCase& Case = GetParam();
    const TemporaryDirectory Directory;
    std::vector<std::string> Arguments = Case.Arguments;
    Arguments.insert(Arguments.end(), {"-d", "sim:" + Directory.Write("bus.toml", TroubledBus), "--format", "json"});
    const Outcome Result = RunQuietly(Arguments);
    EXPECT_EQ(Result.Status, 1);
    const auto Frame = nlohmann::json::parse(Result.Out);
    EXPECT_EQ(Frame["ok"], false);
    EXPECT_EQ(Frame["data"].is_null() ? "null" : Frame["data"].get<std::string>(), Case.Data);
    EXPECT_EQ(Frame["checksum"].is_null() ? "null" : Frame["checksum"].get<std::string>(), Case.Checksum);
    EXPECT_EQ(Frame["error"]["number"], Case.Number);
    EXPECT_EQ(Frame["error"]["description"], Case.Description);
    EXPECT_NE(Result.Error.find(Case.Description + " (" + Case.Number + ", "), std::string::npos) << Result.Error;
}
INSTANTIATE_TEST_SUITE_P(
    Each, FrameFailureOnBus,
    testing::Values(
        FailureCase{{"read", "01", "2"}, "11", "null", "0x8004C3F1", "Framing error"},
        FailureCase{{"read", "02", "2"}, "11 22", "0x75", "0x8004C3B8", "Rx checksum error"},
        FailureCase{{"read", "02", "1"}, "11 22", "0x75", "0x8004C3B9", "Unexpected length of response (3 bytes)"},
        FailureCase{{"read", "3C", "2"}, "11 22", "0xCC", "0x8004C3B8", "Rx checksum error"},
        FailureCase{{"write", "20", "01"}, "01", "0xDE", "0x8004C3F2", "Transmission corrupted, Tx <> Rx"}));

TEST(Read, MoreBytesThanAFrameHasAreTold)
{
    const TemporaryDirectory Directory;
    const std::string Device = "sim:" + Directory.Write("bus.toml", TroubledBus);
    const Outcome Result = RunQuietly({"read", "03", "2", "-d", Device, "--format", "json"});
    EXPECT_EQ(Result.Status, 1);
    const auto Frame = nlohmann::json::parse(Result.Out);
    EXPECT_EQ(Frame["error"]["number"], "9");
    EXPECT_EQ(Frame["data"].get<std::string>().substr(0, 8), "11 22 C9");
    EXPECT_NE(Result.Error.find("more than 9 bytes came"), std::string::npos);
}

TEST(Options, ReachTheBus)
{
    // 0x11 is answered with the classic checksum.
    EXPECT_EQ(RunQuietly({"read", "11", "1"}).Status, 1);
    EXPECT_EQ(RunQuietly({"read", "11", "1", "--checksum", "classic"}).Status, 0);
    // The slower the bus and the wider the break, the later the second frame.
    const auto TimeOfSecond = [](std::vector<std::string> Options) {
        Options.insert(Options.begin(), {"run", "-", "--format", "json"});
        const Outcome Result = RunQuietly(Options, {.Input = "BREAK; READ_FRAME ID (7D) LEN 2;"});
        return nlohmann::json::parse(Result.Out)["time"].get<double>();
    };
    EXPECT_DOUBLE_EQ(TimeOfSecond({}), 0.000728);                      // 14 bits of 52 us, the nearest to 1/19200 s
    EXPECT_DOUBLE_EQ(TimeOfSecond({"--baud", "10000"}), 0.0014);       // 14 bits of 100 us
    EXPECT_DOUBLE_EQ(TimeOfSecond({"--break-width", "17"}), 0.000936); // 18 bits
}

TEST(Timing, OfTheSimulatedSeatIsAsDescribed)
{
    const Outcome Result = RunQuietly({"read", "30", "8", "--timing", "--format", "json"});
    const auto Timing = nlohmann::json::parse(Result.Out)["timing"];
    EXPECT_NEAR(Timing["response_space"].get<double>(), 4.5 * 1.01, 0.13); // bit times of a clock 1 % slow
    EXPECT_NEAR(Timing["clock_deviation"].get<double>(), -1.0, 0.1);
    EXPECT_NEAR(Timing["longest_gap"].get<double>(), 0.0, 0.13);
    EXPECT_GE(Timing["margin"].get<int>(), 3);
}

TEST(Scan, ListsWhoAnswers)
{
    const Outcome Result = RunProgram({"scan"});
    EXPECT_EQ(Result.Status, 0);
    EXPECT_EQ(Result.Out, "ID    PID   LEN  MODEL     DATA                     CHECKSUM  RESULT\n"
                          "0x05  0x85    4  enhanced  00 FF 55 AA              0x7A      ok\n"
                          "0x11  0x11    1  classic   5A                       0xA5      ok\n"
                          "0x30  0xF0    8  enhanced  01 23 45 67 89 AB CD EF  0x4B      ok\n"
                          "0x3D  0x7D    2  enhanced  12 34                    0x3C      ok; diagnostic frames have a "
                          "classic checksum by the standard\n");
    EXPECT_EQ(Result.Error, std::string(Notice) + "tarvix: 4 of 64 identifiers answered.\n");
}

TEST(Scan, TellsFaultyAnswersToo)
{
    const TemporaryDirectory Directory;
    const std::string Device = "sim:" + Directory.Write("bus.toml", TroubledBus);
    const Outcome Result = RunProgram({"scan", "--format", "json", "-d", Device});
    EXPECT_EQ(Result.Status, 1);
    EXPECT_TRUE(Result.Error.ends_with("tarvix: 4 of 64 identifiers answered, 3 of them not as they should.\n"));
    std::vector<std::string> Summary;
    std::istringstream Lines(Result.Out);
    for (std::string Line; std::getline(Lines, Line);) {
        const auto Frame = nlohmann::json::parse(Line);
        const std::string Model = Frame.value("checksum_model", "unknown");
        Summary.push_back(Frame["id"].get<std::string>() + " " + std::to_string(Frame.value("length", -1)) + " " +
                          Model + " " + Frame["ok"].dump());
    }
    EXPECT_EQ(Summary, (std::vector<std::string>{"0x01 -1 unknown false", "0x02 2 neither false",
                                                 "0x03 10 neither false", "0x3C 2 classic true"}));
}

TEST(ID, PrintsProtectedIdentifiers)
{
    const Outcome Result = RunProgram({"id", "0", "0x01", "3c", "3D", "3F"});
    EXPECT_EQ(Result.Status, 0);
    EXPECT_EQ(Result.Out, "ID    P0  P1  PID\n"
                          "0x00  0   1   0x80\n"
                          "0x01  1   1   0xC1\n"
                          "0x3C  0   0   0x3C\n"
                          "0x3D  1   0   0x7D\n"
                          "0x3F  0   1   0xBF\n");
    EXPECT_EQ(Result.Error, "");
}

// What is plugged in differs from machine to machine; silence would be wrong on each.
TEST(Devices, AlwaysSaysSomething)
{
    const Outcome Result = RunProgram({"devices"});
    EXPECT_TRUE(Result.Status == 0 || Result.Status == 3) << Result.Status;
    EXPECT_NE(Result.Out.empty(), Result.Error.empty());
}

struct UsageCase {
    std::vector<std::string> Arguments;
    int Status;
    std::string Complaint; ///< part of it
};

class Usage : public testing::TestWithParam<UsageCase> {};
TEST_P(Usage, IsCheckedBeforeAnythingHappens)
{
    const Outcome Result = RunProgram(GetParam().Arguments);
    EXPECT_EQ(Result.Status, GetParam().Status);
    EXPECT_EQ(Result.Out, "");
    EXPECT_NE(Result.Error.find(GetParam().Complaint), std::string::npos) << Result.Error;
    EXPECT_TRUE(Result.Error.starts_with("tarvix: "));
    EXPECT_TRUE(Result.Error.ends_with(".\n")) << "a sentence ends with a full stop";
}
INSTANTIATE_TEST_SUITE_P(
    Wrong, Usage,
    testing::Values(
        UsageCase{{}, 2, "tarvix: A command is required.\nRun \"tarvix --help\""},
        UsageCase{{"frobnicate"}, 2, "not expected: frobnicate"}, UsageCase{{"--frobnicate"}, 2, "--frobnicate"},
        UsageCase{{"read"}, 2, "ID is required"}, UsageCase{{"read", "3D"}, 2, "Run \"tarvix read --help\""},
        UsageCase{{"read", "3D", "9"}, 2, "1 to 8 data bytes"}, UsageCase{{"read", "7D", "2"}, 2, "of 0x3D"},
        UsageCase{{"read", "3D", "2", "3"}, 2, "not expected: 3"}, UsageCase{{"write", "20"}, 2, "BYTE is required"},
        UsageCase{{"write", "20", "1", "2", "3", "4", "5", "6", "7", "8", "9"}, 2, "9 data bytes are given"},
        UsageCase{{"write", "20", "100"}, 2, "\"100\" is no byte"}, UsageCase{{"run"}, 2, "SCRIPT is required"},
        UsageCase{{"scan", "--format", "xml"}, 2, "none of table, json, candump"},
        UsageCase{{"scan", "--checksum", "x"}, 2, "none of classic, enhanced"},
        UsageCase{{"scan", "-b", "fast"}, 2, "\"fast\" is no bit rate"},
        UsageCase{{"scan", "--vcd", "x", "--record", "x"}, 2, "same file is given to --vcd"},
        UsageCase{{"scan", "--vcd", ""}, 2, "--vcd: The file's name is empty."},
        UsageCase{{"scan", "--svg", "/tmp/../x", "--record", "/x"}, 2, "same file is given to --svg"},
        UsageCase{{"run", "-", "a.lin", "--record", "./a.lin"}, 2, "--record: the script a.lin would be overwritten"},
        UsageCase{{"scan", "-d", "sim:bus", "--vcd", "bus"}, 2, "--vcd: the bus file bus would be overwritten"},
        UsageCase{{"id"}, 2, "ID is required"}, UsageCase{{"id", "40"}, 2, "end at 3F"},
        UsageCase{{"run", "/nowhere/a.lin"}, 2, "/nowhere/a.lin cannot be read: No such file or directory. Check"},
        UsageCase{{"run", "/"}, 2, "The script / cannot be read: Is a directory"},
        UsageCase{{"read", "3D", "2", "--vcd", "/nowhere/a.vcd"}, 2, "/nowhere/a.vcd cannot be written"},
        UsageCase{{"read", "3D", "2", "-d", "sim:/nowhere.toml"}, 3, "/nowhere.toml"},
        UsageCase{{"read", "3D", "2", "-d", "rs232:"}, 3, "rs232:"}));

TEST(Usage, ABitRateThatTheDeviceCannotMakeIsTold)
{
    const Outcome Result = RunQuietly({"read", "3D", "2", "-b", "2000000000"});
    EXPECT_EQ(Result.Status, 1);
    EXPECT_NE(Result.Error.find("The bus cannot be set up: "), std::string::npos) << Result.Error;
    EXPECT_NE(Result.Error.find("Choose a bit rate"), std::string::npos) << Result.Error;
}

TEST(Colour, IsForTerminalsWithoutObjections)
{
    const auto IsColoured = [](const Surroundings& Around) {
        return RunQuietly({"read", "3D", "2"}, Around).Out.find('\x1B') != std::string::npos;
    };
    EXPECT_TRUE(IsColoured({.Environment = {"TERM=xterm"}, .Terminal = true}));
    EXPECT_TRUE(IsColoured({.Environment = {"TERM=xterm", "NO_COLOR="}, .Terminal = true}));
    EXPECT_FALSE(IsColoured({.Environment = {"TERM=xterm", "NO_COLOR=1"}, .Terminal = true}));
    EXPECT_FALSE(IsColoured({.Environment = {"TERM=dumb"}, .Terminal = true}));
    EXPECT_FALSE(IsColoured({.Environment = {"TERM=xterm"}}));
}

} // namespace

} // namespace Tarvix::Testing
