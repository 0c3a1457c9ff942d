/// @file
/// Fuzzes the bus file: any text describes a bus on which all can be asked, or is refused with the file's name.
#include "pellumo/simulation/BusFile.h"

#include "pellumo/simulation/SimulatedBus.h"
#include "tarvix/master/clsLIN.h"
#include "tests/support/BusDevice.h"

#include <array>
#include <set>
#include <string>

#include "fuzz/Fuzzing.h"

namespace {

using Pellumo::BusDescription;
using Tarvix::Fuzzing::Demand;
using Tarvix::Fuzzing::Succeeds;

void DemandWithinBounds(const BusDescription& Bus)
{
    std::set<std::uint8_t> Identifiers;
    for (const auto& Slave : Bus.Slaves) {
        for (const auto& Frame : Slave.Frames) {
            Demand(Frame.Identifier <= 0x3F && Frame.Data.size() <= 8 && (Frame.Copies || !Frame.Data.empty()));
            Demand(Identifiers.insert(Frame.Identifier).second);
        }
    }
    for (const auto& Collision : Bus.Collisions) {
        Demand(Collision.Frame <= 0x3F && Collision.Data.size() <= 8);
    }
}

/// A few frames with each of the nodes, whatever comes of them.
void UseBus(const BusDescription& Bus)
{
    Pellumo::SimulatedBus Wires(Bus);
    Pellumo::Testing::BusDevice Device(Wires);
    Tarvix::clsLIN Master;
    Master.Initialize(Device);
    Master.BaudrateBd(19200);
    int Left = 8;
    for (const auto& Slave : Bus.Slaves) {
        for (const auto& Frame : Slave.Frames) {
            if (Left-- > 0) {
                const std::uint8_t ID = Tarvix::clsLIN::ComputeIDParity(Frame.Identifier);
                Succeeds([&] { Master.ReadFrame(ID, 2); });
                Succeeds([&] { Master.WriteFrame(ID, 1, std::array<std::uint8_t, 1>{0x55}); });
            }
        }
    }
}

BusDescription Parse(const std::string& Text)
{
    try {
        return Pellumo::ParseBusFile(Text, "fuzz.toml");
    } catch (const Tarvix::Error& Raised) {
        Demand(Raised.Source() == "BusFile" && Raised.Description().starts_with("fuzz.toml:"));
        return {};
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    const BusDescription Bus = Parse(std::string(Data, Data + Size));
    DemandWithinBounds(Bus);
    UseBus(Bus);
    return 0;
}
