// The files that the program writes, and what happens when it cannot.

#include "tests/tool/Program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

namespace Tarvix::Testing {

namespace {

TEST(Files, AreWrittenAsAsked)
{
    const TemporaryDirectory Directory;
    const std::string VCD = Directory.Path("a.vcd");
    const Outcome Result = RunQuietly({"read", "3D", "2", "--vcd", VCD, "--svg", Directory.Path("a.svg"), "--record",
                                       Directory.Path("a.lin"), "--break-width", "13.3"});
    EXPECT_EQ(Result.Status, 0);
    EXPECT_NE(Contents(VCD).find("$timescale 100 ns $end"), std::string::npos);
    EXPECT_NE(Contents(Directory.Path("a.gtkw")).find(VCD), std::string::npos);
    EXPECT_TRUE(Contents(Directory.Path("a.svg")).ends_with("</svg>\n"));
    EXPECT_EQ(Contents(Directory.Path("a.lin")),
              "BAUDRATE 19200 BD;\r\nBREAK_WIDTH 13.3;\r\nREAD_FRAME ID (7D) LEN 2;\r\n");
}

TEST(Files, AreNotWrittenUnasked)
{
    const TemporaryDirectory Directory;
    EXPECT_EQ(RunQuietly({"read", "3D", "2", "--record", Directory.Path("a.lin")}).Status, 0);
    const auto Entries = std::filesystem::directory_iterator(Directory.Path(""));
    EXPECT_EQ(std::distance(begin(Entries), end(Entries)), 1);
}

TEST(Files, AreCompleteAfterAFailure)
{
    const TemporaryDirectory Directory;
    const std::string VCD = Directory.Path("a.vcd");
    const std::string Script = "READ_FRAME ID (7D) LEN 2; READ_FRAME ID (6A) LEN 2; BREAK;";
    const Outcome Result =
        RunQuietly({"run", "-", "--vcd", VCD, "--record", Directory.Path("a.lin")}, {.Input = Script});
    EXPECT_EQ(Result.Status, 1);
    EXPECT_EQ(Contents(Directory.Path("a.lin")), "BAUDRATE 19200 BD;\r\nREAD_FRAME ID (7D) LEN 2;\r\n");
    const std::string Waveform = Contents(VCD);
    const std::string End = Waveform.substr(Waveform.rfind('#'));
    EXPECT_TRUE(End.ends_with('\n'));
    EXPECT_EQ(std::count(End.begin(), End.end(), '\n'), 1) << "the file ends with a time stamp";
}

TEST(Files, OfAnEarlierRunStayUntilTheNextOneBegins)
{
    const TemporaryDirectory Directory;
    const std::string VCD = Directory.Write("a.vcd", "earlier");
    const std::string SVG = Directory.Write("a.svg", "earlier");
    const auto Read = [&](const std::vector<std::string>& Options) {
        std::vector<std::string> Arguments = {"read", "3D", "2", "--vcd", VCD, "--svg", SVG};
        Arguments.insert(Arguments.end(), Options.begin(), Options.end());
        return RunQuietly(Arguments).Status;
    };
    EXPECT_EQ(Read({"-d", "sim:/nowhere.toml"}), 3);
    EXPECT_EQ(Read({"-b", "1"}), 1);
    EXPECT_EQ(Read({"--record", Directory.Path("nowhere/a.lin")}), 2);
    EXPECT_EQ(Contents(VCD) + Contents(SVG), "earlierearlier");
    EXPECT_EQ(Read({}), 0);
    EXPECT_EQ((Contents(VCD) + Contents(SVG)).find("earlier"), std::string::npos);
}

TEST(Files, AreNotReplacedUnderAnotherName)
{
    const TemporaryDirectory Directory;
    const std::string Script = Directory.Write("a.lin", "BREAK;\n");
    std::filesystem::create_hard_link(Script, Directory.Path("b.lin"));
    EXPECT_EQ(RunQuietly({"run", Script, "--record", Directory.Path("b.lin")}).Status, 2);
    const std::string Piped = "exec " TARVIX_PROGRAM " run - --record '" + Script + "' < '" + Script + "'";
    EXPECT_EQ(RunProgram({"-c", Piped}, {.Executable = "/bin/sh"}).Status, 2);
    EXPECT_EQ(Contents(Script), "BREAK;\n");

    const std::string Results = Directory.Path("results");
    const Outcome Result = RunQuietly({"read", "3D", "2", "--record", Results}, {.OutputFile = Results});
    EXPECT_EQ(Result.Status, 2);
    EXPECT_NE(Result.Error.find("--record: the results on the standard output would be overwritten"),
              std::string::npos);
}

TEST(Files, ASavedViewIsLeftAloneAndAPipeHasNone)
{
    const TemporaryDirectory Directory;
    const std::string View = Directory.Write("a.gtkw", "mine");
    EXPECT_EQ(RunQuietly({"read", "3D", "2", "--vcd", Directory.Path("a.vcd")}).Status, 0);
    EXPECT_EQ(Contents(View), "mine");
    const Outcome Result = RunQuietly({"read", "3D", "2", "--vcd", "/dev/stdout"});
    EXPECT_NE(Result.Out.find("$timescale"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists("/dev/stdout.gtkw"));
}

TEST(ClosedStreams, DoNotEndUpInFiles)
{
    const TemporaryDirectory Directory;
    const std::string VCD = Directory.Path("a.vcd");
    const std::string Line = TARVIX_PROGRAM " read 3D 2 --vcd '" + VCD + "' <&- ";
    const Outcome NoOutput = RunProgram({"-c", Line + ">&-"}, {.Executable = "/bin/sh"});
    EXPECT_EQ(NoOutput.Status, 1);
    EXPECT_NE(NoOutput.Error.find("The results cannot be written: Bad file descriptor"), std::string::npos);
    EXPECT_TRUE(Contents(VCD).starts_with("$timescale"));
    const Outcome NoErrors = RunProgram({"-c", Line + "2>&-"}, {.Executable = "/bin/sh"});
    EXPECT_EQ(NoErrors.Status, 0);
    EXPECT_TRUE(Contents(VCD).starts_with("$timescale"));
}

// /dev/full refuses every byte, as a full disk does.
TEST(FullDisk, UnderTheResultsEndsTheRun)
{
    const Outcome Result = RunQuietly({"read", "3D", "2"}, {.OutputFile = "/dev/full"});
    EXPECT_EQ(Result.Status, 1);
    EXPECT_EQ(Result.Error, "tarvix: The results cannot be written: No space left on device. Make room or send them "
                            "elsewhere, and run the command again.\n");
}

class FullDisk : public testing::TestWithParam<const char*> {};
TEST_P(FullDisk, UnderAFileEndsTheRun)
{
    const TemporaryDirectory Directory;
    const std::string File = Directory.Path("full.vcd"); // its name, so that the save file can stand beside it
    std::filesystem::create_symlink("/dev/full", File);
    const Outcome Result = RunQuietly({"read", "3D", "2", GetParam(), File});
    EXPECT_EQ(Result.Status, 1);
    EXPECT_EQ(Result.Error,
              "tarvix: The file " + File +
                  " cannot be written: No space left on device. Make room or choose another place, and run "
                  "the command again.\n");
}
INSTANTIATE_TEST_SUITE_P(Each, FullDisk, testing::Values("--vcd", "--svg", "--record"));

TEST(FullDisk, IsNoticedDuringALongRun)
{
    const TemporaryDirectory Directory;
    const std::string File = Directory.Path("full.vcd");
    std::filesystem::create_symlink("/dev/full", File);
    std::string Script;
    for (int k = 0; k < 2000; ++k) {
        Script += "WRITE_FRAME ID (20) LEN 1 TX (55);";
    }
    const Outcome Result = RunQuietly({"run", "-", "--vcd", File, "--format", "candump"}, {.Input = Script});
    EXPECT_EQ(Result.Status, 1);
    EXPECT_LT(std::count(Result.Out.begin(), Result.Out.end(), '\n'), 1000);
}

} // namespace

} // namespace Tarvix::Testing
