#include "pellumo/recording/FrameDecoder.h"

#include "pellumo/recording/Recorder.h"
#include "tests/pellumo/recording/StreamRecord.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeDevice.h"
#include "tests/support/PlainBuffer.h"
#include "tests/support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Pellumo::Testing {

using Tarvix::Testing::FailureOf;
using Tarvix::Testing::FakeDevice;
using Tarvix::Testing::PlainEngine;
using Tarvix::Testing::Random;

namespace {

constexpr std::int64_t Header = CommanderStream::HeaderSamples;

/// Random levels, from single samples to long silence.
Bytes Noise(Random& Numbers, std::size_t Count)
{
    CommanderStream Stream;
    for (int Level = 1; Stream.Samples() < 8 * Count; Level = 1 - Level) {
        const std::int32_t Longest = Numbers.Between(0, 2) == 0 ? 200 : 20;
        Stream.Level(static_cast<std::size_t>(Numbers.Between(1, Longest)), Level);
    }
    Bytes Samples = Stream.Data();
    Samples.resize(Count);
    return Samples;
}

/// A slave that answers with bytes at any time, now and then over the end of the stream.
Bytes Chatter(Random& Numbers, std::size_t Count)
{
    CommanderStream Stream;
    Stream.Header(0x7D);
    for (std::int32_t i = Numbers.Between(0, 14); i > 0; --i) {
        Stream.Level(static_cast<std::size_t>(Numbers.Between(0, 100)), 1).Byte(Numbers.Byte());
    }
    Bytes Samples = Stream.Data();
    Samples.resize(Count, 0xFF);
    return Samples;
}

} // namespace

TEST(FrameDecoder, TellsKindsFromWhatWasDriven)
{
    const Bytes Silent(200, 0xFF);
    struct Case {
        const char* What;
        Bytes Tx;
        bool ReadBack;
        BusEventKind Kind;
        std::int64_t BreakSamples;
    };
    const Case Cases[] = {
        {"nothing", {}, false, BusEventKind::Wait, 0},
        {"recessive", {0xFF, 0xFF}, false, BusEventKind::Wait, 0},
        {"break and delimiter", CommanderStream().Break(100).Data(), false, BusEventKind::Break, 100},
        {"break without an end", {0x00, 0x00}, false, BusEventKind::Break, 16},
        {"one dominant sample", {0xFE}, false, BusEventKind::Break, 1},
        {"dominant, but not at once", {0xFF, 0x00}, false, BusEventKind::Other, 0},
        {"more than a break", CommanderStream().Break().Byte(0x55).Data(), false, BusEventKind::Other, 0},
        {"an exchange of nothing", {}, true, BusEventKind::Other, 0},
        {"a break exchanged", CommanderStream().Break().Data(), true, BusEventKind::Other, 0},
        {"header and silence", CommanderStream().Request(0x7D).Data(), true, BusEventKind::Read, 104},
        {"header alone", CommanderStream().Header(0x7D).Data(), true, BusEventKind::Read, 104},
        {"header one bit short", CommanderStream().Break().Byte(0x55).Level(8, 0).Level(64, 1).Data(), true,
         BusEventKind::Other, 0},
        {"no break", CommanderStream().Idle(1).Byte(0x55).Byte(0x7D).Idle(140).Data(), true, BusEventKind::Read, 0},
        {"delimiter too long", CommanderStream().Break().Idle(1).Byte(0x55).Byte(0x7D).Idle(140).Data(), true,
         BusEventKind::Other, 0},
        {"header and bytes", CommanderStream().Header(0x20).Byte(1).Byte(0xDE).Data(), true, BusEventKind::Write, 104},
        {"a pause between the bytes", CommanderStream().Header(0x20).Byte(1).Idle(1).Byte(0xDE).Data(), true,
         BusEventKind::Other, 0},
        {"a bit that is not whole", CommanderStream().Header(0x20).Level(15, 0).Level(65, 1).Data(), true,
         BusEventKind::Other, 0},
        {"a byte cut off", CommanderStream().Header(0x20).Byte(1).Level(40, 0).Data(), true, BusEventKind::Other, 0},
    };
    for (const Case& c : Cases) {
        const auto Event = EventOf(c.ReadBack ? Exchanged(c.Tx, c.Tx) : Sent(c.Tx));
        EXPECT_EQ(Event.Kind, c.Kind) << c.What;
        EXPECT_EQ(Event.BreakSamples, c.BreakSamples) << c.What;
    }
}

