// Moving commands and answers, and everything that may go wrong meanwhile.

#include "pellumo/emulation/EmulatedTransport.h"
#include "pellumo/mpsse/Commands.h"
#include "pellumo/mpsse/MPSSEDevice.h"
#include "tests/pellumo/usb/USBTest.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

namespace Pellumo::Testing {
namespace {

using namespace std::chrono_literals;

// Clocks `Samples` out and in, and sends the answer at once.
Bytes ExchangeCommand(const Bytes& Samples)
{
    const std::size_t CountLessOne = Samples.size() - 1;
    Bytes Stream(Samples.size() + 4, Commands::SendImmediate);
    Stream[0] = 0x3C;
    Stream[1] = static_cast<std::uint8_t>(CountLessOne & 0xFF);
    Stream[2] = static_cast<std::uint8_t>(CountLessOne >> 8);
    std::copy(Samples.begin(), Samples.end(), Stream.begin() + 3);
    return Stream;
}

class USBFamilies : public USBTest, public testing::WithParamInterface<ChipFamily> {
protected:
    static void Configure(Tarvix::FTDIMPSSE& Device, std::int32_t Divisor)
    {
        Device.ConfigurePins(0x03, 0x0B);
        Device.SetOption(0);
        Device.SetClockDivisor(Divisor);
    }

    static MPSSEDevice Open()
    {
        auto Opened = OpenUSBTransport({});
        return {std::move(Opened.Pipe), Opened.Family};
    }
};

INSTANTIATE_TEST_SUITE_P(All, USBFamilies,
                         testing::Values(ChipFamily::FT2232D, ChipFamily::FT2232H, ChipFamily::FT4232H,
                                         ChipFamily::FT232H),
                         [](const auto& Info) { return FactsOf(Info.param).Name; });

// The streams cross every boundary: a packet, a buffer of the chip, a transfer, a command.
TEST_P(USBFamilies, GiveTheSameSamplesAsTheDirectRoad)
{
    Usb.Plug(GetParam(), "S", Wires);
    MPSSEDevice Device = Open();
    EchoPins DirectWires;
    MPSSEDevice Direct(
        std::make_unique<EmulatedTransport>(std::make_shared<EmulatedChip>(GetParam(), DirectWires), "sim:"),
        GetParam());
    Wires.PulledLow = Pattern(300000);
    DirectWires.PulledLow = Wires.PulledLow;
    for (Tarvix::FTDIMPSSE* const Each :
         {static_cast<Tarvix::FTDIMPSSE*>(&Device), static_cast<Tarvix::FTDIMPSSE*>(&Direct)}) {
        Configure(*Each, 2);
    }
    for (const std::size_t Count : {1U, 61U, 62U, 63U, 510U, 511U, 4096U, 65536U, 70000U}) {
        const auto Length = static_cast<std::int32_t>(Count);
        Bytes Samples = Pattern(Count);
        Bytes DirectSamples = Samples;
        Device.ExchangeSamples(Samples, Length, 1, 0, 0);
        Direct.ExchangeSamples(DirectSamples, Length, 1, 0, 0);
        ASSERT_EQ(Samples, DirectSamples) << Count;
        Device.SendSamples(Pattern(Count), Length, 1, 0);
        Direct.SendSamples(Pattern(Count), Length, 1, 0);
    }
    Device.Close();
    Direct.Close();
    EXPECT_EQ(Wires.Stream(), DirectWires.Stream());
}

// 174 bytes are the longest frame; at 1000 Bd they are 174 ms on the wire.
TEST_P(USBFamilies, MakeOneWriteAndOneReadOfAFrame)
{
    FakeUSBDevice& Chip = Usb.Plug(GetParam(), "S", Wires);
    MPSSEDevice Device = Open();
    for (const double Baud : {1000.0, 19200.0}) {
        Configure(Device, Device.DivisorForFrequency(8 * Baud));
        Bytes Samples = Pattern(174);
        const std::size_t Writes = Chip.Writes;
        const std::size_t Reads = Chip.Reads;

        Device.ExchangeSamples(Samples, 174, 1, 0, 0);
        EXPECT_EQ(Samples, Pattern(174));
        EXPECT_EQ(Chip.Writes - Writes, 1U) << Baud;
        EXPECT_EQ(Chip.Reads - Reads, 1U) << Baud;

        Device.SendSamples(Samples, 174, 1, 0);
        EXPECT_EQ(Chip.Writes - Writes, 2U) << Baud;
        EXPECT_EQ(Chip.Reads - Reads, 1U) << Baud;
    }
}

class USBTransfer : public USBTest {
protected:
    USBTransfer()
    {
        Transfer({0x8A, 0x80, 0x03, 0x0B, 0x86, 194, 0}, 0); // 60 MHz base clock, pins, 153,846 samples a second
    }

