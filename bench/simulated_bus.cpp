#include "pellumo/simulation/ExampleBus.h"
#include "pellumo/simulation/SimulatedBus.h"
#include "tests/pellumo/simulation/CommanderStream.h"

#include <benchmark/benchmark.h>

namespace {

using namespace Pellumo;
using Testing::Bytes;
using Testing::CommanderStream;

constexpr Tick Ticks19200 = 390;
constexpr double WireSamplesPerSecond = 60e6 / static_cast<double>(Ticks19200);

/// Streams as a commander sends them one after the other, all of them read back. The four nodes of the example bus
/// answer, copy, or have nothing to say.
class Traffic {
public:
    Traffic& Request(std::uint8_t ProtectedIdentifier)
    {
        Streams_.push_back(CommanderStream().Request(ProtectedIdentifier).Data());
        return *this;
    }
    Traffic& Frame(std::uint8_t ProtectedIdentifier, const Bytes& Response)
    {
        Streams_.push_back(CommanderStream().Frame(ProtectedIdentifier, Response).Data());
        return *this;
    }

    /// Clocks every stream once; returns the number of samples.
    std::int64_t Run(SimulatedBus& Bus)
    {
        std::int64_t Samples = 0;
        for (const Bytes& Stream : Streams_) {
            In_.resize(Stream.size());
            Bus.Clock(Stream, In_, Ticks19200);
            benchmark::DoNotOptimize(In_.data());
            Samples += static_cast<std::int64_t>(Stream.size() * 8);
        }
        return Samples;
    }

private:
    std::vector<Bytes> Streams_;
    Bytes In_;
};

void Run(benchmark::State& State, Traffic Frames)
{
    SimulatedBus Bus(ExampleBus());
    std::int64_t Samples = 0;
    for (auto _ : State) {
        Samples += Frames.Run(Bus);
    }
    State.SetItemsProcessed(Samples);
    State.counters["times_faster_than_19200_Bd"] =
        benchmark::Counter(static_cast<double>(Samples) / WireSamplesPerSecond, benchmark::Counter::kIsRate);
}

/// Reads and writes as on a busy bus: answers of 1, 2, 4 and 8 bytes, a copied frame, an identifier without an answer.
void MixedTraffic(benchmark::State& State)
{
    Traffic Frames;
    Frames.Frame(0x20, {0x01, 0x02, 0xDC})
        .Request(0x61)
        .Request(0x7D)
        .Request(0x11)
        .Request(0x85)
        .Request(0xF0)
        .Frame(0xE2, {0x10, 0x20, 0x30, 0x40, 0x50, 0x60, 0x70, 0x80, 0x5A})
        .Request(0x08);
    Run(State, Frames);
}
BENCHMARK(MixedTraffic);

/// The most edges that a frame can have: nothing but alternating bits, received by a node that copies the frame.
void BusiestFrame(benchmark::State& State)
{
    Run(State, Traffic().Frame(0xE2, Bytes(9, 0x55)));
}
BENCHMARK(BusiestFrame);

/// A request that nobody answers.
void SilentRequest(benchmark::State& State)
{
    Run(State, Traffic().Request(0x08));
}
BENCHMARK(SilentRequest);

} // namespace
