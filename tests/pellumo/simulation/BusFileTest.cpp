#include "pellumo/simulation/BusFile.h"

#include "pellumo/errPellumo.h"
#include "tests/support/Errors.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace Pellumo::Testing {

namespace {

using Tarvix::Testing::Failure;
using Tarvix::Testing::FailureOf;

Failure BusFileError(const std::string& Description)
{
    return {static_cast<std::uint32_t>(errPellumo::errBusFile), "BusFile", Description};
}

} // namespace

TEST(BusFile, TakesAnyLettersInQuotesAndComments)
{
    const char* const Quoted[] = {R"("a\"ü")", "'aü\\'", "\"\"\"a\nü\"x\\\"\"\"\"\"\"", "'''a\n'ü''''"};
    const char* const Names[] = {"a\"ü", "aü\\", "a\nü\"x\"\"\"", "a\n'ü'"};
    for (std::size_t k = 0; k < std::size(Quoted); ++k) {
        const std::string Text =
            std::string("\xEF\xBB\xBF# ü \" '\n[[slave]]\nname = ").append(Quoted[k]).append(" # ü\n");
        EXPECT_EQ(ParseBusFile(Text, "bus.toml").Slaves.at(0).Name, Names[k]) << Text;
    }
}

TEST(BusFile, DescribesSlavesWithTheirDefaults)
{
    const BusDescription Bus = ParseBusFile(R"(
        seed = 77
        [[slave]]
        name = "door"
        clock_error = -0.5
        response_space = 2
        byte_space = 0.25
        [[slave.frame]]
        id = 0x3D
        data = [0x12, 0x34]
        checksum = "classic"
        [[slave.frame]]
        id = 0x21
        copies = 0x3F
        checksum = 0xA5
        [[slave]]
        name = "plain"
        [[slave.frame]]
        id = 0
        data = [1, 2, 3, 4, 5, 6, 7, 255]
        [[slave]]
        name = "silent"
    )",
                                            "bus.toml");
    EXPECT_EQ(Bus.Seed, 77U);
    ASSERT_EQ(Bus.Slaves.size(), 3U);
    const auto& [Door, Plain, Silent] = std::tie(Bus.Slaves[0], Bus.Slaves[1], Bus.Slaves[2]);
    EXPECT_EQ(Door.Name, "door");
    EXPECT_EQ(Door.ClockError, -0.5);
    EXPECT_EQ(Door.ResponseSpace, 2.0);
    EXPECT_EQ(Door.ByteSpace, 0.25);
    ASSERT_EQ(Door.Frames.size(), 2U);
    EXPECT_EQ(Door.Frames[0].Identifier, 0x3D);
    EXPECT_EQ(Door.Frames[0].Data, (std::vector<std::uint8_t>{0x12, 0x34}));
    EXPECT_EQ(Door.Frames[0].Checksum, Tarvix::elcLIN13);
    EXPECT_EQ(Door.Frames[0].Copies, std::nullopt);
    EXPECT_EQ(Door.Frames[0].FixedChecksum, std::nullopt);
    EXPECT_EQ(Door.Frames[1].Copies, 0x3F);
    EXPECT_EQ(Door.Frames[1].FixedChecksum, 0xA5);
    EXPECT_EQ(Plain.ClockError, 0.0);
    EXPECT_EQ(Plain.ResponseSpace, 1.0);
    EXPECT_EQ(Plain.ByteSpace, 0.0);
    EXPECT_EQ(Plain.Frames.at(0).Data.size(), 8U);
    EXPECT_EQ(Plain.Frames.at(0).Checksum, Tarvix::elcLIN20);
    EXPECT_TRUE(Silent.Frames.empty());
}

TEST(BusFile, DescribesAnEmptyBus)
{
    const BusDescription Bus = ParseBusFile("# nobody\n", "bus.toml");
    EXPECT_TRUE(Bus.Slaves.empty());
    EXPECT_EQ(Bus.Seed, 1U);
}

