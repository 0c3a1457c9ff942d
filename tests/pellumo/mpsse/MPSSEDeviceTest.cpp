// What goes over the transport, byte by byte.

#include "pellumo/mpsse/MPSSEDevice.h"

#include "pellumo/errPellumo.h"
#include "tarvix/common/Raise.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeTransport.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Pellumo {
namespace {

using Tarvix::errGeneral;
using Tarvix::Testing::Failure;
using Tarvix::Testing::FailureOf;
using Testing::FakeTransport;
using Testing::TransportRecord;
using Bytes = std::vector<std::uint8_t>;
using Lines = std::vector<std::string>;

template <typename Enum>
Failure Raised(Enum Number, std::string_view Description)
{
    return {static_cast<std::uint32_t>(Number), "MPSSEDevice", std::string("fake:1: ").append(Description)};
}

class DeviceCommands : public testing::Test {
protected:
    std::unique_ptr<MPSSEDevice> Open(ChipFamily Family = ChipFamily::FT232H)
    {
        return std::make_unique<MPSSEDevice>(std::make_unique<FakeTransport>(Record), Family);
    }

    /// The calls since the device was opened.
    Lines CallsSinceOpening() const { return {Record.Calls.begin() + 2, Record.Calls.end()}; }

    TransportRecord Record;
};

TEST_F(DeviceCommands, LooksForTheEngineBeforeAnythingElse)
{
    const auto Opened = Open();
    EXPECT_EQ(Record.Calls, (Lines{"purge", "AA 87 <2"}));
}

TEST_F(DeviceCommands, WithoutTheEnginesAnswerThereIsNoDevice)
{
    const Failure NoEngine =
        Raised(errPellumo::errNoEngine, "no MPSSE engine answers. Unplug the chip, plug it in and open it again");
    for (const auto& Answer : {std::array<std::uint8_t, 2>{0xFA, 0xAB}, {0xAA, 0xFA}, {0x00, 0x00}}) {
        Record.BogusAnswer = Answer;
        EXPECT_EQ(FailureOf([this] { Open(); }), NoEngine);
    }
    for (const errPellumo Silence : {errPellumo::errTimeout, errPellumo::errShortAnswer}) {
        Record.Calls.clear();
        Record.BeforeCall = [Silence](std::size_t CallsBefore) {
            if (CallsBefore == 1) {
                Tarvix::Raise(Silence, "FakeTransport", "silence");
            }
        };
        EXPECT_EQ(FailureOf([this] { Open(); }), NoEngine);
    }
}

TEST_F(DeviceCommands, SetsItsPins)
{
    Open()->ConfigurePins(0x03, 0x0B);
    EXPECT_EQ(CallsSinceOpening()[0], "80 03 0B");
}

TEST_F(DeviceCommands, PlainModeOfHighSpeedChipsSwitchesTheirExtrasOff)
{
    for (const ChipFamily Family : {ChipFamily::FT2232H, ChipFamily::FT4232H, ChipFamily::FT232H}) {
        Record.Calls.clear();
        Open(Family)->SetOption(0);
        EXPECT_EQ(CallsSinceOpening()[0], "8A 97 8D 85");
    }
}

TEST_F(DeviceCommands, PlainModeOfTheFullSpeedChipKeepsToTheCommandsThatItHas)
{
    Open(ChipFamily::FT2232D)->SetOption(0);
    EXPECT_EQ(CallsSinceOpening()[0], "85");
}

TEST_F(DeviceCommands, SetsItsDivisorLowByteFirst)
{
    const auto Opened = Open();
    for (const std::int32_t Divisor : {0, 0x00C2, 0x1234, 65535}) {
        Opened->SetClockDivisor(Divisor);
    }
    EXPECT_EQ(CallsSinceOpening(), (Lines{"86 00 00", "86 C2 00", "86 34 12", "86 FF FF"}));
}

TEST_F(DeviceCommands, ComputesTheClockOfItsFamily)
{
    const auto Fast = Open(ChipFamily::FT232H);
    EXPECT_EQ(Fast->DivisorForFrequency(153600.0), 194);
    EXPECT_EQ(Fast->FrequencyForDivisor(194), 30e6 / 195);
    const auto Slow = Open(ChipFamily::FT2232D);
    EXPECT_EQ(Slow->DivisorForFrequency(153600.0), 38);
    EXPECT_EQ(Slow->FrequencyForDivisor(38), 6e6 / 39);
}

struct ModeCase {
    std::int32_t LSBFirst;
    std::int32_t WriteEdge;
    const char* Sent;
    const char* Exchanged;
};

TEST_F(DeviceCommands, ChoosesTheCommandByBitOrderAndEdge)
{
    for (const auto& [LSBFirst, WriteEdge, Sent, Exchanged] :
         {ModeCase{1, 0, "18 01 00 0F F1", "3C 01 00 0F F1 87 <2"},
          ModeCase{1, 1, "19 01 00 0F F1", "39 01 00 0F F1 87 <2"},
          ModeCase{0, 0, "10 01 00 0F F1", "34 01 00 0F F1 87 <2"},
          ModeCase{0, 1, "11 01 00 0F F1", "31 01 00 0F F1 87 <2"}}) {
        Record.Calls.clear();
        const auto Opened = Open();
        Bytes Samples = {0x0F, 0xF1, 0x77};
        Opened->SendSamples(Samples, 2, LSBFirst, WriteEdge);
        Opened->ExchangeSamples(Samples, 2, LSBFirst, WriteEdge, 0);
        EXPECT_EQ(CallsSinceOpening(), (Lines{Sent, Exchanged}));
    }
}

TEST_F(DeviceCommands, PutsTheAnswerInThePlaceOfTheSamplesAndTouchesNoMore)
{
    const auto Opened = Open();
    Bytes Samples = {0x0F, 0xF1, 0x77};
    Opened->ExchangeSamples(Samples, 2, 1, 0, 0);
    EXPECT_EQ(Samples, (Bytes{0xF0, 0x0E, 0x77}));
}

TEST_F(DeviceCommands, SendsNothingForNothing)
{
    const auto Opened = Open();
    Bytes Samples = {0x55};
    Opened->SendSamples({}, 0, 1, 0);
    Opened->ExchangeSamples(Samples, 0, 1, 0, 0);
    EXPECT_EQ(CallsSinceOpening(), Lines{});
    EXPECT_EQ(Samples, Bytes{0x55});
}

struct LengthCase {
    std::size_t Count;
    std::vector<std::size_t> Pieces;
};

class LongStream : public DeviceCommands, public testing::WithParamInterface<LengthCase> {};
INSTANTIATE_TEST_SUITE_P(Lengths, LongStream,
                         testing::Values(LengthCase{65535, {65535}}, LengthCase{65536, {65536}},
                                         LengthCase{65537, {65536, 1}}, LengthCase{131073, {65536, 65536, 1}}));

TEST_P(LongStream, GoesInCommandsOfAtMost65536Bytes)
{
    const auto& [Count, Pieces] = GetParam();
    Bytes Samples(Count);
    for (std::size_t i = 0; i < Count; ++i) {
        Samples[i] = static_cast<std::uint8_t>(i % 251);
    }
    const Bytes Sent = Samples;
    for (const bool Exchange : {false, true}) {
        const auto Opened = Open();
        Record.Transfers.clear();
        if (Exchange) {
            Opened->ExchangeSamples(Samples, static_cast<std::int32_t>(Count), 1, 0, 0);
        } else {
            Opened->SendSamples(Samples, static_cast<std::int32_t>(Count), 1, 0);
        }
        ASSERT_EQ(Record.Transfers.size(), Pieces.size());
        auto Next = Sent.begin();
        for (std::size_t i = 0; i < Pieces.size(); ++i) {
            const std::size_t Last = Pieces[i] - 1;
            Bytes Expected = {Exchange ? std::uint8_t{0x3C} : std::uint8_t{0x18},
                              static_cast<std::uint8_t>(Last & 0xFF), static_cast<std::uint8_t>(Last >> 8)};
            Expected.insert(Expected.end(), Next, Next + static_cast<std::ptrdiff_t>(Pieces[i]));
            Next += static_cast<std::ptrdiff_t>(Pieces[i]);
            if (Exchange) {
                Expected.push_back(0x87);
            }
            ASSERT_TRUE(Record.Transfers[i].Out == Expected) << "piece " << i;
            ASSERT_EQ(Record.Transfers[i].In, Exchange ? Pieces[i] : 0);
        }
        ASSERT_TRUE(!Exchange ||
                    std::equal(Samples.begin(), Samples.end(), Sent.begin(),
                               [](std::uint8_t Read, std::uint8_t Driven) { return Read + Driven == 0xFF; }));
    }
}

TEST_F(DeviceCommands, RefusesWhatItCannotDoBeforeAnythingIsSent)
{
    const auto Opened = Open();
    MPSSEDevice& Device = *Opened;
    Bytes Samples(4);
    const auto Send = [&](std::int32_t ByteCount, std::int32_t LSBFirst, std::int32_t WriteEdge) {
        return FailureOf([&] { Device.SendSamples(Samples, ByteCount, LSBFirst, WriteEdge); });
    };
    const auto Exchange = [&](std::int32_t ByteCount, std::int32_t LSBFirst, std::int32_t WriteEdge,
                              std::int32_t ReadEdge) {
        return FailureOf([&] { Device.ExchangeSamples(Samples, ByteCount, LSBFirst, WriteEdge, ReadEdge); });
    };
    const Failure Order =
        Raised(errPellumo::errUnsupported, "LSBFirst must be 1 (bit 0 of a byte goes first) or 0 (bit 7)");
    const Failure Edge = Raised(errPellumo::errUnsupported,
                                "WriteEdge must be 0 (samples are put out on the rising edge) or 1 (falling edge)");
    const Failure Negative = Raised(errGeneral::errInvalidArgument, "the number of bytes is negative");
    const Failure Beyond = Raised(errGeneral::errIndexOutOfRange, "there are fewer samples than bytes to clock");

    EXPECT_EQ(Send(4, 2, 0), Order);
    EXPECT_EQ(Send(4, -1, 0), Order);
    EXPECT_EQ(Send(4, 1, 2), Edge);
    EXPECT_EQ(Send(4, 1, -1), Edge);
    EXPECT_EQ(Send(-1, 1, 0), Negative);
    EXPECT_EQ(Send(5, 1, 0), Beyond);
    EXPECT_EQ(Exchange(4, 2, 0, 0), Order);
    EXPECT_EQ(Exchange(4, 1, 2, 0), Edge);
    EXPECT_EQ(Exchange(4, 1, 0, 1),
              Raised(errPellumo::errUnsupported,
                     "ReadEdge must be 0: a sample is read on the edge after the one that put it out"));
    EXPECT_EQ(Exchange(-1, 1, 0, 0), Negative);
    EXPECT_EQ(Exchange(5, 1, 0, 0), Beyond);
    EXPECT_EQ(FailureOf([&] { Device.SetOption(1); }),
              Raised(errPellumo::errUnsupported, "the option must be 0, the plain mode"));
    EXPECT_EQ(FailureOf([&] { Device.SetClockDivisor(-1); }),
              Raised(errPellumo::errDivisor, "the divisor -1 is not from 0 to 65535"));
    EXPECT_EQ(FailureOf([&] { Device.SetClockDivisor(65536); }),
              Raised(errPellumo::errDivisor, "the divisor 65536 is not from 0 to 65535"));
    EXPECT_EQ(FailureOf([&] { Device.FrequencyForDivisor(65536); }),
              Raised(errPellumo::errDivisor, "the divisor 65536 is not from 0 to 65535"));
    EXPECT_EQ(
        FailureOf([&] { Device.DivisorForFrequency(100.5); }),
        Raised(errPellumo::errFrequency, "no divisor gives a sample clock of 100.5 Hz; it can be 457.8 Hz to 30 MHz"));
    EXPECT_EQ(CallsSinceOpening(), Lines{});
    EXPECT_EQ(FailureOf([&] { Open(ChipFamily::FT2232D)->DivisorForFrequency(-8.0); }),
              Raised(errPellumo::errFrequency, "no divisor gives a sample clock of -8 Hz; it can be 91.6 Hz to 6 MHz"));
}

TEST_F(DeviceCommands, CloseLeavesTheLineRecessiveAfterAllThatWasQueued)
{
    const auto Opened = Open();
    Opened->ConfigurePins(0x21, 0x2B);
    Opened->Close();
    Opened->Close();
    EXPECT_EQ(CallsSinceOpening(), (Lines{"80 21 2B", "80 23 2B 81 87 <1", "close"}));
}

TEST_F(DeviceCommands, DestructionClosesOnce)
{
    Open();
    EXPECT_EQ(CallsSinceOpening(), (Lines{"80 02 00 81 87 <1", "close"}));
    Record.Calls.clear();
    Open()->Close();
    EXPECT_EQ(CallsSinceOpening(), (Lines{"80 02 00 81 87 <1", "close"}));
}

TEST_F(DeviceCommands, ClosedDevicesSaySo)
{
    const auto Opened = Open();
    MPSSEDevice& Device = *Opened;
    Device.Close();
    const std::size_t CallsBefore = Record.Calls.size();
    Bytes Samples(1);
    const std::vector<std::function<void()>> Operations = {
        [&] { Device.ConfigurePins(3, 11); },
        [&] { Device.SetOption(0); },
        [&] { Device.DivisorForFrequency(153600.0); },
        [&] { Device.SetClockDivisor(0); },
        [&] { Device.FrequencyForDivisor(0); },
        [&] { Device.SendSamples(Samples, 0, 1, 0); },
        [&] { Device.ExchangeSamples(Samples, 0, 1, 0, 0); },
    };
    for (const auto& Operation : Operations) {
        EXPECT_EQ(FailureOf(Operation),
                  Raised(errPellumo::errClosed, "the device has been closed. Open it again to go on"));
    }
    EXPECT_EQ(Record.Calls.size(), CallsBefore);
}

} // namespace
} // namespace Pellumo
