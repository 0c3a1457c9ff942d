#include "pellumo/recording/AnswerTiming.h"

#include "pellumo/recording/Recorder.h"
#include "tarvix/master/clsLIN.h"
#include "tests/pellumo/recording/BusDevice.h"
#include "tests/pellumo/recording/StreamRecord.h"
#include "tests/support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace Pellumo::Testing {

using Tarvix::Testing::Random;

namespace {

constexpr std::int64_t Header = CommanderStream::HeaderSamples;
const Bytes NineBytes{0x00, 0xFF, 0x55, 0xAA, 0x01, 0x80, 0x7E, 0x12, 0x9C};

/// A slave in continuous time. Sample n shows the level at n + 1/2.
struct Slave {
    double Deviation = 0.0;     // percent
    double ResponseSpace = 1.0; // bit times of the commander
    double Gap = 0.0;           // bit times of the commander
    double Phase = 0.0;         // samples that everything is late

    Bytes Answer(const Bytes& Data) const
    {
        Bytes Samples = CommanderStream().Request(0x7D).Data();
        const double BitTime = 8.0 / (1.0 + Deviation / 100.0);
        double Start = static_cast<double>(Header) + 8.0 * ResponseSpace + Phase;
        for (const std::uint8_t Byte : Data) {
            const unsigned Levels = unsigned{Byte} << 1U | 0x200U; // start bit, data bits, stop bit
            for (int k = 0; k < 10; ++k) {
                Drive(Samples, Start + k * BitTime, Start + (k + 1) * BitTime, Levels >> k & 1U);
            }
            Start += 10.0 * BitTime + 8.0 * Gap;
        }
        return Samples;
    }

private:
    static void Drive(Bytes& Samples, double From, double To, unsigned Level)
    {
        for (auto n = static_cast<std::size_t>(std::ceil(From - 0.5)); static_cast<double>(n) + 0.5 < To; ++n) {
            if (Level == 0) {
                Samples[n / 8] = static_cast<std::uint8_t>(Samples[n / 8] & ~(1U << n % 8));
            }
        }
    }
};

AnswerTiming TimingOf(const Bytes& Rx)
{
    const auto Event = EventOf(Exchanged(CommanderStream().Request(0x7D).Data(), Rx));
    return MeasureAnswer(Rx, Event.ResponseBegin, Event.Edges).value();
}

Bytes With(Bytes Samples, std::int64_t First, std::int64_t Count, unsigned Level)
{
    for (auto n = static_cast<std::size_t>(First); n < static_cast<std::size_t>(First + Count); ++n) {
        const auto Mask = static_cast<std::uint8_t>(1U << n % 8);
        Samples[n / 8] = static_cast<std::uint8_t>(Level == 1 ? Samples[n / 8] | Mask : Samples[n / 8] & ~Mask);
    }
    return Samples;
}

} // namespace

TEST(AnswerTiming, IsNothingWithoutAByte)
{
    const Bytes Silent(100, 0xFF);
    EXPECT_FALSE(MeasureAnswer(Silent, 272, {}).has_value());
}

TEST(AnswerTiming, IsExactForASlaveInStep)
{
    const auto Timing = TimingOf(Slave{.ResponseSpace = 2.5}.Answer(NineBytes));
    EXPECT_EQ(Timing.ResponseSpace, 2.5);
    EXPECT_EQ(Timing.LongestGap, 0.0);
    ASSERT_TRUE(Timing.Clock.has_value());
    EXPECT_NEAR(Timing.Clock->Deviation, 0.0, 1e-9);
    EXPECT_EQ(Timing.Margin, 4);
}

TEST(AnswerTiming, FindsWhatWasSet)
{
    constexpr double OneSample = 1.0 / 8.0;
    for (const double Deviation : {-2.0, -0.5, 0.13, 1.0, 2.0}) {
        for (const double Gap : {0.0, 0.3, 1.0, 3.7}) {
            for (const double Space : {0.0, 0.8, 7.1}) {
                const Slave Set{Deviation, Space, Gap, 0.3};
                const auto Timing = TimingOf(Set.Answer({0x55, 0x0F, 0x31, 0x99, 0xE6}));
                const auto What = testing::Message() << Deviation << " % " << Gap << " bit " << Space << " bit";
                EXPECT_NEAR(Timing.ResponseSpace, Space + 0.3 / 8, OneSample) << What;
                EXPECT_NEAR(Timing.LongestGap, Gap, 2 * OneSample) << What;
                ASSERT_TRUE(Timing.Clock.has_value());
                EXPECT_NEAR(Timing.Clock->Deviation, Deviation, Timing.Clock->Accuracy) << What;
                EXPECT_LT(Timing.Clock->Accuracy, Gap == 0.0 ? 0.3 : 1.5) << What;
            }
        }
    }
}

TEST(AnswerTiming, TheLongestGapCounts)
{
    CommanderStream Stream;
    Stream.Header(0x7D).Byte(1).Idle(2).Byte(2).Idle(5).Byte(3).Idle(1).Byte(4).Idle(92);
    EXPECT_EQ(TimingOf(Stream.Data()).LongestGap, 5.0);
}

