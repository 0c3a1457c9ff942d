#include "pellumo/simulation/ExampleBus.h"
#include "tests/pellumo/simulation/Exchanges.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Pellumo::Testing {

namespace {

BusDescription DoorBus()
{
    return {.Slaves = {Door()}};
}

/// Frames and pauses of every kind, among them frames that break off in the middle.
CommanderStream MixedTraffic(Tarvix::Testing::Random& Random)
{
    CommanderStream Stream;
    for (int k = 0; k < 60; ++k) {
        switch (Random.Between(0, 4)) {
        case 0: Stream.Frame(Protected20, {Random.Byte(), 0x02, Random.Byte()}); break;
        case 1: Stream.Frame(Protected20, {0x01, 0x02, 0xDC}).Request(Protected21); break;
        case 2: Stream.Request(Protected3D); break;
        case 3: Stream.Header(Protected3D).Idle(static_cast<std::size_t>(Random.Between(0, 40))); break;
        default: Stream.Level(static_cast<std::size_t>(Random.Between(1, 200)), Random.Between(0, 1)); break;
        }
    }
    return Stream;
}

/// A bus on which everything is wrong that can be.
BusDescription BadBus(std::uint64_t Seed)
{
    BusDescription Bus = ExampleBus();
    Bus.Seed = Seed;
    using Effect = WireFault::Effect;
    Bus.WireFaults = {
        {.Kind = Effect::Noise, .Place = {.Sample = 3000}, .Probability = 0.001},
        {.Kind = Effect::Noise, .Place = {.Frame = 0x20}, .Length = 60, .Probability = 0.2},
        {.Kind = Effect::Dominant, .Place = {.Frame = 0x3D, .Byte = 1, .Sample = 13}, .Length = 2},
        {.Kind = Effect::Recessive, .Place = {.Sample = 9001}, .Length = 333},
        {.Kind = Effect::NoEcho, .Place = {.Frame = 0x21, .Occurrence = 2}, .Length = 77},
    };
    Bus.AnswerFaults = {{.Kind = AnswerFault::Effect::Long, .Frame = 0x3D, .Occurrence = 3, .Bytes = 4}};
    Bus.Collisions = {{.Frame = 0x20, .ResponseSpace = 0.37}};
    return Bus;
}

/// What is read back of `Stream` when it is clocked in calls of so many bytes.
template <typename Length>
Bytes ReadInPieces(const BusDescription& Description, const Bytes& Stream, Length&& NextLength)
{
    SimulatedBus Bus(Description);
    Bytes In(Stream.size());
    for (std::size_t First = 0; First < Stream.size();) {
        const std::size_t Count = std::min(static_cast<std::size_t>(NextLength()), Stream.size() - First);
        Bus.Clock(std::span(Stream).subspan(First, Count), std::span(In).subspan(First, Count), Ticks19200);
        First += Count;
    }
    return In;
}

} // namespace

TEST(SimulatedBus, ReadsBackWhatTheCommanderDrivesWhenNobodyElseDoes)
{
    Tarvix::Testing::Random Random;
    Bytes Out(1000);
    std::generate(Out.begin(), Out.end(), [&Random] { return Random.Byte(); });
    for (const Tick SampleTicks : {1, 2, 3, 390}) {
        SimulatedBus Bus(BusDescription{});
        Bytes In(Out.size());
        Bus.Clock(Out, In, SampleTicks);
        EXPECT_EQ(In, Out) << SampleTicks;
    }
}

TEST(SimulatedBus, IsTheSameHoweverAStreamIsCutIntoCalls)
{
    Tarvix::Testing::Random Random;
    for (const BusDescription& Description : {ExampleBus(), BadBus(1), BadBus(2)}) {
        const Bytes Stream = MixedTraffic(Random).Data();
        const Bytes Whole = ReadInPieces(Description, Stream, [&Stream] { return Stream.size(); });
        EXPECT_NE(Whole, Stream) << "somebody must have answered";
        EXPECT_EQ(ReadInPieces(Description, Stream, [] { return 1U; }), Whole);
        EXPECT_EQ(ReadInPieces(Description, Stream, [&Random] { return Random.Between(1, 200); }), Whole);
    }
}

