// Runs that are ended from outside.

#include "tests/tool/Program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <string>

namespace Tarvix::Testing {

namespace {

constexpr int Frames = 200000; // far more lines than a pipe holds: the program cannot end before it is read

std::string LongScript()
{
    std::string Script;
    for (int k = 0; k < Frames; ++k) {
        Script += "WRITE_FRAME ID (20) LEN 1 TX (55);"; // all on one line: nothing but the bus tells of progress
    }
    return Script;
}

/// What the kernel says of the process under `Key`, which ends in a colon.
std::string StatusOf(pid_t Process, const std::string& Key)
{
    std::ifstream Status("/proc/" + std::to_string(Process) + "/status");
    for (std::string Line; std::getline(Status, Line);) {
        if (Line.starts_with(Key)) {
            return Line.substr(Line.find_first_not_of(" \t", Key.size()));
        }
    }
    return {};
}

/// True while a signal that was sent to the process has not arrived.
bool IsPending(pid_t Process, int Signal)
{
    return (std::stoull(StatusOf(Process, "ShdPnd:"), nullptr, 16) >> (Signal - 1) & 1) != 0;
}

/// True while the process waits. After its first line there is only one thing to wait for: that its output is read.
bool Waits(pid_t Process)
{
    return StatusOf(Process, "State:").starts_with('S');
}

class Interrupt : public testing::TestWithParam<int> {};
TEST_P(Interrupt, EndsTheRunBetweenTwoFrames)
{
    const TemporaryDirectory Directory;
    const std::string Record = Directory.Path("a.lin");
    const std::string VCD = Directory.Path("a.vcd");
    Program Running({"run", "-", "--format", "candump", "-q", "--record", Record, "--vcd", VCD},
                    {.Input = LongScript()});
    std::string Out = Running.ReadLine();
    EXPECT_EQ(Out, "(0.000000) lin0 20#55\n");
    kill(Running.ID(), GetParam());
    const Outcome Result = Running.Finish();

    EXPECT_EQ(Result.Status, 128 + GetParam());
    EXPECT_EQ(Result.Error, "");
    Out += Result.Out;
    const auto Printed = std::count(Out.begin(), Out.end(), '\n');
    EXPECT_LT(Printed, Frames);
    EXPECT_TRUE(Out.ends_with("lin0 20#55\n"));
    // Every frame that was on the bus is in the files, and they are whole.
    const std::string Log = Contents(Record);
    EXPECT_EQ(std::count(Log.begin(), Log.end(), '\n'), 1 + Printed);
    EXPECT_TRUE(Log.ends_with("WRITE_FRAME ID (20) LEN 1 TX (55);\r\n"));
    const std::string Waveform = Contents(VCD);
    const std::string End = Waveform.substr(Waveform.rfind('#'));
    EXPECT_EQ(std::count(End.begin(), End.end(), '\n'), 1);
    EXPECT_TRUE(End.ends_with('\n'));
}
INSTANTIATE_TEST_SUITE_P(Each, Interrupt, testing::Values(SIGHUP, SIGINT, SIGTERM));

TEST(Interrupt, ASecondOneKills)
{
    Program Running({"run", "-", "--format", "candump", "-q"}, {.Input = LongScript()});
    Running.ReadLine();
    while (!Waits(Running.ID())) {
        // its output still fits the pipe
    }
    kill(Running.ID(), SIGINT);
    while (IsPending(Running.ID(), SIGINT)) {
        // two signals that are pending at the same time would become one
    }
    kill(Running.ID(), SIGINT);
    EXPECT_EQ(Running.Finish().Status, -SIGINT);
}

TEST(Interrupt, AnIgnoredSignalStaysIgnored)
{
    const std::string Line = "trap '' HUP; exec " TARVIX_PROGRAM " run - --format candump -q";
    Program Running({"-c", Line}, {.Input = LongScript(), .Executable = "/bin/sh"});
    Running.ReadLine();
    kill(Running.ID(), SIGHUP);
    const Outcome Result = Running.Finish();
    EXPECT_EQ(Result.Status, 0);
    EXPECT_EQ(std::count(Result.Out.begin(), Result.Out.end(), '\n'), Frames - 1);
}

TEST(Interrupt, AReaderThatLeavesEndsTheRunQuietly)
{
    const TemporaryDirectory Directory;
    const std::string Record = Directory.Path("a.lin");
    Program Running({"run", "-", "-q", "--record", Record}, {.Input = LongScript()});
    Running.ReadLine();
    Running.CloseOutput();
    const Outcome Result = Running.Finish();
    EXPECT_EQ(Result.Status, 128 + SIGPIPE);
    EXPECT_EQ(Result.Error, "");
    EXPECT_TRUE(Contents(Record).ends_with(";\r\n"));
}

TEST(Interrupt, HelpThatNobodyReadsEndsQuietly)
{
    const Outcome Result = RunProgram({"--help"}, {.Unread = true});
    EXPECT_EQ(Result.Status, 128 + SIGPIPE);
    EXPECT_EQ(Result.Error, "");
}

} // namespace

} // namespace Tarvix::Testing
