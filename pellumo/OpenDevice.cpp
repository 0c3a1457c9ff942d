#include "pellumo/OpenDevice.h"

#include "pellumo/DeviceURL.h"
#include "pellumo/emulation/EmulatedTransport.h"
#include "pellumo/mpsse/MPSSEDevice.h"
#include "pellumo/simulation/BusFile.h"
#include "pellumo/simulation/ExampleBus.h"
#include "pellumo/simulation/SimulatedBus.h"
#include "pellumo/usb/OpenUSBTransport.h"

#include <string>
#include <utility>
#include <variant>

namespace Pellumo {

namespace {

constexpr ChipFamily EmulatedFamily = ChipFamily::FT232H;

// A bus and the chip that drives it: the chip keeps the bus alive.
struct SimulatedWorld {
    explicit SimulatedWorld(const BusDescription& Description) : Bus(Description), Chip(EmulatedFamily, Bus) {}

    SimulatedBus Bus;
    EmulatedChip Chip;
};

std::unique_ptr<Tarvix::FTDIMPSSE> Open(const SimulatedBusURL& Simulation, std::string_view URL)
{
    const auto World =
        std::make_shared<SimulatedWorld>(Simulation.BusFile.empty() ? ExampleBus() : ReadBusFile(Simulation.BusFile));
    auto Pipe =
        std::make_unique<EmulatedTransport>(std::shared_ptr<EmulatedChip>(World, &World->Chip), std::string(URL));
    return std::make_unique<MPSSEDevice>(std::move(Pipe), EmulatedFamily);
}

std::unique_ptr<Tarvix::FTDIMPSSE> Open(const ChipAddress& Address, std::string_view /*URL*/)
{
    auto [Pipe, Family] = OpenUSBTransport(Address);
    return std::make_unique<MPSSEDevice>(std::move(Pipe), Family);
}

} // namespace

std::unique_ptr<Tarvix::FTDIMPSSE> OpenDevice(std::string_view URL)
{
    return std::visit([URL](const auto& Parsed) { return Open(Parsed, URL); }, ParseDeviceURL(URL));
}

} // namespace Pellumo
