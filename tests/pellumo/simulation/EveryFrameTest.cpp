// Every identifier with every length and both checksum models, through the whole library and back.

#include "pellumo/simulation/SimulatedBus.h"
#include "tarvix/master/clsLIN.h"
#include "tests/support/BusDevice.h"
#include "tests/support/Errors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <tuple>

namespace Pellumo {
namespace {

using namespace Tarvix::Testing;
using Tarvix::clsLIN;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t Identifiers = 0x40;

/// Other data for every identifier, length and place.
Bytes DataOf(std::uint8_t Identifier, std::size_t Length)
{
    Bytes Data(Length);
    std::iota(Data.begin(), Data.end(), static_cast<std::uint8_t>(Identifier * std::size_t{4} + Length * 29));
    return Data;
}

/// The inverted sum, with carries added again.
std::uint8_t ChecksumOf(int Start, const Bytes& Data)
{
    const int Sum = std::accumulate(Data.begin(), Data.end(), Start);
    return static_cast<std::uint8_t>(Sum == 0 ? 0xFF : 0xFE - (Sum - 1) % 255);
}

Bytes Received(const clsLIN& Master)
{
    const auto Data = Master.Data();
    return {Data.begin(), Data.begin() + Master.DataLength()};
}

/// A master at a bus with one node.
struct Bench {
    explicit Bench(std::vector<FrameDescription> Frames)
        : Bus({.Slaves = {{.Name = "node", .Frames = std::move(Frames)}}})
    {
        Master.Initialize(Device);
        Master.BaudrateBd(19200);
    }

    SimulatedBus Bus;
    Testing::BusDevice Device{Bus};
    clsLIN Master;
};

class EveryFrame : public testing::TestWithParam<std::tuple<Tarvix::eLINChecksumMode, std::size_t>> {};
INSTANTIATE_TEST_SUITE_P(ModelsAndLengths, EveryFrame,
                         testing::Combine(testing::Values(Tarvix::elcLIN13, Tarvix::elcLIN20),
                                          testing::Range<std::size_t>(1, 9)));

TEST_P(EveryFrame, IsReadAsItWasAnswered)
{
    const auto [Model, Length] = GetParam();
    std::vector<FrameDescription> Frames;
    for (std::uint8_t Identifier = 0; Identifier < Identifiers; ++Identifier) {
        Frames.push_back({.Identifier = Identifier, .Data = DataOf(Identifier, Length), .Checksum = Model});
    }
    Bench Lin(Frames);
    const auto Count = static_cast<std::int32_t>(Length);
    for (std::uint8_t Identifier = 0; Identifier < Identifiers; ++Identifier) {
        const std::uint8_t Protected = clsLIN::ComputeIDParity(Identifier);
        const Bytes Data = DataOf(Identifier, Length);
        Lin.Master.ChecksumMode(Model);
        EXPECT_TRUE(Lin.Master.ReadFrame(Protected, Count));
        EXPECT_EQ(Lin.Master.ID(), Protected);
        EXPECT_EQ(Received(Lin.Master), Data);
        EXPECT_EQ(Lin.Master.Checksum(), ChecksumOf(Model == Tarvix::elcLIN20 ? Protected : 0, Data));
        Lin.Master.ChecksumMode(Model == Tarvix::elcLIN20 ? Tarvix::elcLIN13 : Tarvix::elcLIN20);
        EXPECT_EQ(FailureOf([&] { Lin.Master.ReadFrame(Protected, Count); }), RxChecksum);
    }
}

TEST_P(EveryFrame, IsReceivedAsItWasWritten)
{
    const auto [Model, Length] = GetParam();
    for (std::uint8_t Identifier = 0; Identifier < Identifiers; ++Identifier) {
        const auto Other = static_cast<std::uint8_t>((Identifier + 1) % Identifiers);
        const std::uint8_t Protected = clsLIN::ComputeIDParity(Identifier);
        const Bytes Data = DataOf(Identifier, Length);
        const auto Count = static_cast<std::int32_t>(Length);
        Bench Lin({{.Identifier = Other, .Copies = Identifier}});
        Lin.Master.ChecksumMode(Model);
        Lin.Master.WriteFrame(Protected, Count, Data);
        EXPECT_EQ(Lin.Master.Checksum(), ChecksumOf(Model == Tarvix::elcLIN20 ? Protected : 0, Data));
        Lin.Master.ChecksumMode(Tarvix::elcLIN20);
        EXPECT_TRUE(Lin.Master.ReadFrame(clsLIN::ComputeIDParity(Other), Count)) << "the node did not take the frame";
        EXPECT_EQ(Received(Lin.Master), Data);
    }
}

} // namespace
} // namespace Pellumo
