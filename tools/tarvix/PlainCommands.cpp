// The commands that need no bus.

#include "tarvix/common/Error.h"
#include "tarvix/master/clsLIN.h"
#include "tools/tarvix/Commands.h"
#include "tools/tarvix/Console.h"
#include "tools/tarvix/FrameFailure.h"
#include "tools/tarvix/Text.h"

#include <algorithm>
#include <cstdio>

namespace Tarvix::Tool {

namespace {

std::string Padded(std::string Text, std::size_t Width)
{
    Text.resize(std::max(Text.size(), Width), ' ');
    return Text;
}

/// One line of `id`.
std::string IdentifierLine(std::uint8_t Identifier)
{
    const std::uint8_t Protected = clsLIN::ComputeIDParity(Identifier);
    const auto Bit = [Protected](int k) { return std::to_string(Protected >> k & 1); };
    return Padded(HexByte(Identifier), 6) + Padded(Bit(6), 4) + Padded(Bit(7), 4) + HexByte(Protected) + "\n";
}

} // namespace

int Execute(const IDArguments& Arguments)
{
    std::string Text = "ID    P0  P1  PID\n";
    for (const std::uint8_t Identifier : Arguments.Identifiers) {
        Text += IdentifierLine(Identifier);
    }
    Console(false).Print(Text);
    return AllWell;
}

std::string DeviceTable(std::span<const Pellumo::FoundDevice> Devices)
{
    std::size_t URLWidth = 3;
    for (const Pellumo::FoundDevice& Each : Devices) {
        URLWidth = std::max(URLWidth, Each.URL.size());
    }
    constexpr std::size_t ChipWidth = 8;
    std::string Text = Padded("URL", URLWidth + 2) + Padded("CHIP", ChipWidth + 2) + "STATE\n";
    for (const Pellumo::FoundDevice& Each : Devices) {
        Text += Padded(Each.URL, URLWidth + 2) + Padded(Each.Product, ChipWidth + 2);
        Text += Each.Obstacle.empty() ? "ready" : "not usable";
        if (Each.KernelDriver) {
            Text += ", a kernel driver holds the port; it is detached while the port is open";
        }
        Text += "\n";
        if (!Each.Obstacle.empty()) {
            Text += "    " + Each.Obstacle + "\n";
        }
    }
    return Text;
}

int Execute(const DevicesArguments& /*Arguments*/)
{
    Console Out(false);
    try {
        const std::vector<Pellumo::FoundDevice> Devices = Pellumo::FindDevices();
        if (Devices.empty()) {
            Out.Note("No chip with an MPSSE engine was found on USB. Plug one in, or use sim: to try without one.");
        } else {
            Out.Print(DeviceTable(Devices));
        }
        return AllWell;
    } catch (const Error& Failure) {
        throw ProgramFailure(NoDevice, "The chips on USB cannot be listed: " + Headline(Failure));
    }
}

int Execute(const PrintAndExit& Arguments)
{
    if (Arguments.Status == AllWell) {
        Console(false).Print(Arguments.Text);
    } else {
        static_cast<void>(std::fputs(Arguments.Text.c_str(), stderr)); // nobody is left to tell a failure to
    }
    return Arguments.Status;
}

} // namespace Tarvix::Tool
