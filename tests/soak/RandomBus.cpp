#include "tests/soak/RandomBus.h"

#include <cstddef>
#include <numeric>
#include <utility>

namespace Pellumo::Testing {

using Tarvix::Testing::Random;

namespace {

constexpr std::int32_t LongestTrouble = 1000; // samples; the bus is quiet again before the next frame

/// Percent; a commander that keeps its clock always understands such nodes.
double AnyClockError(Random& Any)
{
    return Any.Between(-300, 300) / 100.0;
}

std::uint8_t AnyDisturbedFrame(Random& Any)
{
    return static_cast<std::uint8_t>(FirstDisturbedFrame + Any.Between(0, DisturbedFrames - 1));
}

SlaveDescription SteadyNode(Random& Any)
{
    SlaveDescription Node{.Name = "steady", .ClockError = AnyClockError(Any), .Frames = {}};
    for (std::uint8_t Identifier = 0; Identifier < SteadyFrames; ++Identifier) {
        Node.Frames.push_back({.Identifier = Identifier, .Data = SteadyData(Identifier)});
    }
    Node.Frames.push_back({.Identifier = CopyingFrame, .Copies = WrittenFrame});
    return Node;
}

SlaveDescription DisturbedNode(Random& Any)
{
    SlaveDescription Node{.Name = "disturbed", .ClockError = AnyClockError(Any), .Frames = {}};
    for (std::uint8_t k = 0; k < DisturbedFrames; ++k) {
        std::vector<std::uint8_t> Data(static_cast<std::size_t>(Any.Between(1, 8)));
        for (std::uint8_t& Byte : Data) {
            Byte = Any.Byte();
        }
        Node.Frames.push_back(
            {.Identifier = static_cast<std::uint8_t>(FirstDisturbedFrame + k), .Data = std::move(Data)});
    }
    return Node;
}

WireFault AnyWireFault(Random& Any)
{
    WireFault Fault;
    Fault.Kind = static_cast<WireFault::Effect>(Any.Between(0, 3));
    Fault.Place.Frame = AnyDisturbedFrame(Any);
    if (*Fault.Place.Frame % 2 == 1) {
        Fault.Place.Byte = 0; // only where one always comes
    }
    Fault.Place.Sample = Any.Between(0, 200);
    Fault.Length = Any.Between(1, LongestTrouble);
    Fault.Probability = Any.Between(1, 50) / 1000.0;
    return Fault;
}

AnswerFault AnyAnswerFault(Random& Any, std::uint8_t Frame)
{
    return {.Kind = static_cast<AnswerFault::Effect>(Any.Between(0, 2)), .Frame = Frame, .Bytes = Any.Between(1, 8)};
}

} // namespace

std::vector<std::uint8_t> SteadyData(std::uint8_t Identifier)
{
    std::vector<std::uint8_t> Data(Identifier % 8 + 1U);
    std::iota(Data.begin(), Data.end(), static_cast<std::uint8_t>(Identifier * 37));
    return Data;
}

BusDescription RandomBus(Random& Any)
{
    BusDescription Bus{.Slaves = {SteadyNode(Any), DisturbedNode(Any)}, .Seed = Any.Next()};
    for (int k = 0; k < 2 * DisturbedFrames; ++k) {
        Bus.WireFaults.push_back(AnyWireFault(Any));
    }
    // Those with even numbers, so that the others always answer.
    for (std::uint8_t k = 0; k < DisturbedFrames; k = static_cast<std::uint8_t>(k + 2)) {
        Bus.AnswerFaults.push_back(AnyAnswerFault(Any, static_cast<std::uint8_t>(FirstDisturbedFrame + k)));
    }
    for (int k = 0; k < DisturbedFrames / 4; ++k) {
        Bus.Collisions.push_back({.Frame = AnyDisturbedFrame(Any), .ResponseSpace = Any.Between(0, 80) / 8.0});
    }
    return Bus;
}

} // namespace Pellumo::Testing
