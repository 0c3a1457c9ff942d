#include "pellumo/simulation/FrameBytes.h"
#include "tests/pellumo/simulation/Exchanges.h"

#include <gtest/gtest.h>

namespace Pellumo::Testing {

namespace {

/// A bus that has the one node.
SimulatedBus BusWith(const SlaveDescription& Slave)
{
    return SimulatedBus(BusDescription{{Slave}});
}

} // namespace

TEST(SlaveNode, AnswersAtAnyBitRate)
{
    for (const Tick SampleTicks : {1, 2, 3, 10, 390, 391, 7500, 131072, 655360}) {
        SimulatedBus Bus = BusWith(Door());
        EXPECT_EQ(Read(Bus, Protected3D, SampleTicks), DoorAnswer) << SampleTicks;
    }
}

TEST(SlaveNode, FollowsABitRateThatChangesBetweenFrames)
{
    SimulatedBus Bus = BusWith(Door());
    for (const Tick SampleTicks : {390, 7500, 37, 390}) {
        EXPECT_EQ(Read(Bus, Protected3D, SampleTicks), DoorAnswer) << SampleTicks;
    }
}

TEST(SlaveNode, TakesElevenBitTimesForABreak)
{
    const auto Answer = [](std::size_t BreakSamples) {
        SimulatedBus Bus = BusWith(Door());
        CommanderStream Stream;
        Stream.Idle(2).Break(BreakSamples).Byte(0x55).Byte(Protected3D);
        const std::size_t Header = Stream.Samples();
        return Decode(Exchange(Bus, Stream.Idle(140)), Header);
    };
    for (const std::size_t BreakSamples : {88U, 89U, 104U, 110U, 208U, 8000U}) {
        EXPECT_EQ(Answer(BreakSamples), DoorAnswer) << BreakSamples;
    }
    for (const std::size_t BreakSamples : {0U, 8U, 72U, 80U, 87U}) {
        EXPECT_EQ(Answer(BreakSamples), Silence) << BreakSamples;
    }
}

TEST(SlaveNode, AnswersToNoOtherSyncField)
{
    for (int Sync = 0; Sync <= 0xFF; ++Sync) {
        SimulatedBus Bus = BusWith(Door());
        CommanderStream Stream;
        Stream.Break().Byte(static_cast<std::uint8_t>(Sync)).Byte(Protected3D).Idle(140);
        EXPECT_EQ(Decode(Exchange(Bus, Stream), CommanderStream::HeaderSamples), Sync == 0x55 ? DoorAnswer : Silence)
            << Sync;
    }
}

TEST(SlaveNode, AllowsEachBitOfTheSyncFieldHalfABitTime)
{
    const auto Answer = [](std::size_t StartBit, std::size_t FirstBit) {
        SimulatedBus Bus = BusWith(Door());
        CommanderStream Stream;
        Stream.Break().Level(StartBit, 0).Level(FirstBit, 1);
        for (int k = 1; k < 8; ++k) {
            Stream.Level(CommanderStream::SamplesPerBit, (k + 1) % 2);
        }
        Stream.Idle(1).Byte(Protected3D);
        const std::size_t Header = Stream.Samples();
        return Decode(Exchange(Bus, Stream.Idle(140)), Header);
    };
    EXPECT_EQ(Answer(4, 12), DoorAnswer);
    EXPECT_EQ(Answer(12, 4), DoorAnswer);
    EXPECT_EQ(Answer(3, 11), Silence) << "the start bit is too short, nothing is too long";
    EXPECT_EQ(Answer(13, 5), Silence) << "the start bit is too long, nothing is too short";
}

TEST(SlaveNode, TakesAPulseShorterThanHalfABitForNoStartBit)
{
    SimulatedBus Bus = BusWith(Door());
    CommanderStream Stream;
    Stream.Break().Byte(0x55).Idle(2).Level(4, 0).Idle(2).Byte(Protected3D);
    const std::size_t Header = Stream.Samples();
    EXPECT_EQ(Decode(Exchange(Bus, Stream.Idle(140)), Header), DoorAnswer);
}

TEST(SlaveNode, AnswersToNoOtherIdentifierAndToNoWrongParity)
{
    for (int Identifier = 0; Identifier <= 0xFF; ++Identifier) {
        SimulatedBus Bus = BusWith(Door());
        EXPECT_EQ(Read(Bus, static_cast<std::uint8_t>(Identifier)), Identifier == Protected3D ? DoorAnswer : Silence)
            << Identifier;
    }
}

TEST(SlaveNode, HearsAHeaderWhoseBytesStandApart)
{
    SimulatedBus Bus = BusWith(Door());
    CommanderStream Stream;
    Stream.Break().Idle(5).Byte(0x55).Idle(7).Byte(Protected3D);
    const std::size_t Header = Stream.Samples();
    EXPECT_EQ(Decode(Exchange(Bus, Stream.Idle(140)), Header), DoorAnswer);
}

TEST(SlaveNode, AnswersAfterItsResponseSpaceToTheSample)
{
    struct SpaceCase {
        double Bits;
        std::size_t Samples;
    };
    // A start edge inside a sample's first half is seen by that sample, which is read in its middle.
    for (const auto& [Bits, Samples] : {SpaceCase{0, 0}, {1, 8}, {2, 16}, {0.05, 0}, {0.07, 1}, {4.5, 36}, {50, 400}}) {
        SlaveDescription Slave = Door();
        Slave.ResponseSpace = Bits;
        SimulatedBus Bus = BusWith(Slave);
        const Bytes In = Exchange(Bus, CommanderStream().Request(Protected3D));
        EXPECT_EQ(FirstDominant(In, CommanderStream::HeaderSamples), CommanderStream::HeaderSamples + Samples) << Bits;
    }
}

TEST(SlaveNode, DropsAnAnswerWhenTheNextHeaderComesFirst)
{
    SlaveDescription Slave = Door();
    Slave.ResponseSpace = 60;
    SimulatedBus Bus = BusWith(Slave);
    const Bytes In = Exchange(Bus, CommanderStream().Header(Protected3D).Idle(20).Header(0x00).Idle(100));
    const std::size_t SecondHeader = 2 * CommanderStream::HeaderSamples + 160;
    EXPECT_EQ(Decode(In, SecondHeader), Silence);
}

TEST(SlaveNode, CopiesWhatItLastReceived)
{
    SimulatedBus Bus = BusWith(Door());
    EXPECT_EQ(Read(Bus, Protected21), Silence);

    Exchange(Bus, CommanderStream().Frame(Protected20, {0x01, 0x02, 0xDC}));
    EXPECT_EQ(Read(Bus, Protected21), (Decoded{{0x01, 0x02, 0x9B}}));
    EXPECT_EQ(Read(Bus, Protected21), (Decoded{{0x01, 0x02, 0x9B}})) << "an answer does not use the data up";

    Exchange(Bus, CommanderStream().Frame(Protected20, {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99}));
    const Bytes Longest{0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
    Bytes Classic = Longest;
    Classic.push_back(Checksum(0, Longest));
    Bytes Expected = Longest;
    Expected.push_back(Checksum(Protected21, Longest));
    Exchange(Bus, CommanderStream().Frame(Protected20, Classic));
    EXPECT_EQ(Read(Bus, Protected21), (Decoded{Expected}));
}

TEST(SlaveNode, KeepsItsDataWhenAFrameIsDamaged)
{
    CommanderStream BrokenByte;
    BrokenByte.Header(Protected20).Byte(0x01).Byte(0xDE).Level(8, 0).Level(8, 1).Level(72, 0).Idle(2);
    struct DamageCase {
        const char* What;
        CommanderStream Stream;
    };
    const std::vector<DamageCase> Cases = {
        {"wrong checksum", CommanderStream().Frame(Protected20, {0x01, 0x02, 0xDD})},
        {"checksum alone", CommanderStream().Frame(Protected20, {0xFF})},
        {"no response", CommanderStream().Frame(Protected20, {})},
        {"nine data bytes", CommanderStream().Frame(Protected20, {1, 1, 1, 1, 1, 1, 1, 1, 1, 0xF6})},
        {"a byte whose stop bit is dominant", BrokenByte},
        {"another identifier", CommanderStream().Frame(0x50, {0x01, 0x02, 0xFC})},
        {"wrong parity", CommanderStream().Frame(0xA0, {0x01, 0x02, 0xFC})},
    };
    for (const auto& [What, Stream] : Cases) {
        SimulatedBus Bus = BusWith(Door());
        Exchange(Bus, CommanderStream().Frame(Protected20, {0xAB, 0x54}));
        Exchange(Bus, Stream);
        EXPECT_EQ(Read(Bus, Protected21), (Decoded{{0xAB, 0xF2}})) << What;
    }
}

} // namespace Pellumo::Testing