TEST(SimulatedBus, IsTheSameWhetherOrNotItIsReadAndWhenNothingIsClocked)
{
    SimulatedBus Bus(DoorBus());
    Bus.Clock({}, {}, Ticks19200);
    Bus.Clock(CommanderStream().Frame(Protected20, {0x01, 0x02, 0xDC}).Data(), {}, Ticks19200);
    Bus.Clock(CommanderStream().Break().Data(), {}, Ticks19200);
    EXPECT_EQ(Read(Bus, Protected21), (Decoded{{0x01, 0x02, 0x9B}}));
}

TEST(SimulatedBus, AllocatesNothingHoweverLongItRuns)
{
    Tarvix::Testing::Random Random;
    for (const BusDescription& Description : {ExampleBus(), BadBus(1)}) {
        SimulatedBus Bus(Description);
        const Bytes Stream = MixedTraffic(Random).Data();
        Bytes In(Stream.size());
        Bus.Clock(Stream, In, Ticks19200); // buffers grow to what answers need
        const std::size_t Before = Tarvix::Testing::Allocations();
        for (int k = 0; k < 10; ++k) {
            Bus.Clock(Stream, In, Ticks19200);
        }
        EXPECT_EQ(Tarvix::Testing::Allocations(), Before);
    }
}

TEST(SimulatedBus, ShowsNobodyALevelThatIsHeldBetweenStreams)
{
    SimulatedBus Bus(DoorBus());
    const CommanderStream Request = CommanderStream().Request(Protected3D);
    const auto Half = std::span(Request.Data()).first(30);
    const auto Rest = std::span(Request.Data()).subspan(30);
    Bytes In(Request.Data().size());
    Bus.Clock(Half, std::span(In).first(30), Ticks19200);
    Bus.SetLevel(0);
    Bus.SetLevel(1);
    Bus.Clock(Rest, std::span(In).subspan(30), Ticks19200);
    EXPECT_EQ(Decode(In, CommanderStream::HeaderSamples), DoorAnswer);
}

TEST(SimulatedBus, LetsTheDominantBitWinBetweenTwoNodes)
{
    // 12 and 10 differ in bit 1 and 12 and 13 in bit 0: the node that sends 1 there finds 0 on the bus and falls
    // silent.
    for (const auto& [Intruder, Winner] : {std::pair<Bytes, Bytes>{{0x13, 0x00}, DoorAnswer.Received},
                                           {{0x10, 0xFF}, {0x10, 0xFF, 0x72}},
                                           {{0x12, 0x34}, DoorAnswer.Received}}) {
        BusDescription Description = DoorBus();
        Description.Collisions = {{.Frame = 0x3D, .Data = Intruder}};
        SimulatedBus Bus(Description);
        EXPECT_EQ(Read(Bus, Protected3D), Decoded{Winner}) << int{Intruder[0]};
    }
}

TEST(SimulatedBus, GarblesBytesThatMeetAtDifferentTimes)
{
    BusDescription Description = DoorBus();
    Description.Collisions = {{.Frame = 0x3D, .Data = {0x00, 0x00}, .ResponseSpace = 4.5}};
    SimulatedBus Bus(Description);
    // 12 is sent from bit 1 on; the other node's start bit pulls its bits 3, 4 and so on down. The door notices at its
    // recessive bit 4 and leaves the bus to the other one, whose 00 00 goes on to bit 4.5 + 30.
    const Bytes In = Exchange(Bus, CommanderStream().Request(Protected3D));
    EXPECT_NE(Decode(In, CommanderStream::HeaderSamples), DoorAnswer);
    EXPECT_EQ(Decode(In, CommanderStream::HeaderSamples + 112), (Decoded{{0x00, 0x82}}));
}

TEST(SimulatedBus, LetsANodeDominateTheCommander)
{
    BusDescription Description;
    Description.Collisions = {{.Frame = 0x20, .Data = {0xF0}, .ResponseSpace = 0.0}};
    SimulatedBus Bus(Description);
    const Bytes In = Exchange(Bus, CommanderStream().Frame(Protected20, {0x3C, 0xFF}));
    // 3C and F0: the node pulls bits 2 and 3 down and gives way in bit 6, which the commander pulls down.
    EXPECT_EQ(Decode(In, CommanderStream::HeaderSamples), (Decoded{{0x30, 0xFF}}));
}

} // namespace Pellumo::Testing