    Bytes Transfer(const Bytes& Out, std::size_t Answers, std::chrono::nanoseconds Limit = 10s)
    {
        Bytes In(Answers);
        Pipe->Transfer(Out, In, Limit);
        return In;
    }

    FakeUSBDevice& Chip = Usb.Plug(ChipFamily::FT232H, "S", Wires);
    std::unique_ptr<Pellumo::Transport> Pipe = OpenUSBTransport({}).Pipe;
};

TEST_F(USBTransfer, SkipsPacketsOfNothingButStatus)
{
    Chip.Port().StatusPackets = 2;
    EXPECT_EQ(Transfer(ExchangeCommand(Pattern(700)), 700), Pattern(700));
    EXPECT_EQ(Chip.Reads, 3U);

    // A frame of 9 ms with a latency timer of 1 ms: a read every millisecond, and the flushed rest.
    Chip.Port().LatencyTimer(1ms);
    Chip.Reads = 0;
    EXPECT_EQ(Transfer(ExchangeCommand(Pattern(174)), 174), Pattern(174));
    EXPECT_EQ(Chip.Reads, 10U);
}

TEST_F(USBTransfer, OutlastsTheLatencyTimer)
{
    Transfer({0x86, 0xFF, 0xFF}, 0); // 17.5 ms a byte
    EXPECT_EQ(Transfer(ExchangeCommand(Pattern(100)), 100), Pattern(100));
    EXPECT_EQ(Chip.Reads, 7U); // 1.75 s in parts of 255 ms
}

TEST_F(USBTransfer, KeepsEachTransferSmall)
{
    Transfer({0x86, 0, 0}, 0);
    Bytes Stream;
    for (int k = 0; k < 5; ++k) {
        const Bytes Command = ExchangeCommand(Pattern(60000));
        Stream.insert(Stream.end(), Command.begin(), Command.end());
    }
    Bytes Expected;
    for (int k = 0; k < 5; ++k) {
        const Bytes Answer = Pattern(60000);
        Expected.insert(Expected.end(), Answer.begin(), Answer.end());
    }
    EXPECT_EQ(Transfer(Stream, Expected.size()), Expected);
    EXPECT_EQ(Chip.LargestTransfer, 65536U);
}

struct SurplusCase {
    std::size_t Left;  // of an earlier answer, in the chip
    std::size_t Asked; // for the answer that comes next
};

class USBSurplus : public USBTransfer, public testing::WithParamInterface<SurplusCase> {};
INSTANTIATE_TEST_SUITE_P(OfOnePacketAndOfTwo, USBSurplus, testing::Values(SurplusCase{1, 2}, SurplusCase{300, 700}));

TEST_P(USBSurplus, IsAnErrorAndGoneAfterARestart)
{
    const auto [Left, Asked] = GetParam();
    Transfer(ExchangeCommand(Bytes(Left, 0x0F)), 0);
    EXPECT_EQ(FailureOf([&, Wanted = Asked] { Transfer(ExchangeCommand(Pattern(Wanted)), Wanted); }),
              Error(errPellumo::errUSB, "USBTransport",
                    "ftdi://ftdi:232h:S/1: the transfer failed: Overflow (LIBUSB_ERROR_OVERFLOW). Check the cable and "
                    "the hub and try again"));
    Pipe->Restart();
    EXPECT_EQ(Transfer({0xAA, 0x87}, 2), (Bytes{0xFA, 0xAA}));
}

TEST_F(USBTransfer, PurgeThrowsOldAnswersAway)
{
    Transfer({0xAA, 0xAB, 0x87}, 0);
    Chip.Requests.clear();
    Pipe->Purge();
    EXPECT_EQ(Chip.Requests, (std::vector<ChipRequest>{{0x00, 1, 1}, {0x00, 2, 1}}));
    EXPECT_EQ(Transfer({0xAD, 0x87}, 2), (Bytes{0xFA, 0xAD}));
}

TEST_F(USBTransfer, EndsAtItsLimitAndTellsHowFarItGot)
{
    const Ticks Begin = Usb.Now();
    EXPECT_EQ(
        FailureOf([&] {
            Transfer({0x80, 0x03, 0x0B}, 4, 1500us);
        }),
        Error(errPellumo::errTimeout, "USBTransport",
              "ftdi://ftdi:232h:S/1: the chip did not answer within 2 ms. Plug the chip in again and open it again"));
    EXPECT_EQ(Usb.Now() - Begin, Ticks(2ms));

    // A chip that sends nothing but status for ever does not keep the transfer alive.
    Chip.Port().LatencyTimer(1ms);
    Chip.Reads = 0;
    EXPECT_EQ(FailureOf([&] { Transfer({}, 4, 100ms); }).Number, static_cast<std::uint32_t>(errPellumo::errTimeout));
    EXPECT_EQ(Chip.Reads, 100U);
    EXPECT_EQ(FailureOf([&] { Transfer({}, 4, 0ms); }).Number, static_cast<std::uint32_t>(errPellumo::errTimeout));

    Chip.Port().AnswersToLose = 3;
    EXPECT_EQ(FailureOf([&] { Transfer(ExchangeCommand(Pattern(100)), 100, 50ms); }),
              Error(errPellumo::errShortAnswer, "USBTransport",
                    "ftdi://ftdi:232h:S/1: the chip answered with 97 of 100 bytes within 50 ms. Open it again; if it "
                    "happens again, check the cable and the hub"));

    // 2004 bytes of command; after 40 ms (769 samples bytes) the chip has room for another 1024.
    EXPECT_EQ(
        FailureOf([&] { Transfer(ExchangeCommand(Pattern(2000)), 0, 40ms); }),
        Error(errPellumo::errTimeout, "USBTransport",
              "ftdi://ftdi:232h:S/1: the chip did not take the last 207 command bytes within 40 ms. Plug the chip "
              "in again and open it again"));
}

TEST_F(USBTransfer, TellsWhatWasNotTakenAlsoWhenTheAnswerIsComplete)
{
    Bytes Stream = ExchangeCommand(Pattern(2000));
    Stream[0] = 0x18; // nothing is read
    Stream.insert(Stream.begin(), {0xAA, 0x87});
    EXPECT_EQ(
        FailureOf([&] { Transfer(Stream, 2, 40ms); }),
        Error(errPellumo::errTimeout, "USBTransport",
              "ftdi://ftdi:232h:S/1: the chip did not take the last 207 command bytes within 40 ms. Plug the chip "
              "in again and open it again"));
}

// What is flushed may have left in full packets already; then no packet follows to end a longer read.
TEST_F(USBTransfer, LastsNoLongerThanTheWireWhenTheAnswerFillsItsPackets)
{
    for (const std::size_t Count : {510U, 1020U}) {
        const Ticks Begin = Usb.Now();
        EXPECT_EQ(Transfer(ExchangeCommand(Pattern(Count)), Count), Pattern(Count));
        EXPECT_EQ((Usb.Now() - Begin).count(), static_cast<std::int64_t>(Count) * 8 * 2 * 195);
    }
}

TEST_F(USBTransfer, GoesOnAfterAStall)
{
    const Ticks Begin = Usb.Now();
    Chip.Faults[Chip.Transfers + 1] = Fault::Stall; // the write; the read is in flight by then
    EXPECT_EQ(FailureOf([&] {
                  Transfer({0xAA, 0x87}, 2);
              }),
              Error(errPellumo::errStalled, "USBTransport",
                    "ftdi://ftdi:232h:S/1: the transfer failed: the chip refused it. Plug it in again and try again"));
    EXPECT_EQ(Chip.ClearedHalts, (std::vector<unsigned>{0x02, 0x81}));
    EXPECT_EQ(Transfer({0xAA, 0x87}, 2), (Bytes{0xFA, 0xAA}));

    Chip.Faults[Chip.Transfers] = Fault::Stall; // the read; the write is too long for the chip's buffer
    EXPECT_EQ(FailureOf([&] { Transfer(ExchangeCommand(Pattern(2000)), 2000); }).Number,
              static_cast<std::uint32_t>(errPellumo::errStalled));
    EXPECT_EQ(Usb.Now(), Begin); // nobody waits for the other direction
}

TEST_F(USBTransfer, IsRefusedAfterClose)
{
    Pipe->Close();
    const Failure Closed =
        Error(errPellumo::errClosed, "USBTransport", "ftdi://ftdi:232h:S/1: the chip has been closed. Open it again");
    EXPECT_EQ(FailureOf([&] { Transfer({0x87}, 0); }), Closed);
    EXPECT_EQ(FailureOf([&] { Pipe->Purge(); }), Closed);
    EXPECT_EQ(FailureOf([&] { Pipe->Restart(); }), Closed);
    EXPECT_EQ(Pipe->Name(), "ftdi://ftdi:232h:S/1");
}

TEST_F(USBTransfer, NoticesThatTheChipIsPulledOutBetweenTransfers)
{
    Chip.Unplug();
    EXPECT_EQ(FailureOf([&] {
                  Transfer({0x80, 0x03, 0x0B}, 0);
              }),
              Error(errPellumo::errUnplugged, "USBTransport",
                    "ftdi://ftdi:232h:S/1: the transfer failed: the chip is gone. Plug it in and open it again"));
    EXPECT_EQ(FailureOf([&] { Pipe->Purge(); }).Number, static_cast<std::uint32_t>(errPellumo::errUnplugged));
}

} // namespace
} // namespace Pellumo::Testing