TEST(BusFile, DescribesFaults)
{
    const BusDescription Bus = ParseBusFile(R"(
        fault = [
            {kind = "glitch", level = "dominant", sample = 1234},
            {kind = "glitch", level = "recessive", frame = 0x3D, byte = 2, occurrence = 4, sample = 5, length = 6},
            {kind = "stuck", level = "recessive", sample = 9},
            {kind = "missing_echo", frame = 0x20, length = 8},
            {kind = "noise", probability = 0.25},
            {kind = "wrong_checksum", frame = 0x3D, occurrence = 2},
            {kind = "short_answer", frame = 0x3D},
            {kind = "long_answer", frame = 0x3D, bytes = 5},
            {kind = "collision", frame = 0x11},
            {kind = "collision", frame = 0x20, data = [1, 2], response_space = 0, occurrence = 3},
        ]
        [[slave]]
        name = "door"
        [[slave.frame]]
        id = 0x3D
        data = [0]
    )",
                                            "bus.toml");
    using Effect = WireFault::Effect;
    struct WireCase {
        Effect Kind;
        std::optional<std::uint8_t> Frame;
        std::optional<std::int32_t> Byte;
        std::int64_t Sample;
        std::int32_t Occurrence;
        std::optional<std::int64_t> Length;
    };
    const std::vector<WireCase> Expected = {
        {Effect::Dominant, std::nullopt, std::nullopt, 1234, 0, 1},
        {Effect::Recessive, 0x3D, 2, 5, 4, 6},
        {Effect::Recessive, std::nullopt, std::nullopt, 9, 0, std::nullopt},
        {Effect::NoEcho, 0x20, std::nullopt, 0, 0, 8},
        {Effect::Noise, std::nullopt, std::nullopt, 0, 0, std::nullopt},
    };
    ASSERT_EQ(Bus.WireFaults.size(), Expected.size());
    for (std::size_t k = 0; k < Expected.size(); ++k) {
        EXPECT_EQ(Bus.WireFaults[k].Kind, Expected[k].Kind) << k;
        EXPECT_EQ(Bus.WireFaults[k].Place.Frame, Expected[k].Frame) << k;
        EXPECT_EQ(Bus.WireFaults[k].Place.Byte, Expected[k].Byte) << k;
        EXPECT_EQ(Bus.WireFaults[k].Place.Sample, Expected[k].Sample) << k;
        EXPECT_EQ(Bus.WireFaults[k].Place.Occurrence, Expected[k].Occurrence) << k;
        EXPECT_EQ(Bus.WireFaults[k].Length, Expected[k].Length) << k;
    }
    EXPECT_EQ(Bus.WireFaults[4].Probability, 0.25);

    ASSERT_EQ(Bus.AnswerFaults.size(), 3U);
    EXPECT_EQ(Bus.AnswerFaults[0].Kind, AnswerFault::Effect::WrongChecksum);
    EXPECT_EQ(Bus.AnswerFaults[0].Frame, 0x3D);
    EXPECT_EQ(Bus.AnswerFaults[0].Occurrence, 2);
    EXPECT_EQ(Bus.AnswerFaults[1].Kind, AnswerFault::Effect::Short);
    EXPECT_EQ(Bus.AnswerFaults[1].Bytes, 1);
    EXPECT_EQ(Bus.AnswerFaults[2].Kind, AnswerFault::Effect::Long);
    EXPECT_EQ(Bus.AnswerFaults[2].Bytes, 5);

    ASSERT_EQ(Bus.Collisions.size(), 2U);
    EXPECT_TRUE(Bus.Collisions[0].Data.empty());
    EXPECT_EQ(Bus.Collisions[0].ResponseSpace, 1.0);
    EXPECT_EQ(Bus.Collisions[1].Frame, 0x20);
    EXPECT_EQ(Bus.Collisions[1].Data.size(), 2U);
    EXPECT_EQ(Bus.Collisions[1].ResponseSpace, 0.0);
    EXPECT_EQ(Bus.Collisions[1].Occurrence, 3);
}

struct ErrorCase {
    const char* Text;
    const char* Description; ///< after the file's name
};

class BusFileErrors : public testing::TestWithParam<ErrorCase> {};

TEST_P(BusFileErrors, NameFileLineAndReason)
{
    EXPECT_EQ(FailureOf([] { ParseBusFile(GetParam().Text, "dir/my bus.toml"); }),
              BusFileError(std::string("dir/my bus.toml:").append(GetParam().Description)));
}

