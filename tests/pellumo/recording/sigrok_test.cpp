/// The VCD file as sigrok sees it: a decoder that knows nothing of this project must find in the file every identifier,
/// parity, data byte and checksum that was on the bus.

#include "pellumo/recording/Recorder.h"
#include "pellumo/recording/VCDWriter.h"
#include "tarvix/master/clsLIN.h"
#include "tests/pellumo/recording/BusDevice.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace Pellumo::Testing {

namespace {

using Tarvix::clsLIN;
using Bytes = std::vector<std::uint8_t>;

Bytes DataOf(std::uint8_t Identifier)
{
    Bytes Data(1 + Identifier % 8U);
    for (std::size_t i = 0; i < Data.size(); ++i) {
        Data[i] = static_cast<std::uint8_t>(std::size_t{Identifier} * 37 + i * 91);
    }
    return Data;
}

/// Nodes that answer the odd identifiers, each with another clock and response space.
BusDescription Nodes(Tarvix::eLINChecksumMode Model)
{
    BusDescription Bus;
    for (std::uint8_t Identifier = 1; Identifier < 0x40; Identifier += 2) {
        FrameDescription Frame;
        Frame.Identifier = Identifier;
        Frame.Data = DataOf(Identifier);
        Frame.Checksum = Model;
        Bus.Slaves.push_back(
            {"node " + std::to_string(Identifier), Identifier % 5 * 0.3 - 0.6, Identifier / 10.0, {Frame}});
    }
    return Bus;
}

std::string Text(const char* Format, unsigned A, unsigned B = 0)
{
    std::array<char, 64> Buffer{};
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): only this test's formats
    static_cast<void>(std::snprintf(Buffer.data(), Buffer.size(), Format, A, B));
    return Buffer.data();
}

/// Writes the even identifiers and reads the odd ones.
/// @return what the decoder must say
std::vector<std::string> RecordFrames(const std::string& Path, Tarvix::eLINChecksumMode Model, std::int32_t Baud)
{
    std::ofstream File(Path, std::ios::binary);
    VCDWriter Writer(File);
    BusDevice Device(Nodes(Model));
    Recorder Recording(Device);
    Recording.AddListener(Writer);
    clsLIN Master;
    Master.Initialize(Recording);
    Master.BaudrateBd(Baud);
    Master.ChecksumMode(Model);
    std::vector<std::string> Expected;
    for (std::uint8_t Identifier = 0; Identifier < 0x40; ++Identifier) {
        const std::uint8_t Protected = clsLIN::ComputeIDParity(Identifier);
        const Bytes Data = DataOf(Identifier);
        const auto Length = static_cast<std::int32_t>(Data.size());
        if (Identifier % 2 == 0) {
            Master.WriteFrame(Protected, Length, Data);
            Master.Wait(30);
        } else {
            EXPECT_TRUE(Master.ReadFrame(Protected, Length));
            EXPECT_TRUE(Master.CheckData(Length, Data, Bytes(Data.size(), 0xFF)));
        }
        Expected.emplace_back("lin-1: Break condition");
        Expected.emplace_back("lin-1: Sync");
        Expected.push_back(Text("lin-1: ID: %02X Parity: %u (ok)", Identifier, Protected >> 6U));
        for (const std::uint8_t Byte : Data) {
            Expected.push_back(Text("lin-1: Data: 0x%02X", Byte));
        }
        Expected.push_back(Text("lin-1: Checksum: 0x%02X", Master.Checksum()));
        if (Model == Tarvix::elcLIN20 && (Identifier == 0x3C || Identifier == 0x3D)) {
            Expected.emplace_back("lin-1: Checksum invalid"); // its rule: diagnostic frames have the classic checksum
        }
    }
    return Expected;
}

std::vector<std::string> LinesOf(const std::string& Command)
{
    std::vector<std::string> Lines;
    // NOLINTNEXTLINE(cert-env33-c): the command is this test's own
    FILE* const Pipe = popen(Command.c_str(), "r");
    if (Pipe == nullptr) {
        ADD_FAILURE() << "cannot run " << Command;
        return Lines;
    }
    std::array<char, 512> Line{};
    while (std::fgets(Line.data(), static_cast<int>(Line.size()), Pipe) != nullptr) {
        Lines.emplace_back(Line.data());
        Lines.back().pop_back();
    }
    EXPECT_EQ(pclose(Pipe), 0) << Command;
    return Lines;
}

struct Case {
    const char* Name;
    Tarvix::eLINChecksumMode Model;
    std::int32_t Baud;
    int Version; // of LIN as the decoder counts
};

} // namespace

class Sigrok : public testing::TestWithParam<Case> {};

TEST_P(Sigrok, FindsEveryFieldOfEveryFrame)
{
    ASSERT_FALSE(LinesOf("command -v sigrok-cli || true").empty())
        << "sigrok-cli is missing; on Debian: apt-get install sigrok-cli";
    const Case& c = GetParam();
    const std::string Path = std::string("sigrok_test_").append(c.Name).append(".vcd"); // in the build directory
    const auto Expected = RecordFrames(Path, c.Model, c.Baud);
    const auto Found = LinesOf("sigrok-cli -I vcd -i '" + Path + "' -P uart:rx=rx:baudrate=" + std::to_string(c.Baud) +
                               ",lin:version=" + std::to_string(c.Version) + " -A lin 2>&1");
    EXPECT_EQ(Found, Expected);
    std::filesystem::remove(Path);
}

INSTANTIATE_TEST_SUITE_P(Models, Sigrok,
                         testing::Values(Case{"classic", Tarvix::elcLIN13, 9600, 1},
                                         Case{"enhanced", Tarvix::elcLIN20, 19200, 2}),
                         [](const auto& Info) { return std::string(Info.param.Name); });

} // namespace Pellumo::Testing
