// The scan of buses on which every identifier answers, and none.

#include "tests/tool/Program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>
#include <string>
#include <tuple>
#include <vector>

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

TEST(NoEcho, IsToldApartFromSilence)
{
    const TemporaryDirectory Directory;
    const std::string Deaf = "sim:" + Directory.Write("deaf.toml", "[[fault]]\nkind = \"missing_echo\"\n");
    const std::string Empty = "sim:" + Directory.Write("empty.toml", "");
    const std::string Complaint = "tarvix: Not even what was sent came back from the bus: check the transceiver's ";
    for (const auto& Arguments : std::vector<std::vector<std::string>>{{"read", "3E", "2", "-d"}, {"scan", "-d"}}) {
        const auto On = [&Arguments](const std::string& Device) {
            std::vector<std::string> All = Arguments;
            All.push_back(Device);
            return RunQuietly(All);
        };
        EXPECT_EQ(On(Empty).Error.find(Complaint), std::string::npos) << Arguments[0];
        EXPECT_NE(On(Deaf).Error.find(Complaint), std::string::npos) << Arguments[0];
        EXPECT_EQ(On(Deaf).Status, 1) << Arguments[0];
    }
}

TEST(Scan, AnEmptyBusIsNoFailure)
{
    const TemporaryDirectory Directory;
    const Outcome Result = RunProgram({"scan", "-d", "sim:" + Directory.Write("empty.toml", "")});
    EXPECT_EQ(Result.Status, 0);
    EXPECT_EQ(Result.Out, "");
    EXPECT_NE(Result.Error.find("0 of 64 identifiers answered. Check"), std::string::npos);
}

} // namespace
} // namespace Tarvix::Testing
