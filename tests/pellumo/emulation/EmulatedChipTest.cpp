#include "pellumo/emulation/EmulatedChip.h"

#include "tests/support/EchoPins.h"

#include <gtest/gtest.h>

#include <numeric>
#include <set>

namespace Pellumo {
namespace {

using Testing::EchoPins;
using Bytes = std::vector<std::uint8_t>;

constexpr std::array AllFamilies = {ChipFamily::FT2232D, ChipFamily::FT2232H, ChipFamily::FT4232H, ChipFamily::FT232H};

Bytes AnswersOf(EmulatedChip& Chip)
{
    Bytes Answers(Chip.Pending());
    EXPECT_EQ(Chip.Read(Answers), Answers.size());
    return Answers;
}

/// A high-speed chip whose data output drives the wires.
class Chip : public testing::Test {
protected:
    void SetUp() override { Engine.Write(Bytes{0x80, 0x03, 0x0B}); }

    Bytes AnswersTo(const Bytes& Commands)
    {
        Engine.Write(Commands);
        return AnswersOf(Engine);
    }

    /// Ticks that all samples took.
    std::int64_t Elapsed() const
    {
        return std::accumulate(Wires.Calls.begin(), Wires.Calls.end(), std::int64_t{0},
                               [](std::int64_t Sum, const EchoPins::Call& Each) {
                                   return Sum + static_cast<std::int64_t>(Each.Out.size()) * 8 * Each.SampleTicks;
                               });
    }