INSTANTIATE_TEST_SUITE_P(
    Slaves, BusFileErrors,
    testing::Values(
        ErrorCase{"\nslaves = 1\n", "2: unknown key \"slaves\" in the file; known are \"slave\", \"fault\", \"seed\""},
        ErrorCase{"slave = 1", "1: \"slave\" must be written as [[slave]]"},
        ErrorCase{"slave = [1, 2]", "1: \"slave\" must be written as [[slave]]"},
        ErrorCase{"[slave]\nname = \"a\"", "1: \"slave\" must be written as [[slave]]"},
        ErrorCase{"[[slave]]\n\n[[slave]]\nname = \"a\"", "1: [[slave]] lacks the key \"name\""},
        ErrorCase{"[[slave]]\nname = 3", "2: \"name\" must be a text"},
        ErrorCase{"# \xC3\xBC\n[[slave]]\nname = '\xC3\xBC'\nclock_error = \xD0\x87",
                  "4: Error while parsing value: could not determine value type; letters that are not ASCII may stand "
                  "only in quotes and comments"},
        ErrorCase{"[[slave]]\nname = 'T\xFCr'", "2: Encountered invalid utf-8 sequence; save the file as UTF-8"},
        ErrorCase{"seed = 1 x # \xC3\xBC",
                  "1: Error while parsing key-value pair: expected a comment or whitespace, saw 'x'"},
        ErrorCase{"[[slave]]\nname = \"a\"\nclock = 1",
                  "3: unknown key \"clock\" in [[slave]]; known are \"name\", \"clock_error\", \"response_space\", "
                  "\"byte_space\", \"frame\""},
        ErrorCase{"[[slave]]\nname = \"a\"\nclock_error = \"1\"", "3: \"clock_error\" must be a number"},
        ErrorCase{"[[slave]]\nname = \"a\"\nclock_error = -20.1", "3: \"clock_error\" must be from -20 to 20"},
        ErrorCase{"[[slave]]\nname = \"a\"\nclock_error = nan", "3: \"clock_error\" must be from -20 to 20"},
        ErrorCase{"[[slave]]\nname = \"a\"\nresponse_space = -0.1", "3: \"response_space\" must be from 0 to 1000"},
        ErrorCase{"[[slave]]\nname = \"a\"\nbyte_space = -1", "3: \"byte_space\" must be from 0 to 1000"},
        ErrorCase{"[[slave]]\nname = \"a\"\nresponse_space = 1001", "3: \"response_space\" must be from 0 to 1000"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[slave.frame]\nid = 1", "3: \"frame\" must be written as [[slave.frame]]"},
        ErrorCase{"seed = -1", "1: \"seed\" must be at least 0"},
        ErrorCase{"seed = 0.5", "1: \"seed\" must be a whole number"}));

INSTANTIATE_TEST_SUITE_P(
    Frames, BusFileErrors,
    testing::Values(
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\ndata = [1]", "3: [[slave.frame]] lacks the key \"id\""},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1",
                  "3: [[slave.frame]] needs either \"data\" or \"copies\""},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 0x40\ndata = [1]",
                  "4: \"id\" must be a frame identifier from 0x00 to 0x3F"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = -1\ndata = [1]",
                  "4: \"id\" must be a frame identifier from 0x00 to 0x3F"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1.0\ndata = [1]", "4: \"id\" must be a whole number"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1\ndata = []",
                  "5: \"data\" must be a list of 1 to 8 bytes"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1\ndata = [1, 2, 3, 4, 5, 6, 7, 8, 9]",
                  "5: \"data\" must be a list of 1 to 8 bytes"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1\ndata = 1",
                  "5: \"data\" must be a list of 1 to 8 bytes"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1\ndata = [\n1,\n256]",
                  "7: \"data\" must be from 0 to 255"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1\ndata = [\"1\"]",
                  "5: \"data\" must be a whole number"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1\ndata = [1]\ncopies = 2",
                  "6: a frame has either \"data\" or \"copies\", not both"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1\ncopies = 64",
                  "5: \"copies\" must be a frame identifier from 0x00 to 0x3F"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1\ndata = [1]\nchecksum = \"both\"",
                  "6: \"checksum\" must be one of \"classic\", \"enhanced\""},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1\ndata = [1]\nchecksum = 256",
                  "6: \"checksum\" must be from 0 to 255"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1\ndata = [1]\nlength = 1",
                  "6: unknown key \"length\" in [[slave.frame]]; known are \"id\", \"data\", \"copies\", \"checksum\""},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1\ndata = [1]\n"
                  "[[slave]]\nname = \"b\"\n[[slave.frame]]\nid = 1\ndata = [1]",
                  "9: identifier 0x01 is answered by \"a\" already (line 4)"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1\ndata = [1]\n[[slave.frame]]\nid = 1\ncopies = 2",
                  "7: identifier 0x01 is answered by \"a\" already (line 4)"},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 1\ncopies = 0x2A\n"
                  "[[slave.frame]]\nid = 0x2A\ndata = [1]",
                  "5: identifier 0x2A is answered by this node itself: it would never receive it"}));

