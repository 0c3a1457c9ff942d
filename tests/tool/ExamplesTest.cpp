// The example scripts do what they say.

#include "tests/tool/Program.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace Tarvix::Testing {

namespace {

struct ExampleCase {
    std::string Script;
    std::string Device;
    int Status;
    std::string Frames; ///< candump lines
};

const std::vector<ExampleCase>& Examples()
{
    static const std::vector<ExampleCase> All = {
        {"first-frame.lin", "sim:", 0, "(0.000000) lin0 3D#1234\n"},
        {"door.lin", "sim:", 0,
         "(0.000000) lin0 20#6400\n(0.005928) lin0 21#6400\n(0.014976) lin0 20#322D\n(0.020904) lin0 21#322D\n"
         "(0.029952) lin0 3D#1234\n"},
        {"tour.lin", "sim:", 0,
         "(0.006032) lin0 20#01FFA57F\n(0.010504) lin0 20#0102\n(0.013936) lin0 21#0102\n(0.023088) lin0 21#0102\n"
         "(0.032240) lin0 3D#1234\n(0.041392) lin0 3D#1234\n(0.050544) lin0 11#5A\n"},
        {"faulty-slave.lin", "sim:" + SourceFile("examples/faulty.toml"), 1,
         "(0.000000) lin0 02#1122\n(0.009048) lin0 02#1122\n"},
    };
    return All;
}

class Example : public testing::TestWithParam<ExampleCase> {};
TEST_P(Example, Runs)
{
    const ExampleCase& Case = GetParam();
    const Outcome Result =
        RunQuietly({"run", SourceFile("examples/" + Case.Script), "-d", Case.Device, "--format", "candump"});
    EXPECT_EQ(Result.Status, Case.Status) << Result.Error;
    EXPECT_EQ(Result.Out, Case.Frames);
}
INSTANTIATE_TEST_SUITE_P(Each, Example, testing::ValuesIn(Examples()));

TEST(Examples, TheFaultySlaveIsCaughtWhereItsCommentSays)
{
    const Outcome Result =
        RunQuietly({"run", SourceFile("examples/faulty-slave.lin"), "-d", "sim:" + SourceFile("examples/faulty.toml")});
    EXPECT_NE(Result.Error.find("Rx checksum error (0x8004C3B8, clsLIN)"), std::string::npos) << Result.Error;
}

TEST(Examples, AreAllTested)
{
    std::set<std::string> Tested;
    for (const ExampleCase& Each : Examples()) {
        Tested.insert(Each.Script);
    }
    std::set<std::string> Present;
    for (const auto& Entry : std::filesystem::directory_iterator(SourceFile("examples"))) {
        if (Entry.path().extension() == ".lin") {
            Present.insert(Entry.path().filename());
        }
    }
    EXPECT_EQ(Present, Tested);
}

} // namespace

} // namespace Tarvix::Testing
