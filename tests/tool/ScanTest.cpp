// The scan of buses on which every identifier answers.

#include "tests/tool/Program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>
#include <string>
#include <tuple>

namespace Tarvix::Testing {
namespace {

constexpr int Identifiers = 0x40;

class FullBus : public testing::TestWithParam<std::tuple<const char*, int>> {};
INSTANTIATE_TEST_SUITE_P(ModelsAndLengths, FullBus,
                         testing::Combine(testing::Values("classic", "enhanced"), testing::Range(1, 9)));

/// A bus on which each identifier answers with bytes counted up from its own number.
std::string BusFile(const std::string& Model, int Length)
{
    std::ostringstream File;
    File << "[[slave]]\nname = \"all\"\n";
    for (int Identifier = 0; Identifier < Identifiers; ++Identifier) {
        File << "[[slave.frame]]\nid = " << Identifier << "\nchecksum = \"" << Model << "\"\ndata = [";
        for (int Byte = 0; Byte < Length; ++Byte) {
            File << Identifier + Byte << ", ";
        }
        File << "]\n";
    }
    return File.str();
}

/// Such bytes as the program prints them.
std::string Counting(int First, int Length)
{
    std::string Text;
    for (int Byte = First; Byte < First + Length; ++Byte) {
        Text.append(Text.empty() ? "" : " ").append({"0123456789ABCDEF"[Byte / 16], "0123456789ABCDEF"[Byte % 16]});
    }
    return Text;
}

TEST_P(FullBus, IsListedWhole)
{
    const std::string Model = std::get<0>(GetParam());
    const int Length = std::get<1>(GetParam());
    const TemporaryDirectory Directory;
    const std::string Device = "sim:" + Directory.Write("bus.toml", BusFile(Model, Length));
    const Outcome Result = RunProgram({"scan", "--format", "json", "-d", Device});
    EXPECT_EQ(Result.Status, 0);
    std::istringstream Lines(Result.Out);
    int Identifier = 0;
    for (std::string Line; std::getline(Lines, Line); ++Identifier) {
        const auto Frame = nlohmann::json::parse(Line);
        EXPECT_EQ(Frame["id"], "0x" + Counting(Identifier, 1));
        EXPECT_EQ(Frame["length"], Length) << Line;
        EXPECT_EQ(Frame["checksum_model"], Model) << Line;
        EXPECT_EQ(Frame["data"], Counting(Identifier, Length)) << Line;
    }
    EXPECT_EQ(Identifier, Identifiers);
}

} // namespace
} // namespace Tarvix::Testing
