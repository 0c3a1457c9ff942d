// The whole road: device, commands, emulated chip, wires, and back.

#include "pellumo/emulation/EmulatedTransport.h"
#include "pellumo/errPellumo.h"
#include "pellumo/mpsse/MPSSEDevice.h"
#include "tarvix/common/Error.h"
#include "tests/support/EchoPins.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Pellumo {
namespace {

using Testing::EchoPins;
using Bytes = std::vector<std::uint8_t>;

// A pattern in which no two neighbouring stretches are alike.
Bytes Pattern(std::size_t Count)
{
    Bytes Samples(Count);
    for (std::size_t i = 0; i < Count; ++i) {
        Samples[i] = static_cast<std::uint8_t>(i * 7 + i / 256 * 3 + 1);
    }
    return Samples;
}

class EmulatedDevice : public testing::TestWithParam<ChipFamily> {
protected:
    void SetUp() override
    {
        Device.ConfigurePins(0x03, 0x0B);
        Device.SetOption(0);
        Device.SetClockDivisor(194);
    }

    EchoPins Wires;
    MPSSEDevice Device{std::make_unique<EmulatedTransport>(std::make_shared<EmulatedChip>(GetParam(), Wires), "sim:"),
                       GetParam()};
};

INSTANTIATE_TEST_SUITE_P(All, EmulatedDevice,
                         testing::Values(ChipFamily::FT2232D, ChipFamily::FT2232H, ChipFamily::FT4232H,
                                         ChipFamily::FT232H),
                         [](const auto& Info) { return FactsOf(Info.param).Name; });

TEST_P(EmulatedDevice, ReadsBackWhatTheWiresGaveAtEveryLength)
{
    for (const std::size_t Count : {1U, 2U, 174U, 255U, 256U, 257U, 65535U, 65536U, 65537U, 140000U}) {
        const Bytes Sent = Pattern(Count);
        Wires.PulledLow = Wires.Stream();
        Wires.PulledLow.resize(Wires.PulledLow.size() + Count / 2, 0xFF);
        Wires.PulledLow.push_back(0x10);
        Bytes Samples = Sent;
        const std::size_t Before = Wires.Stream().size();

        Device.ExchangeSamples(Samples, static_cast<std::int32_t>(Count), 1, 0, 0);

        const Bytes Driven = Wires.Stream();
        ASSERT_TRUE(
            std::equal(Driven.begin() + static_cast<std::ptrdiff_t>(Before), Driven.end(), Sent.begin(), Sent.end()));
        Bytes Expected = Sent;
        std::fill_n(Expected.begin(), Count / 2, std::uint8_t{0});
        Expected[Count / 2] &= 0xEF;
        ASSERT_EQ(Samples, Expected) << Count;
    }
}

TEST_P(EmulatedDevice, ClocksAtTheFrequencyItPromises)
{
    for (const std::int32_t Divisor : {0, 1, 194, 65535}) {
        Device.SetClockDivisor(Divisor);
        Device.SendSamples(Bytes{0xFF}, 1, 1, 0);
        EXPECT_DOUBLE_EQ(60e6 / static_cast<double>(Wires.Calls.back().SampleTicks),
                         Device.FrequencyForDivisor(Divisor));
    }
}

} // namespace
} // namespace Pellumo