    EchoPins Wires;
    EmulatedChip Engine{ChipFamily::FT232H, Wires};
};

struct ShiftCase {
    Bytes Commands;
    Bytes Driven;
    Bytes Answer;
};

class Shifting : public Chip, public testing::WithParamInterface<ShiftCase> {};

// The wires pull samples 0 and 1 of the first byte low.
TEST_P(Shifting, DrivesTheWiresAndAnswersWhatTheyGive)
{
    Wires.PulledLow = {0x03};
    EXPECT_EQ(AnswersTo(GetParam().Commands), GetParam().Answer);
    EXPECT_EQ(Wires.Stream(), GetParam().Driven);
    EXPECT_EQ(Wires.Calls[0].Reads, !GetParam().Answer.empty());
}

INSTANTIATE_TEST_SUITE_P(Bytes, Shifting,
                         testing::Values(ShiftCase{{0x18, 0x01, 0x00, 0x0F, 0xA1}, {0x0F, 0xA1}, {}},
                                         ShiftCase{{0x19, 0x00, 0x00, 0x0F}, {0x0F}, {}},
                                         ShiftCase{{0x10, 0x01, 0x00, 0x0F, 0xA1}, {0xF0, 0x85}, {}},
                                         ShiftCase{{0x3C, 0x01, 0x00, 0x0F, 0xA1}, {0x0F, 0xA1}, {0x0C, 0xA1}},
                                         ShiftCase{{0x39, 0x01, 0x00, 0x0F, 0xA1}, {0x0F, 0xA1}, {0x0C, 0xA1}},
                                         ShiftCase{{0x34, 0x01, 0x00, 0xE0, 0xA1}, {0x07, 0x85}, {0x20, 0xA1}},
                                         ShiftCase{{0x31, 0x00, 0x00, 0xE0}, {0x07}, {0x20}},
                                         ShiftCase{{0x28, 0x01, 0x00}, {0xFF, 0xFF}, {0xFC, 0xFF}},
                                         ShiftCase{{0x24, 0x01, 0x00}, {0xFF, 0xFF}, {0x3F, 0xFF}},
                                         ShiftCase{{0x8F, 0x01, 0x00}, {0xFF, 0xFF}, {}}));

// The wires take a bit as eight samples, and what they pull low ends before the one that is read.
INSTANTIATE_TEST_SUITE_P(
    Bits, Shifting,
    testing::Values(ShiftCase{{0x1A, 0x02, 0x05}, {0xFF, 0x00, 0xFF}, {}},
                    ShiftCase{{0x1A, 0xFA, 0x05}, {0xFF, 0x00, 0xFF}, {}},
                    ShiftCase{{0x12, 0x02, 0xA0}, {0xFF, 0x00, 0xFF}, {}},
                    ShiftCase{{0x3E, 0x02, 0x05}, {0xFF, 0x00, 0xFF}, {0xA0}},
                    ShiftCase{{0x36, 0x02, 0xA0}, {0xFF, 0x00, 0xFF}, {0x05}},
                    ShiftCase{{0x3E, 0x07, 0x4D}, {0xFF, 0x00, 0xFF, 0xFF, 0x00, 0x00, 0xFF, 0x00}, {0x4D}},
                    ShiftCase{{0x36, 0x07, 0xB2}, {0xFF, 0x00, 0xFF, 0xFF, 0x00, 0x00, 0xFF, 0x00}, {0xB2}},
                    ShiftCase{{0x2A, 0x01}, {0xFF, 0xFF}, {0xC0}}, ShiftCase{{0x22, 0x01}, {0xFF, 0xFF}, {0x03}},
                    ShiftCase{{0x6B, 0x01, 0x03}, {0x00, 0x00}, {0x00}},
                    ShiftCase{{0x4B, 0x01, 0x83}, {0xFF, 0xFF}, {}}, ShiftCase{{0x8E, 0x01}, {0xFF, 0xFF}, {}}));

TEST_F(Chip, ReadsASingleBitInItsSecondHalf)
{
    Wires.PulledLow = {0x10, 0xEF};
    EXPECT_EQ(AnswersTo({0x3E, 0x01, 0x03}), Bytes{0x80});
}

TEST_F(Chip, LongShiftsOfEitherOrderKeepTheirOrder)
{
    Bytes Commands = {0x34, 0x2B, 0x01};
    Bytes Data;
    for (int i = 0; i < 300; ++i) {
        Data.push_back(static_cast<std::uint8_t>(i % 253));
    }
    Commands.insert(Commands.end(), Data.begin(), Data.end());
    EXPECT_EQ(AnswersTo(Commands), Data);
    EXPECT_EQ(AnswersTo({0x28, 0x2B, 0x01}), Bytes(300, 0x00)) << "the last bit, 46's, is 0, and stays";
}

TEST_F(Chip, KeepsTheLevelOfTheLastSample)
{
    EXPECT_EQ(AnswersTo({0x18, 0x00, 0x00, 0x7F, 0x81}), Bytes{0xF1}) << "data output and input are low";
    EXPECT_EQ(AnswersTo({0x18, 0x00, 0x00, 0x80, 0x81}), Bytes{0xF7});
    EXPECT_EQ(AnswersTo({0x10, 0x00, 0x00, 0xFE, 0x81}), Bytes{0xF1});
    EXPECT_EQ(AnswersTo({0x1B, 0x00, 0x01, 0x81}), Bytes{0xF7});
}

TEST_F(Chip, SetsAndReadsItsPins)
{
    EXPECT_EQ(AnswersTo({0x80, 0x01, 0x0B, 0x81}), Bytes{0xF1}) << "inputs are pulled up, the data input follows";
    EXPECT_EQ(AnswersTo({0x80, 0x52, 0xFB, 0x81}), Bytes{0x56});
    EXPECT_EQ(AnswersTo({0x80, 0x00, 0x09, 0x81}), Bytes{0xF6}) << "a data output that is an input floats";
    EXPECT_EQ(AnswersTo({0x82, 0x50, 0xF0, 0x83}), Bytes{0x5F});
    EXPECT_EQ(Wires.Levels, (std::vector<int>{1, 0, 1, 1}));
}

TEST_F(Chip, DrivesNothingWhileTheDataOutputIsAnInput)
{
    Engine.Write(Bytes{0x80, 0x00, 0x09, 0x18, 0x00, 0x00, 0x12, 0x10, 0x00, 0x00, 0x12, 0x1B, 0x00, 0x00});
    EXPECT_EQ(Wires.Stream(), Bytes(3, 0xFF));
}

TEST_F(Chip, LoopbackAnswersWhatIsDrivenWhateverTheWiresGive)
{
    Wires.PulledLow = Bytes(4, 0xFF);
    EXPECT_EQ(AnswersTo({0x84, 0x3C, 0x00, 0x00, 0x5A, 0x3E, 0x00, 0x01}), (Bytes{0x5A, 0x80}));
    EXPECT_EQ(AnswersTo({0x85, 0x3C, 0x00, 0x00, 0x5A}), Bytes{0x00});
    EXPECT_EQ(Wires.Stream(), (Bytes{0x5A, 0xFF, 0x5A})) << "the pin drives in loopback, too";
}

struct ClockCase {
    Bytes Settings;
    std::int64_t SampleTicks;
};

class Clocking : public Chip, public testing::WithParamInterface<ClockCase> {};
INSTANTIATE_TEST_SUITE_P(Settings, Clocking,
                         testing::Values(ClockCase{{}, 10}, ClockCase{{0x8A}, 2}, ClockCase{{0x8A, 0x8B}, 10},
                                         ClockCase{{0x86, 0xC2, 0x00}, 1950}, ClockCase{{0x8A, 0x86, 0x34, 0x12}, 9322},
                                         ClockCase{{0x8A, 0x86, 0xFF, 0xFF}, 131072},
                                         ClockCase{{0x8A, 0x8C, 0x86, 0x01, 0x00}, 6},
                                         ClockCase{{0x8A, 0x8C, 0x8D, 0x86, 0x01, 0x00}, 4}, ClockCase{{0x96}, 10},
                                         ClockCase{{0x97}, 10}));

TEST_P(Clocking, GivesASampleItsDuration)
{
    Engine.Write(GetParam().Settings);
    EXPECT_EQ(AnswersTo({0x3C, 0x00, 0x00, 0xAA}), Bytes{0xAA});
    EXPECT_EQ(Wires.Calls.back().SampleTicks, GetParam().SampleTicks);
}

TEST_P(Clocking, SingleBitsTakeAsLongAsTheBitsOfBytes)
{
    Engine.Write(GetParam().Settings);
    for (int i = 0; i < 8; ++i) {
        Engine.Write(Bytes{0x1A, 0x04, 0x15});
    }
    const std::int64_t Wanted = 5LL * 8 * std::max<std::int64_t>(GetParam().SampleTicks, 8);
    EXPECT_LT(std::abs(Elapsed() - Wanted), 8) << "ticks that an eighth of a bit lacks are made up for";
}

TEST(ChipOfEachFamily, KnowsItsCommandsAndNoOthers)
{
    std::set<int> FullSpeed = {0x80, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87};
    for (const int Order : {0x00, 0x08}) {
        for (int Edges = 0; Edges < 8; ++Edges) {
            const int Flags = Order | (Edges & 1) | (Edges & 2) | (Edges & 4);
            FullSpeed.insert({Flags | 0x10, Flags | 0x20, Flags | 0x30});
        }
    }
    for (const int Edges : {0x00, 0x01, 0x04, 0x05}) {
        FullSpeed.insert({0x4A | Edges, 0x6A | Edges});
    }
    std::set<int> HighSpeed = FullSpeed;
    HighSpeed.insert({0x8A, 0x8B, 0x8C, 0x8D, 0x8E, 0x8F, 0x96, 0x97});

    for (const ChipFamily Family : AllFamilies) {
        const std::set<int>& Known = Family == ChipFamily::FT2232D ? FullSpeed : HighSpeed;
        for (int Opcode = 0; Opcode <= 0xFF; ++Opcode) {
            EchoPins Wires;
            EmulatedChip Engine(Family, Wires);
            const auto Byte = static_cast<std::uint8_t>(Opcode);
            Engine.Write(Bytes{Byte});
            const bool Refused = AnswersOf(Engine) == Bytes{0xFA, Byte};
            EXPECT_EQ(Refused, !Known.contains(Opcode)) << FactsOf(Family).Name << ' ' << Opcode;
        }
    }
}

TEST_F(Chip, GoesOnAfterABadCommand)
{
    EXPECT_EQ(AnswersTo({0xAA, 0x3C, 0x00, 0x00, 0x12, 0xAB}), (Bytes{0xFA, 0xAA, 0x12, 0xFA, 0xAB}));
}

TEST(ChipInFragments, DoesTheSameWhereverTheCommandsAreCut)
{
    const Bytes Commands = {0x80, 0x03, 0x0B, 0x8A, 0x86, 0x02, 0x00, 0x3C, 0x04, 0x00, 0x80, 0x12, 0x34, 0x86, 0xAA,
                            0x87, 0xAA, 0x34, 0x02, 0x00, 0x80, 0x12, 0xAA, 0x3E, 0x03, 0x05, 0x28, 0x01, 0x00, 0x22,
                            0x06, 0x81, 0x8E, 0x02, 0x8F, 0x00, 0x00, 0x6B, 0x02, 0x81, 0x82, 0x10, 0x10, 0x83, 0x84,
                            0x18, 0x00, 0x00, 0x55, 0x80, 0x00, 0x0B, 0x19, 0x01, 0x00, 0x0F, 0xF0};
    EchoPins WholeWires;
    EmulatedChip Whole(ChipFamily::FT2232H, WholeWires);
    std::vector<std::string> WholeTrace;
    Whole.TraceTo([&](std::string_view Line) { WholeTrace.emplace_back(Line); });
    Whole.Write(Commands);
    const Bytes WholeAnswers = AnswersOf(Whole);
    ASSERT_EQ(WholeAnswers.size(), 5U + 2 + 3 + 1 + 2 + 1 + 1 + 1 + 1);

    for (std::size_t Size = 1; Size < Commands.size(); ++Size) {
        EchoPins Wires;
        EmulatedChip Engine(ChipFamily::FT2232H, Wires);
        std::vector<std::string> Trace;
        Engine.TraceTo([&](std::string_view Line) { Trace.emplace_back(Line); });
        for (auto Rest = std::span(Commands); !Rest.empty(); Rest = Rest.subspan(std::min(Size, Rest.size()))) {
            Engine.Write(Rest.first(std::min(Size, Rest.size())));
        }
        EXPECT_EQ(AnswersOf(Engine), WholeAnswers) << Size;
        EXPECT_EQ(Wires.Stream(), WholeWires.Stream()) << Size;
        EXPECT_EQ(Wires.Levels, WholeWires.Levels) << Size;
        EXPECT_EQ(Trace, WholeTrace) << Size;
    }
}

TEST_F(Chip, KeepsAnswersUntilTheyAreRead)
{
    Engine.Write(Bytes{0x3C, 0x03, 0x00, 0x01, 0x02, 0x03, 0x04});
    Bytes Part(3);
    EXPECT_EQ(Engine.Read(Part), 3U);
    EXPECT_EQ(Part, (Bytes{0x01, 0x02, 0x03}));
    EXPECT_EQ(Engine.Pending(), 1U);
    Engine.Write(Bytes{0x3C, 0x00, 0x00, 0x05});
    EXPECT_EQ(Engine.Read(Part), 2U);
    EXPECT_EQ(Part, (Bytes{0x04, 0x05, 0x03})) << "nothing beyond what there is";
    EXPECT_EQ(Engine.Read(Part), 0U);
}

TEST_F(Chip, PurgeForgetsAnswersAndNothingElse)
{
    Engine.Write(Bytes{0xAA, 0x3C, 0x01, 0x00, 0x01});
    Engine.Purge();
    EXPECT_EQ(Engine.Pending(), 0U);
    EXPECT_EQ(AnswersTo({0x02}), Bytes{0x02});
}

TEST_F(Chip, ResetSwitchesTheEngineOnAnew)
{
    Engine.Write(Bytes{0x8A, 0x8C, 0x84, 0x86, 0x10, 0x00, 0x82, 0x00, 0xFF, 0x80, 0x00, 0xFF, 0xAA, 0x3C, 0xFF, 0xFF});
    Engine.Reset();
    EXPECT_EQ(Wires.Levels.back(), 1);
    EXPECT_EQ(AnswersTo({0x81, 0x83}), (Bytes{0xFF, 0xFF}));
    Wires.PulledLow = {0x0F};
    EXPECT_EQ(AnswersTo({0x80, 0x03, 0x0B, 0x3C, 0x00, 0x00, 0xFF}), Bytes{0xF0});
    EXPECT_EQ(Wires.Calls.back().SampleTicks, 10);

    Engine.Write(Bytes{0x86, 0x01});
    Engine.Reset();
    EXPECT_EQ(AnswersTo({0x81}), Bytes{0xFF});

    Engine.Write(Bytes{0x1A, 0x02, 0x07});
    Engine.Reset();
    Engine.Write(Bytes{0x1A, 0x00, 0x01});
    EXPECT_EQ(Wires.Calls.back().SampleTicks, 1) << "nothing is left to be made up for";
}

} // namespace
} // namespace Pellumo