TEST(FrameDecoder, TellsWhatWasSentWhateverTheBreak)
{
    for (const std::size_t Break : {80U, 100U, 103U, 104U, 105U, 208U}) {
        for (std::size_t Length = 2; Length <= 9; ++Length) {
            CommanderStream Stream;
            Stream.Break(Break).Byte(0x54).Byte(0xC1);
            Bytes Data;
            for (std::size_t i = 0; i < Length; ++i) {
                Data.push_back(static_cast<std::uint8_t>(0x81 * i + Break));
                Stream.Byte(Data.back());
            }
            const auto Event = EventOf(Exchanged(Stream.Data(), Stream.Data()));
            EXPECT_EQ(Event.Kind, BusEventKind::Write);
            EXPECT_EQ(Event.BreakSamples, static_cast<std::int64_t>(Break));
            EXPECT_EQ(Event.SyncByte, 0x54);
            EXPECT_EQ(Event.ProtectedIdentifier, 0xC1);
            EXPECT_EQ(Event.SentBytes, Data);
            EXPECT_EQ(Event.ReceivedBytes, Data);
            EXPECT_EQ(Event.ResponseBegin, static_cast<std::int64_t>(Break) + 168);
            EXPECT_EQ(Event.ResponseEnd, static_cast<std::int64_t>(Stream.Samples()));
        }
    }
}

TEST(FrameDecoder, TellsTheBusTimeOfTheStreamsBegin)
{
    const Bytes Tx(4, 0xFF);
    EXPECT_EQ(EventOf({Tx, Tx, false, 1000.0, 2.0, 500}).Seconds, 2.5);
}

TEST(FrameDecoder, ReportsWhereDecodingEnded)
{
    struct Case {
        const char* What;
        std::int64_t First, Count; // dominant after the header
        ResponseFault Fault;
        std::int64_t FaultSample;
    };
    const Case Cases[] = {
        {"silence", 0, 0, ResponseFault::None, 0},
        {"four samples are no start bit", 40, 4, ResponseFault::StartBit, Header + 44},
        {"five are", 40, 5, ResponseFault::None, 0},
        {"a stop bit dominant in its middle", 40, 77, ResponseFault::StopBit, Header + 116},
        {"a stop bit that comes just in time", 40, 76, ResponseFault::None, 0},
        {"the last byte that fits", 1120 - 77, 8, ResponseFault::None, 0},
        {"one sample later", 1120 - 76, 8, ResponseFault::Truncated, Header + 1120},
        {"a short pulse at the very end", 1120 - 4, 4, ResponseFault::Truncated, Header + 1120},
        {"a pulse just before it", 1120 - 9, 4, ResponseFault::StartBit, Header + 1120 - 5},
    };
    const Bytes Tx = CommanderStream().Request(0x7D).Data();
    for (const Case& c : Cases) {
        const auto Rx = CommanderStream()
                            .Header(0x7D)
                            .Level(static_cast<std::size_t>(c.First), 1)
                            .Level(static_cast<std::size_t>(c.Count), 0)
                            .Level(static_cast<std::size_t>(1120 - c.First - c.Count), 1)
                            .Data();
        const auto Event = EventOf(Exchanged(Tx, Rx));
        EXPECT_EQ(Event.Fault, c.Fault) << c.What;
        EXPECT_EQ(Event.FaultSample, c.FaultSample) << c.What;
        EXPECT_EQ(Event.FaultStartEdge, c.Fault == ResponseFault::None ? 0 : Header + c.First) << c.What;
        const bool Whole = c.Count > 0 && c.Fault == ResponseFault::None;
        EXPECT_EQ(Event.Edges, Whole ? std::vector{Header + c.First} : std::vector<std::int64_t>{}) << c.What;
    }
}

