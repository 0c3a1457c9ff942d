#include "pellumo/mpsse/MPSSEDevice.h"
#include "pellumo/usb/OpenUSBTransport.h"
#include "tests/support/EchoPins.h"
#include "tests/support/FakeUsbfs.h"

#include <gtest/gtest.h>

namespace Pellumo::Testing {
namespace {

TEST(USB, Opens)
{
    FakeUsbfs Usb;
    EchoPins Wires;
    FakeUSBDevice& Chip = Usb.Plug(ChipFamily::FT232H, "FT0001", Wires);
    auto Opened = OpenUSBTransport({});
    EXPECT_EQ(Opened.Pipe->Name(), "ftdi://ftdi:232h:FT0001/1");
    MPSSEDevice Device(std::move(Opened.Pipe), Opened.Family);
    Device.ConfigurePins(3, 11);
    Device.SetOption(0);
    Device.SetClockDivisor(194);
    std::vector<std::uint8_t> Samples(174, 0x5A);
    Device.ExchangeSamples(Samples, 174, 1, 0, 0);
    EXPECT_EQ(Samples, std::vector<std::uint8_t>(174, 0x5A));
    printf("%zu %zu %zu\n", Chip.Transfers, Chip.Writes, Chip.Reads);
}

} // namespace
} // namespace Pellumo::Testing
