/// The VCD file as sigrok sees it: a decoder that knows nothing of this project must find in the file every identifier,
/// parity, data byte and checksum that was on the bus.

#include "pellumo/recording/Recorder.h"
#include "pellumo/recording/VCDWriter.h"
#include "pellumo/simulation/SimulatedBus.h"
#include "tarvix/master/clsLIN.h"
#include "tarvix/script/clsLINScriptInterpreter.h"
#include "tests/support/BusDevice.h"

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

std::string Text(const char* Format, std::size_t A, std::size_t B = 0)
{
    std::array<char, 64> Buffer{};
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): only this test's formats
    static_cast<void>(std::snprintf(Buffer.data(), Buffer.size(), Format, A, B));
    return Buffer.data();
}

std::string Hexadecimal(const Bytes& Data)
{
    std::string Digits;
    for (const std::uint8_t Byte : Data) {
        Digits += Text("%02zX ", Byte);
    }
    return Digits;
}

/// Writes the even identifiers and reads the odd ones, with all lengths of data.
std::string ScriptFor(Tarvix::eLINChecksumMode Model, std::int32_t Baud)
{
    std::string Script = "BAUDRATE " + std::to_string(Baud) + " BD;\n";
    Script += Model == Tarvix::elcLIN13 ? "CHKSUM_MODE LIN1_3;\n" : "CHKSUM_MODE LIN2_0;\n";
    for (std::uint8_t Identifier = 0; Identifier < 0x40; ++Identifier) {
        const Bytes Data = DataOf(Identifier);
        const std::string Frame = Text(" ID (%02zX) LEN %zu", clsLIN::ComputeIDParity(Identifier), Data.size());
        Script += Identifier % 2 == 0 ? "WRITE_FRAME" + Frame + " TX (" + Hexadecimal(Data) + "); WAIT 30;\n"
                                      : "READ_FRAME" + Frame + " RX (" + Hexadecimal(Data) + ");\n";
    }
    return Script;
}

/// What the decoder must say of the script's frames.
std::vector<std::string> ExpectedLines(Tarvix::eLINChecksumMode Model)
{
    std::vector<std::string> Expected;
    for (std::uint8_t Identifier = 0; Identifier < 0x40; ++Identifier) {
        const std::uint8_t Protected = clsLIN::ComputeIDParity(Identifier);
        Expected.emplace_back("lin-1: Break condition");
        Expected.emplace_back("lin-1: Sync");
        Expected.push_back(Text("lin-1: ID: %02zX Parity: %zu (ok)", Identifier, std::size_t{Protected} >> 6U));
        unsigned Sum = Model == Tarvix::elcLIN20 ? Protected : 0;
        for (const std::uint8_t Byte : DataOf(Identifier)) {
            Expected.push_back(Text("lin-1: Data: 0x%02zX", Byte));
            Sum += Byte;
            Sum = Sum > 0xFF ? Sum - 0xFF : Sum; // a carry is added back
        }
        Expected.push_back(Text("lin-1: Checksum: 0x%02zX", 0xFF - Sum));
        if (Model == Tarvix::elcLIN20 && (Identifier == 0x3C || Identifier == 0x3D)) {
            Expected.emplace_back("lin-1: Checksum invalid"); // its rule: diagnostic frames have the classic checksum
        }
    }
    return Expected;
}

/// Runs the script on a simulated bus.
void Record(const std::string& Path, Tarvix::eLINChecksumMode Model, std::int32_t Baud)
{
    std::ofstream File(Path, std::ios::binary);
    VCDWriter Writer(File);
    SimulatedBus Wires(Nodes(Model));
    BusDevice Device(Wires);
    Recorder Recording(Device);
    Recording.AddListener(Writer);
    clsLIN Master;
    Master.Initialize(Recording);
    Tarvix::clsLINScriptInterpreter Interpreter;
    Interpreter.Initialize(Master);
    Interpreter.ExecuteScript(ScriptFor(Model, Baud));
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
    Record(Path, c.Model, c.Baud);
    const auto Found = LinesOf("sigrok-cli -I vcd -i '" + Path + "' -P uart:rx=rx:baudrate=" + std::to_string(c.Baud) +
                               ",lin:version=" + std::to_string(c.Version) + " -A lin 2>&1");
    EXPECT_EQ(Found, ExpectedLines(c.Model));
    std::filesystem::remove(Path);
}

INSTANTIATE_TEST_SUITE_P(Models, Sigrok,
                         testing::Values(Case{"classic", Tarvix::elcLIN13, 9600, 1},
                                         Case{"enhanced", Tarvix::elcLIN20, 19200, 2}),
                         [](const auto& Info) { return std::string(Info.param.Name); });

} // namespace Pellumo::Testing
