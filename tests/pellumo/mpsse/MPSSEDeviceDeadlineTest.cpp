// How long the device lets each transfer take.

#include "pellumo/mpsse/MPSSEDevice.h"
#include "tests/support/FakeTransport.h"

#include <gtest/gtest.h>

#include <memory>

namespace Pellumo {
namespace {

using namespace std::chrono_literals;
using Testing::FakeTransport;
using Testing::TransportRecord;
using Bytes = std::vector<std::uint8_t>;

class Deadline : public testing::Test {
protected:
    std::chrono::nanoseconds LastLimit() const { return Record.Transfers.back().Limit; }

    TransportRecord Record;
    MPSSEDevice Device{std::make_unique<FakeTransport>(Record), ChipFamily::FT232H};
};

// 30 MHz / 30,000 is 1 kHz: 125 bytes last one second.
TEST_F(Deadline, IsTheTimeOfEverythingThatMayNotHaveLeftThePinsAndASecond)
{
    EXPECT_EQ(LastLimit(), 1s);
    Device.SetClockDivisor(29999);
    EXPECT_EQ(LastLimit(), 1s);

    Bytes Samples(1250);
    Device.SendSamples(Samples, 125, 1, 0);
    EXPECT_EQ(LastLimit(), 2s);
    Device.SendSamples(Samples, 250, 1, 0);
    EXPECT_EQ(LastLimit(), 4s);
    Device.ConfigurePins(0x03, 0x0B);
    EXPECT_EQ(LastLimit(), 4s) << "a command waits behind the samples";
    Device.ExchangeSamples(Samples, 1250, 1, 0, 0);
    EXPECT_EQ(LastLimit(), 14s);

    Device.ExchangeSamples(Samples, 125, 1, 0, 0);
    EXPECT_EQ(LastLimit(), 2s) << "an answer shows that all before it is done";
}

TEST_F(Deadline, CountsSamplesAtTheClockTheyWereSentWith)
{
    Bytes Samples(125);
    Device.SetClockDivisor(29999);
    Device.SendSamples(Samples, 125, 1, 0);
    Device.SetClockDivisor(59999);
    Device.SendSamples(Samples, 125, 1, 0);
    EXPECT_EQ(LastLimit(), 4s);
    Device.Close();
    EXPECT_EQ(LastLimit(), 4s);
}

TEST_F(Deadline, CountsOnTheSlowestClockUntilOneIsSet)
{
    const Bytes Samples(1);
    Device.SendSamples(Samples, 1, 1, 0);
    EXPECT_EQ(LastLimit(), 1s + 17476267ns) << "8 samples of 65,536 / 30 MHz, rounded up";
}

TEST_F(Deadline, OfALongStreamIsThatOfEachOfItsPieces)
{
    Device.SetClockDivisor(29999);
    Bytes Samples(65536 + 125);
    Device.SendSamples(Samples, 65536 + 125, 1, 0);
    EXPECT_EQ(Record.Transfers[Record.Transfers.size() - 2].Limit, 1s + 524288ms);
    EXPECT_EQ(LastLimit(), 1s + 16384ms + 1s) << "after what the chip may hold of the first one";
    Device.ExchangeSamples(Samples, 65536 + 125, 1, 0, 0);
    EXPECT_EQ(LastLimit(), 2s) << "each piece is answered";
}

// The buffer of the chip, and as much again in packets, at the slowest clock of those that may stand there.
TEST_F(Deadline, CountsNoMoreThanTheChipCanHoldOfWhatWasTaken)
{
    constexpr auto Held = 2 * 1024 * 16ms;
    const Bytes Slow(32767);
    Device.SetClockDivisor(59999);
    for (int k = 0; k < 3; ++k) {
        Device.SendSamples(Slow, 32767, 1, 0);
        EXPECT_EQ(LastLimit(), (k == 0 ? 0ms : Held) + 32767 * 16ms + 1s) << k;
    }
    Device.SetClockDivisor(29999);
    EXPECT_EQ(LastLimit(), Held + 1s);

    Bytes Fast(1);
    Device.SendSamples(Fast, 1, 1, 0);
    EXPECT_EQ(LastLimit(), Held + 8ms + 1s);
    Device.ExchangeSamples(Fast, 1, 1, 0, 0);
    EXPECT_EQ(LastLimit(), Held + 8ms + 1s) << "those at the slower clock may be the last";

    Device.SendSamples(Slow, 32767, 1, 0);
    Device.ConfigurePins(0x03, 0x0B);
    EXPECT_EQ(LastLimit(), Held / 2 + 1s) << "an answer shows that the slower ones are done";
}

struct BufferCase {
    ChipFamily Family;
    std::chrono::milliseconds Held;
};

class DeadlineOfFamily : public testing::TestWithParam<BufferCase> {};
INSTANTIATE_TEST_SUITE_P(Buffers, DeadlineOfFamily,
                         testing::Values(BufferCase{ChipFamily::FT2232D, 1280ms},
                                         BufferCase{ChipFamily::FT2232H, 8192ms},
                                         BufferCase{ChipFamily::FT4232H, 4096ms},
                                         BufferCase{ChipFamily::FT232H, 2048ms}));

TEST_P(DeadlineOfFamily, CountsTheBufferOfItsChip)
{
    TransportRecord Record;
    MPSSEDevice Device(std::make_unique<FakeTransport>(Record), GetParam().Family);
    Device.SetClockDivisor(3749); // 1 ms a byte; 5 ms of the full-speed chip
    Device.SendSamples(Bytes(10000), 10000, 1, 0);
    Device.SetClockDivisor(0);
    EXPECT_EQ(Record.Transfers.back().Limit, GetParam().Held + 1s);
}

} // namespace
} // namespace Pellumo