TEST(AnswerTiming, TheTrueClockLiesWithinTheAccuracy)
{
    struct Case {
        std::size_t Bytes;
        double Gap;             // bit times of the slave
        double TypicalAccuracy; // percent
    };
    Random Numbers;
    for (const Case& c : {Case{9, 0.0, 0.04}, {9, 0.5, 0.8}, {2, 0.0, 0.5}, {1, 0.0, 1.7}}) {
        double Sum = 0.0;
        constexpr int Answers = 2000;
        for (int i = 0; i < Answers; ++i) {
            Slave Set;
            Set.Deviation = Numbers.Between(-20000, 20000) / 1e4;
            Set.Phase = Numbers.Between(0, 999) / 1e3;
            Set.Gap = c.Gap / (1.0 + Set.Deviation / 100.0);
            Bytes Data(c.Bytes);
            std::ranges::generate(Data, [&] { return Numbers.Byte(); });
            const auto Clock = TimingOf(Set.Answer(Data)).Clock.value();
            EXPECT_NEAR(Clock.Deviation, Set.Deviation, Clock.Accuracy + 1e-9);
            Sum += Clock.Accuracy;
        }
        EXPECT_LT(Sum / Answers, c.TypicalAccuracy) << c.Bytes << " bytes, gap " << c.Gap;
        EXPECT_GT(Sum / Answers, c.TypicalAccuracy / 3) << c.Bytes << " bytes, gap " << c.Gap;
    }
}

TEST(AnswerTiming, MarginIsTheWayToTheNearestEdge)
{
    // 0x0F right after the header: start bit 0..7, ones 8..39, zeros 40..71, stop bit from 72.
    const Bytes Clean = CommanderStream().Header(0x7D).Byte(0x0F).Idle(130).Data();
    struct Case {
        const char* What;
        std::int64_t First, Count;
        unsigned Level;
        std::int64_t Margin;
    };
    const Case Cases[] = {
        {"as it should be", 0, 0, 0, 4},
        {"an edge one sample early", 71, 1, 1, 3},
        {"one sample late", 72, 1, 0, 4},
        {"two samples late", 72, 2, 0, 3},
        {"as late as can be", 72, 4, 0, 1},
        {"an edge two samples early", 38, 2, 0, 2},
        {"a glitch beside a sampling point", 21, 1, 0, 1},
        {"before it", 19, 1, 0, 1},
        {"a start bit that ends early", 6, 2, 1, 2},
    };
    for (const Case& c : Cases) {
        EXPECT_EQ(TimingOf(With(Clean, Header + c.First, c.Count, c.Level)).Margin, c.Margin) << c.What;
    }
}

TEST(AnswerTiming, GlitchesDoNotSpoilTheClock)
{
    // Bits that differ with three edges between them tell nothing about the clock.
    const Bytes Clean = CommanderStream().Header(0x7D).Byte(0x55).Byte(0x55).Idle(120).Data();
    const auto Timing = TimingOf(With(With(Clean, Header + 9, 1, 0), Header + 14 + 80, 1, 0));
    EXPECT_NEAR(Timing.Clock.value().Deviation, 0.0, 1e-9);

    const Bytes Zeros = CommanderStream().Header(0x7D).Byte(0x00).Idle(130).Data();
    EXPECT_FALSE(TimingOf(With(Zeros, Header + 70, 1, 1)).Clock.has_value()) << "only the start edge is clean";
}

TEST(AnswerTiming, AllowsForEdgesThatJitter)
{
    const Bytes Clean = CommanderStream().Header(0x7D).Byte(0x55).Byte(0x55).Idle(120).Data();
    const auto Expected = TimingOf(Clean).Clock.value();
    const auto Clock = TimingOf(With(Clean, Header + 31, 1, 0)).Clock.value(); // no bit time puts this edge there
    EXPECT_NEAR(Clock.Deviation, 0.0, Clock.Accuracy);
    EXPECT_GT(Clock.Accuracy, Expected.Accuracy);
}

TEST(AnswerTiming, FindsTheNodesOfASimulatedBus)
{
    for (const double ClockError : {-1.5, 0.0, 0.5, 2.0}) {
        for (const auto& [Space, Gap] : {std::pair{1.0, 0.0}, {2.0, 0.0}, {6.5, 0.0}, {0.5, 0.25}, {2.0, 3.0}}) {
            BusDescription Bus;
            Bus.Slaves.push_back({"node", ClockError, Space, {{.Identifier = 0x3D, .Data = NineBytes}}});
            Bus.Slaves[0].Frames[0].Data.resize(8);
            Bus.Slaves[0].ByteSpace = Gap;
            BusDevice Device(Bus);
            Recorder Recording(Device);
            std::optional<AnswerTiming> Timing;
            FrameDecoder Decoder([&Timing](const BusEvent& Event) {
                Timing = MeasureAnswer(Event.Stream.Rx, Event.ResponseBegin, Event.StartEdges);
            });
            Recording.AddListener(Decoder);
            Tarvix::clsLIN Master;
            Master.Initialize(Recording);
            Master.BaudrateBd(19200);
            EXPECT_TRUE(Master.ReadFrame(0x7D, 8));
            ASSERT_TRUE(Timing.has_value() && Timing->Clock.has_value());
            EXPECT_LT(Timing->Clock->Accuracy, Gap == 0.0 ? 0.2 : 1.5);
            EXPECT_NEAR(Timing->Clock->Deviation, ClockError, Timing->Clock->Accuracy);
            EXPECT_NEAR(Timing->ResponseSpace, Space / (1.0 + ClockError / 100.0), 1.0 / 8.0);
            // a sample, and what ten bits of a bit time that is known to `Accuracy` only add
            const double Tolerance = 1.0 / 8.0 + 10.0 * Timing->Clock->Accuracy / 100.0;
            EXPECT_NEAR(Timing->LongestGap, Gap / (1.0 + ClockError / 100.0), Tolerance);
            const double Early = std::max(0.0, 72.0 * ClockError / 100.0); // of the stop bit's edge
            EXPECT_NEAR(static_cast<double>(Timing->Margin), 4.0 - Early, 1.0);
        }
    }
}

} // namespace Pellumo::Testing
