// A frame allocates nothing once the buffers have grown to its size.

#include "pellumo/emulation/EmulatedTransport.h"
#include "pellumo/mpsse/MPSSEDevice.h"
#include "tests/support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Pellumo {
namespace {

using Tarvix::Testing::Allocations;

class StraightWires final : public Pins {
public:
    void Clock(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In, std::int64_t /*SampleTicks*/) override
    {
        std::copy_n(Out.begin(), In.size(), In.begin());
    }
    void SetLevel(int /*Level*/) override {}
};

TEST(FrameAllocations, AreNoneOnceWarm)
{
    StraightWires Wires;
    MPSSEDevice Device(
        std::make_unique<EmulatedTransport>(std::make_shared<EmulatedChip>(ChipFamily::FT232H, Wires), "sim:"),
        ChipFamily::FT232H);
    Device.ConfigurePins(0x03, 0x0B);
    std::vector<std::uint8_t> Samples(70000);
    const auto Frames = [&] {
        Device.SetClockDivisor(194);
        Device.SendSamples(Samples, 70000, 1, 0);
        Device.ExchangeSamples(Samples, 70000, 1, 0, 0);
        Device.ExchangeSamples(Samples, 174, 0, 0, 0);
    };
    Frames();
    const std::size_t Before = Allocations();
    EXPECT_GT(Before, 0U);
    Frames();
    EXPECT_EQ(Allocations(), Before);
}

} // namespace
} // namespace Pellumo
