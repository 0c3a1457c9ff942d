// The whole road: device, commands, emulated chip, wires, and back.

#include "pellumo/emulation/EmulatedTransport.h"
#include "pellumo/errPellumo.h"
#include "pellumo/mpsse/MPSSEDevice.h"
#include "tests/support/EchoPins.h"
#include "tests/support/Errors.h"

#include <gtest/gtest.h>

#include <tuple>

namespace Pellumo {
namespace {

using namespace std::chrono_literals;
using Tarvix::Testing::Failure;
using Tarvix::Testing::FailureOf;
using Testing::EchoPins;
using Bytes = std::vector<std::uint8_t>;

constexpr auto Families = std::array{ChipFamily::FT2232D, ChipFamily::FT2232H, ChipFamily::FT4232H, ChipFamily::FT232H};

/// A device as the library sets it up, on wires that echo.
struct EchoDevice {
    explicit EchoDevice(ChipFamily Family)
        : Device(std::make_unique<EmulatedTransport>(std::make_shared<EmulatedChip>(Family, Wires), "sim:"), Family)
    {
        Device.ConfigurePins(0x03, 0x0B);
        Device.SetOption(0);
    }

    EchoPins Wires;
    MPSSEDevice Device;
};

class EmulatedDevice : public testing::TestWithParam<std::tuple<ChipFamily, std::int32_t>> {};
INSTANTIATE_TEST_SUITE_P(FamiliesAndLengths, EmulatedDevice,
                         testing::Combine(testing::ValuesIn(Families),
                                          testing::Values(1, 2, 174, 256, 257, 65535, 65536, 65537, 140000)));

TEST_P(EmulatedDevice, DrivesTheSamplesAndReturnsWhatTheWiresGave)
{
    const auto [Family, Count] = GetParam();
    for (const std::int32_t LSBFirst : {1, 0}) {
        EchoDevice Echo(Family);
        Bytes Samples;
        Bytes Expected;
        for (std::int32_t i = 0; i < Count; ++i) {
            const auto Sample = static_cast<std::uint8_t>(i * 7 + i / 256 * 3 + 1);
            const std::uint8_t PulledLow = i % 3 == 1 ? 0x18 : 0x00; // reads the same in either bit order
            Samples.push_back(Sample);
            Echo.Wires.PulledLow.push_back(PulledLow);
            Expected.push_back(static_cast<std::uint8_t>(Sample & ~PulledLow));
        }
        const Bytes Sent = Samples;

        Echo.Device.ExchangeSamples(Samples, Count, LSBFirst, 0, 0);

        ASSERT_TRUE(Samples == Expected);
        ASSERT_TRUE(LSBFirst == 0 || Echo.Wires.Stream() == Sent);
    }
}

class DeviceOfFamily : public testing::TestWithParam<ChipFamily> {};
INSTANTIATE_TEST_SUITE_P(Families, DeviceOfFamily, testing::ValuesIn(Families));

TEST_P(DeviceOfFamily, ClocksAtTheFrequencyItPromises)
{
    EchoDevice Echo(GetParam());
    for (const std::int32_t Divisor : {0, 1, 194, 65535}) {
        Echo.Device.SetClockDivisor(Divisor);
        Echo.Device.SendSamples(Bytes{0xFF}, 1, 1, 0);
        EXPECT_DOUBLE_EQ(60e6 / static_cast<double>(Echo.Wires.Calls.back().SampleTicks),
                         Echo.Device.FrequencyForDivisor(Divisor));
    }
}

TEST_P(DeviceOfFamily, LeavesTheLineHighWhenItIsClosed)
{
    EchoDevice Echo(GetParam());
    Echo.Device.SendSamples(Bytes{0x00}, 1, 1, 0);
    Echo.Device.Close();
    EXPECT_EQ(Echo.Wires.Levels.back(), 1);
    EXPECT_EQ(Echo.Wires.Levels.size(), 3U) << "floating at first, then configured, then left";
}

TEST(EmulatedTransport, OpensAChipAnew)
{
    EchoPins Wires;
    const auto Chip = std::make_shared<EmulatedChip>(ChipFamily::FT232H, Wires);
    Chip->Write(Bytes{0x18, 0xFF, 0xFF});
    const MPSSEDevice Device(std::make_unique<EmulatedTransport>(Chip, "sim:"), ChipFamily::FT232H);
    EXPECT_EQ(Wires.Calls.size(), 0U);
}

TEST(EmulatedTransport, TellsNoAnswerFromAShortOne)
{
    EchoPins Wires;
    EmulatedTransport Pipe(std::make_shared<EmulatedChip>(ChipFamily::FT232H, Wires), "sim:door.toml");
    Bytes Answer(3);
    EXPECT_EQ(FailureOf([&] { Pipe.Transfer({}, Answer, 1s); }),
              (Failure{static_cast<std::uint32_t>(errPellumo::errTimeout), "EmulatedTransport",
                       "sim:door.toml: the chip answered only 0 of 3 bytes"}));
    EXPECT_EQ(FailureOf([&] { Pipe.Transfer(Bytes{0xAA}, Answer, 1s); }),
              (Failure{static_cast<std::uint32_t>(errPellumo::errShortAnswer), "EmulatedTransport",
                       "sim:door.toml: the chip answered only 2 of 3 bytes"}));
}

TEST(EmulatedTransport, PurgeThrowsOldAnswersAway)
{
    EchoPins Wires;
    EmulatedTransport Pipe(std::make_shared<EmulatedChip>(ChipFamily::FT232H, Wires), "sim:");
    Pipe.Transfer(Bytes{0xAA}, {}, 1s);
    Pipe.Purge();
    Bytes Answer(2);
    Pipe.Transfer(Bytes{0xAB}, Answer, 1s);
    EXPECT_EQ(Answer, (Bytes{0xFA, 0xAB}));
}

TEST(EmulatedTransport, ARestartLeavesNothingOfACommandThatWasCutShort)
{
    EchoPins Wires;
    EmulatedTransport Pipe(std::make_shared<EmulatedChip>(ChipFamily::FT232H, Wires), "sim:");
    Pipe.Transfer(Bytes{0x18, 0xFF, 0xFF}, {}, 1s);
    Pipe.Restart();
    Bytes Answer(2);
    Pipe.Transfer(Bytes{0xAB}, Answer, 1s);
    EXPECT_EQ(Answer, (Bytes{0xFA, 0xAB}));
}

TEST(EmulatedTransport, LetsTheChipGoWhenItIsClosed)
{
    EchoPins Wires;
    const auto Chip = std::make_shared<EmulatedChip>(ChipFamily::FT232H, Wires);
    EmulatedTransport Pipe(Chip, "sim:");
    Pipe.Close();
    Pipe.Close();
    EXPECT_EQ(Chip.use_count(), 1);
    const Failure Closed{static_cast<std::uint32_t>(errPellumo::errClosed), "EmulatedTransport",
                         "sim: the device has been closed. Open it again to go on"};
    EXPECT_EQ(FailureOf([&] { Pipe.Transfer({}, {}, 1s); }), Closed);
    EXPECT_EQ(FailureOf([&] { Pipe.Purge(); }), Closed);
    EXPECT_EQ(FailureOf([&] { Pipe.Restart(); }), Closed);
}

} // namespace
} // namespace Pellumo
