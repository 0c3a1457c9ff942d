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
