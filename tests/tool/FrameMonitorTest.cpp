#include "tools/tarvix/FrameMonitor.h"

#include "tools/tarvix/FrameFailure.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace Tarvix::Tool {

namespace {

Error Raised(std::uint32_t Number)
{
    return {static_cast<std::int32_t>(Number), "source", "description"};
}

constexpr std::uint32_t Framing = 0x8004C3F1;
constexpr std::uint32_t RxChecksum = 0x8004C3B8;
constexpr std::uint32_t CommandSyntax = 0x8004C3CE;
constexpr std::uint32_t IndexOutOfRange = 9;

class FrameMonitorTest : public testing::Test {
protected:
    static constexpr std::array<std::uint8_t, 10> Bytes = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};

    /// A read that `Count` bytes answered.
    void Read(std::size_t Count, Pellumo::ResponseFault Fault = Pellumo::ResponseFault::None)
    {
        Pellumo::BusEvent Event;
        Event.Kind = Pellumo::BusEventKind::Read;
        Event.ProtectedIdentifier = 0x7D;
        Event.Received = std::span(Bytes).first(Count);
        Event.Fault = Fault;
        Monitor_.OnEvent(Event);
    }
    void Other(Pellumo::BusEventKind Kind)
    {
        Pellumo::BusEvent Event;
        Event.Kind = Kind;
        Monitor_.OnEvent(Event);
    }

    std::vector<FrameReport> Seen_;
    FrameMonitor Monitor_{[this](const FrameReport& Frame) { Seen_.push_back(Frame); }};
};

TEST_F(FrameMonitorTest, AFrameWaitsUntilItsOperationIsOver)
{
    Read(3);
    EXPECT_TRUE(Seen_.empty());
    Monitor_.Settle();
    ASSERT_EQ(Seen_.size(), 1U);
    EXPECT_EQ(Seen_[0].Data, (std::vector<std::uint8_t>{1, 2}));
    EXPECT_EQ(Seen_[0].Checksum, 3);
    EXPECT_FALSE(Seen_[0].Failure);
    Monitor_.Settle();
    EXPECT_EQ(Seen_.size(), 1U);
}

TEST_F(FrameMonitorTest, WhateverIsNextOnTheBusSettlesAFrame)
{
    Read(3);
    Other(Pellumo::BusEventKind::Wait);
    EXPECT_EQ(Seen_.size(), 1U);
    Read(2);
    Read(1);
    EXPECT_EQ(Seen_.size(), 2U);
}

TEST_F(FrameMonitorTest, WaitsAndBreaksAreNoFrames)
{
    for (const auto Kind : {Pellumo::BusEventKind::Wait, Pellumo::BusEventKind::Break, Pellumo::BusEventKind::Other}) {
        Other(Kind);
        Monitor_.Settle();
    }
    EXPECT_TRUE(Seen_.empty());
}

TEST_F(FrameMonitorTest, AResponseThatBreaksOffHasNoChecksum)
{
    Read(2, Pellumo::ResponseFault::StopBit);
    Monitor_.Fail(Raised(Framing));
    ASSERT_EQ(Seen_.size(), 1U);
    EXPECT_EQ(Seen_[0].Data, (std::vector<std::uint8_t>{1, 2}));
    EXPECT_FALSE(Seen_[0].Checksum);
}

TEST_F(FrameMonitorTest, HearsNothingWhenEverythingStaysRecessive)
{
    const std::array<std::uint8_t, 2> Recessive = {0xFF, 0xFF};
    const std::array<std::uint8_t, 2> OneSample = {0xFF, 0x7F};
    const auto Write = [this](std::span<const std::uint8_t> Rx) {
        Pellumo::BusEvent Event;
        Event.Kind = Pellumo::BusEventKind::Write;
        Event.Stream.Rx = Rx;
        Monitor_.OnEvent(Event);
    };
    Other(Pellumo::BusEventKind::Wait);
    EXPECT_FALSE(Monitor_.HearsNothing()) << "nothing that could come back";
    Write(Recessive);
    EXPECT_TRUE(Monitor_.HearsNothing());
    Write(OneSample);
    Write(Recessive);
    EXPECT_FALSE(Monitor_.HearsNothing());
}

struct BlameCase {
    std::string Name;
    std::uint32_t Number;
    std::size_t Received;
    bool Blamed;
};

class Blame : public FrameMonitorTest, public testing::WithParamInterface<BlameCase> {};
TEST_P(Blame, FallsOnTheFrameOnlyForItsOwnFailure)
{
    Read(GetParam().Received);
    Monitor_.Fail(Raised(GetParam().Number));
    ASSERT_EQ(Seen_.size(), 1U);
    EXPECT_EQ(Seen_[0].Failure.has_value(), GetParam().Blamed);
}
INSTANTIATE_TEST_SUITE_P(
    Each, Blame,
    testing::Values(BlameCase{"Framing", Framing, 1, true}, BlameCase{"Corrupted", 0x8004C3F2, 1, true},
                    BlameCase{"TooLate", 0x8004C419, 1, true}, BlameCase{"Checksum", RxChecksum, 3, true},
                    BlameCase{"Length", 0x8004C3B9, 3, true}, BlameCase{"DataCheck", 0x8004C3D0, 3, true},
                    BlameCase{"NoResponse", 0x8004C3D1, 0, true},
                    BlameCase{"NextCommandsSyntax", CommandSyntax, 3, false},
                    BlameCase{"NextCommandsLength", 0x8004C3B5, 3, false},
                    BlameCase{"TooManyBytes", IndexOutOfRange, 10, true},
                    BlameCase{"NextCommandsEmptyBytes", IndexOutOfRange, 9, false}),
    [](const auto& Info) { return Info.param.Name; });

TEST(FrameFailure, SilenceIsToldInWords)
{
    EXPECT_EQ(Headline(NoResponse()),
              "No response: header sent, no response within the 14 byte slots (0x8004C3D1, tarvix).");
    EXPECT_EQ(Headline(Raised(RxChecksum)), "description (0x8004C3B8, source).");
}

} // namespace

} // namespace Tarvix::Tool