TEST(FrameDecoder, ReceivesAsTheEngineDoes)
{
    Random Numbers;
    FakeDevice Device;
    Recorder Recording(Device);
    std::vector<KeptEvent> Events;
    FrameDecoder Decoder([&Events](const BusEvent& Event) { Events.emplace_back(Event); });
    Recording.AddListener(Decoder);
    PlainEngine Engine(Recording);
    int Faults[4] = {};
    for (int i = 0; i < 3000; ++i) {
        Device.Bus = [&](std::span<std::uint8_t> Samples) {
            const Bytes Bus = i % 4 == 0 ? Noise(Numbers, Samples.size()) : Chatter(Numbers, Samples.size());
            std::ranges::copy(Bus, Samples.begin());
        };
        Bytes RxData(20);
        std::int32_t RxDataLen = 0;
        const auto Failure =
            FailureOf([&] { Engine.LINReceive(Numbers.Between(100, 120), 0x55, 0x7D, RxData, RxDataLen); });
        RxData.resize(static_cast<std::size_t>(RxDataLen));

        const KeptEvent& Event = Events.back();
        EXPECT_EQ(Event.ReceivedBytes, RxData);
        const bool Framing = Event.Fault == ResponseFault::StartBit || Event.Fault == ResponseFault::StopBit;
        EXPECT_EQ(Framing, Failure == Tarvix::Testing::Framing);
        EXPECT_EQ(Event.Fault == ResponseFault::Truncated, Failure == Tarvix::Testing::NoMoreData);
        ++Faults[static_cast<int>(Event.Fault)];
    }
    EXPECT_GT(*std::ranges::min_element(Faults), 10) << "every outcome came about";
}

TEST(FrameDecoder, StandsEveryStream)
{
    Random Numbers;
    FrameDecoder Decoder([](const BusEvent& Event) {
        ASSERT_EQ(Event.Received.size(), Event.StartEdges.size());
        EXPECT_TRUE(std::ranges::is_sorted(Event.StartEdges));
        EXPECT_LE(Event.ResponseEnd, Event.Stream.Samples());
        EXPECT_TRUE(Event.StartEdges.empty() || Event.StartEdges.back() + 76 < Event.ResponseEnd);
    });
    for (int i = 0; i < 20000; ++i) {
        const auto Count = static_cast<std::size_t>(Numbers.Between(0, 60));
        Bytes Tx = Numbers.Between(0, 1) == 0 ? Noise(Numbers, Count) : CommanderStream().Header(0x7D).Data();
        for (std::int32_t k = Numbers.Between(0, 3); k > 0 && !Tx.empty(); --k) {
            Tx[Numbers.Next() % Tx.size()] = Numbers.Byte();
        }
        const Bytes Rx = Noise(Numbers, Tx.size());
        Decoder.OnStream(i % 2 == 0 ? Exchanged(Tx, Rx) : Sent(Tx));
    }
}

TEST(FrameDecoder, AllocatesNothingOnceWarm)
{
    std::size_t Seen = 0;
    FrameDecoder Decoder([&Seen](const BusEvent& Event) { Seen += Event.Received.size(); });
    const Bytes Write = CommanderStream().Header(0x20).Byte(1).Byte(2).Byte(3).Data();
    Decoder.OnStream(Exchanged(Write, Write));
    const auto Before = Tarvix::Testing::Allocations();
    Decoder.OnStream(Exchanged(Write, Write));
    EXPECT_EQ(Tarvix::Testing::Allocations(), Before);
    EXPECT_EQ(Seen, 6U);
}

} // namespace Pellumo::Testing
