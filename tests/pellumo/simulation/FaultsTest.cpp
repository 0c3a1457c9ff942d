#include "tests/pellumo/simulation/Exchanges.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <iterator>
#include <numeric>

namespace Pellumo::Testing {

namespace {

using Effect = WireFault::Effect;

constexpr std::size_t Header = CommanderStream::HeaderSamples;

SimulatedBus DoorBusWith(std::vector<WireFault> Faults)
{
    return SimulatedBus({.Slaves = {Door()}, .WireFaults = std::move(Faults)});
}

SimulatedBus DoorBusWith(AnswerFault Fault)
{
    return SimulatedBus({.Slaves = {Door()}, .AnswerFaults = {Fault}});
}

/// The samples that read back otherwise than on a bus without faults.
std::vector<std::size_t> Disturbed(const std::vector<WireFault>& Faults, const CommanderStream& Stream)
{
    SimulatedBus Good = DoorBusWith(std::vector<WireFault>{});
    SimulatedBus Bad = DoorBusWith(Faults);
    const Bytes Expected = Exchange(Good, Stream);
    const Bytes Read = Exchange(Bad, Stream);
    std::vector<std::size_t> Result;
    for (std::size_t k = 0; k < Read.size() * 8; ++k) {
        if (((Expected[k / 8] ^ Read[k / 8]) >> k % 8 & 1) != 0) {
            Result.push_back(k);
        }
    }
    return Result;
}

/// From `First` on, `Count` of them.
std::vector<std::size_t> Samples(std::size_t First, std::size_t Count)
{
    std::vector<std::size_t> Result(Count);
    std::iota(Result.begin(), Result.end(), First);
    return Result;
}

} // namespace

TEST(WireFaults, ActOnExactlyTheirSamples)
{
    const CommanderStream Recessive = CommanderStream().Idle(200);
    const CommanderStream Dominant = CommanderStream().Level(1600, 0);
    struct WireCase {
        const char* What;
        WireFault Fault;
        const CommanderStream& Stream;
        std::vector<std::size_t> Samples;
    };
    const std::vector<WireCase> Cases = {
        {"glitch", {Effect::Dominant, {.Sample = 10}, 3}, Recessive, Samples(10, 3)},
        {"first sample", {Effect::Dominant, {.Sample = 0}, 1}, Recessive, Samples(0, 1)},
        {"last sample", {Effect::Dominant, {.Sample = 1599}, 5}, Recessive, Samples(1599, 1)},
        {"after the last sample", {Effect::Dominant, {.Sample = 1600}, 5}, Recessive, {}},
        {"stuck for good", {Effect::Dominant, {.Sample = 777}}, Recessive, Samples(777, 823)},
        {"recessive", {Effect::Recessive, {.Sample = 801}, 40}, Dominant, Samples(801, 40)},
        {"recessive on a recessive bus", {Effect::Recessive, {.Sample = 801}, 40}, Recessive, {}},
        {"missing echo", {Effect::NoEcho, {.Sample = 5}, 100}, Dominant, Samples(5, 100)},
        {"certain noise", {Effect::Noise, {.Sample = 33}, 70, 1.0}, Dominant, Samples(33, 70)},
        {"no noise", {Effect::Noise, {.Sample = 33}, 70, 0.0}, Dominant, {}},
    };
    for (const WireCase& Case : Cases) {
        EXPECT_EQ(Disturbed({Case.Fault}, Case.Stream), Case.Samples) << Case.What;
    }
}

TEST(WireFaults, LetTheLaterOneHaveTheLastWord)
{
    const CommanderStream Recessive = CommanderStream().Idle(10);
    const WireFault Low{Effect::Dominant, {.Sample = 8}, 16};
    const WireFault High{Effect::Recessive, {.Sample = 10}, 2};
    EXPECT_EQ(Disturbed({High, Low}, Recessive), Samples(8, 16));
    const auto WithGap = Disturbed({Low, High}, Recessive);
    EXPECT_EQ(WithGap.size(), 14U);
}

TEST(WireFaults, FindTheirFrameAndByte)
{
    // The door answers one bit time after the identifier; its first byte is 12, its second 34.
    const CommanderStream Twice = CommanderStream().Request(Protected21).Request(Protected3D).Request(Protected3D);
    const std::size_t First = 2 * Header + 1120;
    const std::size_t Second = 3 * Header + 2240;
    const std::size_t Answer = 8;
    const auto Both = [&](std::size_t Offset) { return std::vector<std::size_t>{First + Offset, Second + Offset}; };
    struct PlaceCase {
        FaultPlace Place;
        std::vector<std::size_t> Samples;
    };
    const std::vector<PlaceCase> Cases = {
        {{.Frame = 0x3D}, Both(0)},
        {{.Frame = 0x3D, .Sample = 300}, Both(300)},
        {{.Frame = 0x3D, .Byte = 0, .Sample = 16}, Both(Answer + 16)},
        {{.Frame = 0x3D, .Byte = 2, .Sample = 79}, Both(Answer + 160 + 79)},
        {{.Frame = 0x3D, .Byte = 1, .Sample = 79, .Occurrence = 2}, {Second + Answer + 80 + 79}},
        {{.Frame = 0x3D, .Occurrence = 1}, {First}},
        {{.Frame = 0x3D, .Occurrence = 3}, {}},
        {{.Frame = 0x3D, .Byte = 3}, {Second - Header}}, // the next break looks like a byte
        {{.Frame = 0x3D, .Byte = 4}, {}},
        {{.Frame = 0x3C}, {}},
    };
    // One sample of the recessive level is short enough for the node not to notice.
    for (const PlaceCase& Case : Cases) {
        EXPECT_EQ(Disturbed({{Effect::Noise, Case.Place, 1, 1.0}}, Twice), Case.Samples)
            << Case.Place.Sample << ' ' << Case.Place.Byte.value_or(-1) << ' ' << Case.Place.Occurrence;
    }
}

TEST(WireFaults, GoOnWhenTheirFrameComesAgain)
{
    const CommanderStream Twice = CommanderStream().Header(Protected3D).Header(Protected3D).Idle(200);
    struct RepeatCase {
        const char* What;
        std::int64_t Sample;
        std::optional<std::int64_t> Length;
        std::vector<std::size_t> Samples; // counted from the end of the first header
    };
    std::vector<std::size_t> Both = Samples(600, 10);
    std::ranges::copy(Samples(Header + 600, 10), std::back_inserter(Both));
    const std::vector<RepeatCase> Cases = {
        {"both still to come", 600, 10, Both},
        {"the first goes on while the second begins", 100, 400, Samples(Header, 500)},
        {"for good", 280, std::nullopt, Samples(280, Header + 1600 - 280)},
    };
    for (const auto& [What, Sample, Length, Expected] : Cases) {
        SimulatedBus Bus({.WireFaults = {{Effect::Dominant, {.Frame = 0x3D, .Sample = Sample}, Length}}});
        const Bytes In = Exchange(Bus, Twice);
        std::vector<std::size_t> Dominant;
        for (std::size_t k = FirstDominant(In, 2 * Header); k < In.size() * 8; k = FirstDominant(In, k + 1)) {
            Dominant.push_back(k - Header);
        }
        EXPECT_EQ(Dominant, Expected) << What;
    }
}

TEST(WireFaults, FindFramesThatNoNodeKnowsAndLeaveOutThoseWithWrongParity)
{
    SimulatedBus Bus({.WireFaults = {{Effect::Dominant, {.Frame = 0x3D, .Sample = 1}, 1}}});
    EXPECT_EQ(FirstDominant(Exchange(Bus, CommanderStream().Request(Protected3D)), Header), Header + 1);
    EXPECT_EQ(FirstDominant(Exchange(Bus, CommanderStream().Request(0x3D)), Header), Header + 1120);
}

TEST(WireFaults, StartOverWithTheNextHeaderAtAnyBitRate)
{
    // The whole break of the fast header is shorter than one bit of the slow one, in whose frame it is the first byte.
    SimulatedBus Bus({.WireFaults = {{Effect::Recessive, {.Frame = 0x3D, .Byte = 0}, 1}}});
    const CommanderStream Slow = CommanderStream().Header(Protected3D);
    const CommanderStream Fast = CommanderStream().Header(Protected21);
    EXPECT_EQ(Exchange(Bus, Slow, 20 * Ticks19200), Slow.Data());
    Bytes Expected = Fast.Data();
    Expected[0] |= 1;
    EXPECT_EQ(Exchange(Bus, Fast), Expected);
}

TEST(WireFaults, AreSeenByTheNodesButForTheMissingEcho)
{
    const std::size_t SyncBit = CommanderStream::BreakSamples + 16; // a recessive bit of the sync field
    for (const auto& [Kind, Expected] :
         {std::pair{Effect::Dominant, Silence}, {Effect::NoEcho, DoorAnswer}, {Effect::Noise, Silence}}) {
        SimulatedBus Bus = DoorBusWith({{Kind, {.Sample = static_cast<std::int64_t>(SyncBit)}, 8, 1.0}});
        EXPECT_EQ(Read(Bus, Protected3D), Expected) << static_cast<int>(Kind);
    }
}

TEST(WireFaults, SilenceANodeThatDoesNotFindItsOwnBit)
{
    // 12 = 0, 0100 1000, 1: bit 2 of the byte is dominant, bit 4 recessive. The middle of a bit is its sample 4.
    struct MonitorCase {
        const char* What;
        Effect Kind;
        std::int64_t Sample;
        std::int64_t Length;
        std::size_t LastDominant; // of the answer, counted from its start edge
    };
    for (const auto& [What, Kind, Sample, Length, LastDominant] :
         {MonitorCase{"from the middle of a recessive bit on", Effect::Dominant, 5 * 8 + 4, 2, 5 * 8 + 5},
          {"just before the middle", Effect::Dominant, 5 * 8 + 2, 2, 231},
          {"just after the middle", Effect::Dominant, 5 * 8 + 5, 2, 231},
          {"over the middle of a dominant bit", Effect::Recessive, 3 * 8 + 3, 2, 3 * 8 + 2}}) {
        SimulatedBus Bus = DoorBusWith({{Kind, {.Frame = 0x3D, .Byte = 0, .Sample = Sample}, Length}});
        const Bytes In = Exchange(Bus, CommanderStream().Request(Protected3D));
        std::size_t Last = 0;
        for (std::size_t k = FirstDominant(In, Header); k < In.size() * 8; k = FirstDominant(In, k + 1)) {
            Last = k;
        }
        EXPECT_EQ(Last, Header + 8 + LastDominant) << What;
    }
}

TEST(Noise, ComesFromTheSeedAsOftenAsToldTo)
{
    const auto Inverted = [](std::uint64_t Seed) {
        SimulatedBus Bus({.WireFaults = {{.Kind = Effect::Noise, .Probability = 0.1}}, .Seed = Seed});
        return Exchange(Bus, CommanderStream().Level(100'000, 0));
    };
    const Bytes Once = Inverted(7);
    EXPECT_EQ(Once, Inverted(7));
    EXPECT_NE(Once, Inverted(8));
    const int Count = std::accumulate(Once.begin(), Once.end(), 0,
                                      [](int Sum, std::uint8_t Byte) { return Sum + std::popcount(Byte); });
    EXPECT_NEAR(Count, 10'000, 400) << "four standard deviations";
}

TEST(Noise, IsNotTheSameForTwoFaults)
{
    const WireFault Fault{.Kind = Effect::Noise, .Probability = 0.5};
    EXPECT_FALSE(Disturbed({Fault, Fault}, CommanderStream().Level(800, 0)).empty()) << "the second undid the first";
}

TEST(AnswerFaults, SpoilTheAnswersThatTheyAreFor)
{
    using Answer = AnswerFault::Effect;
    struct AnswerCase {
        AnswerFault Fault;
        Bytes Received;
    };
    const std::vector<AnswerCase> Cases = {
        {{Answer::WrongChecksum, 0x3D}, {0x12, 0x34, 0xC3}},
        {{Answer::Short, 0x3D, 0, 1}, {0x12, 0x34}},
        {{Answer::Short, 0x3D, 0, 2}, {0x12}},
        {{Answer::Short, 0x3D, 0, 3}, {}},
        {{Answer::Short, 0x3D, 0, 16}, {}},
        {{Answer::WrongChecksum, 0x21}, DoorAnswer.Received},
    };
    for (const auto& [Fault, Received] : Cases) {
        SimulatedBus Bus = DoorBusWith(Fault);
        EXPECT_EQ(Read(Bus, Protected3D), Decoded{Received});
    }
}

TEST(AnswerFaults, AddBytesThatComeFromTheSeed)
{
    const auto Answers = [](std::uint64_t Seed) {
        SimulatedBus Bus({.Slaves = {Door()}, .AnswerFaults = {{AnswerFault::Effect::Long, 0x3D, 0, 5}}, .Seed = Seed});
        return std::pair{Read(Bus, Protected3D).Received, Read(Bus, Protected3D).Received};
    };
    const auto [First, Second] = Answers(1);
    ASSERT_EQ(First.size(), 8U);
    EXPECT_EQ(Bytes(First.begin(), First.begin() + 3), DoorAnswer.Received);
    EXPECT_NE(First, Second) << "other bytes each time";
    EXPECT_EQ(Answers(1), std::pair(First, Second));
    EXPECT_NE(Answers(2), std::pair(First, Second));
}

TEST(AnswerFaults, CountTheRequestsOfTheirFrame)
{
    SimulatedBus Bus = DoorBusWith(AnswerFault{AnswerFault::Effect::Short, 0x3D, 2, 16});
    EXPECT_EQ(Read(Bus, Protected3D), DoorAnswer);
    Read(Bus, Protected21);
    EXPECT_EQ(Read(Bus, Protected3D), Silence);
    EXPECT_EQ(Read(Bus, Protected3D), DoorAnswer);
}

TEST(Collisions, HappenInTheFrameThatTheyAreFor)
{
    SimulatedBus Bus({.Collisions = {{.Frame = 0x3D, .Occurrence = 2, .Data = {0x77}}}});
    EXPECT_EQ(Read(Bus, Protected3D), Silence);
    EXPECT_EQ(Read(Bus, Protected3D), (Decoded{{0x77, 0x0B}}));
    EXPECT_EQ(Read(Bus, Protected3D), Silence);
}

TEST(Collisions, SendEightRandomBytesUnlessTold)
{
    const auto Intruder = [](std::uint64_t Seed) {
        SimulatedBus Bus({.Collisions = {{.Frame = 0x3D}}, .Seed = Seed});
        return Read(Bus, Protected3D).Received;
    };
    EXPECT_EQ(Intruder(1).size(), 9U);
    EXPECT_EQ(Intruder(1), Intruder(1));
    EXPECT_NE(Intruder(1), Intruder(2));
}

} // namespace Pellumo::Testing