INSTANTIATE_TEST_SUITE_P(
    Faults, BusFileErrors,
    testing::Values(
        ErrorCase{"[[fault]]\nframe = 1", "1: [[fault]] lacks the key \"kind\""},
        ErrorCase{"[[fault]]\nkind = \"spike\"",
                  "2: \"kind\" must be one of \"glitch\", \"stuck\", \"missing_echo\", \"noise\", \"wrong_checksum\", "
                  "\"short_answer\", \"long_answer\", \"collision\""},
        ErrorCase{"[[fault]]\nkind = \"glitch\"", "1: [[fault]] lacks the key \"level\""},
        ErrorCase{"[[fault]]\nkind = \"stuck\"\nlevel = \"low\"",
                  "3: \"level\" must be one of \"dominant\", \"recessive\""},
        ErrorCase{"[[fault]]\nkind = \"glitch\"\nlevel = \"dominant\"\nbyte = 1", "4: \"byte\" needs \"frame\""},
        ErrorCase{"[[fault]]\nkind = \"missing_echo\"\noccurrence = 1", "3: \"occurrence\" needs \"frame\""},
        ErrorCase{"[[fault]]\nkind = \"missing_echo\"\nlength = 0", "3: \"length\" must be from 1 to 1000000000000"},
        ErrorCase{"[[fault]]\nkind = \"missing_echo\"\nsample = -1", "3: \"sample\" must be from 0 to 1000000000000"},
        ErrorCase{"[[fault]]\nkind = \"missing_echo\"\nframe = 1\noccurrence = 0",
                  "4: \"occurrence\" must be from 1 to 1000000000"},
        ErrorCase{"[[fault]]\nkind = \"noise\"", "1: [[fault]] lacks the key \"probability\""},
        ErrorCase{"[[fault]]\nkind = \"noise\"\nprobability = 1.01", "3: \"probability\" must be from 0 to 1"},
        ErrorCase{"[[fault]]\nkind = \"wrong_checksum\"\nframe = 5", "3: no slave answers identifier 0x05"},
        ErrorCase{"[[fault]]\nkind = \"collision\"", "1: [[fault]] lacks the key \"frame\""},
        ErrorCase{"[[fault]]\nkind = \"collision\"\nframe = 5\nbytes = 1",
                  "4: unknown key \"bytes\" in [[fault]]; known are \"kind\", \"frame\", \"occurrence\", \"data\", "
                  "\"response_space\""},
        ErrorCase{"[[slave]]\nname = \"a\"\n[[slave.frame]]\nid = 5\ndata = [1]\n"
                  "[[fault]]\nkind = \"short_answer\"\nframe = 5\nbytes = 17",
                  "9: \"bytes\" must be from 1 to 16"}));

TEST(BusFile, TellsWhereItIsNotTOML)
{
    const Failure Raised = FailureOf([] { ParseBusFile("seed = 1\n[[slave]\n", "bus.toml"); });
    EXPECT_EQ(Raised.Number, static_cast<std::uint32_t>(errPellumo::errBusFile));
    EXPECT_EQ(Raised.Description.find("bus.toml:2: "), 0U) << Raised.Description;
}

#if defined(_WIN32)
constexpr std::string_view FolderIsNoFile = "Permission denied";
#else
constexpr std::string_view FolderIsNoFile = "Is a directory";
#endif

TEST(BusFile, IsReadFromDisk)
{
    const std::string Name = "BusFileTest" + std::to_string(std::random_device()()) + ".toml"; // others may test, too
    const std::filesystem::path Path = std::filesystem::path(testing::TempDir()) / Name;
    std::ofstream(Path) << "seed = 5\n";
    EXPECT_EQ(ReadBusFile(Path.string()).Seed, 5U);
    std::ofstream(Path) << "seed = 5\nsead = 6\n";
    EXPECT_EQ(FailureOf([&Path] { ReadBusFile(Path.string()); }).Description.find(Path.string() + ":2: "), 0U);
    std::filesystem::remove(Path);
    EXPECT_EQ(FailureOf([&Path] { ReadBusFile(Path.string()); }),
              BusFileError(Path.string() + ": cannot be read (No such file or directory)"));
    EXPECT_EQ(FailureOf([] { ReadBusFile(testing::TempDir()); }),
              BusFileError(testing::TempDir().append(": cannot be read (").append(FolderIsNoFile).append(")")));
}

} // namespace Pellumo::Testing
