// The road of a frame: build the stream, exchange it, decode what came back. The yardstick does the same sample by
// sample and is the reference of the tests. The device only copies, so what is measured is the library.

#include "tarvix/master/clsLIN.h"
#include "tests/support/PlainBuffer.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <vector>

namespace {

using namespace Tarvix;

// Echoes by copying the stream once, as a driver's buffer would.
class CopyingDevice : public FTDIMPSSE {
public:
    void ConfigurePins(std::uint8_t /*Levels*/, std::uint8_t /*Directions*/) override {}
    void SetOption(std::int32_t /*Option*/) override {}
    std::int32_t DivisorForFrequency(double /*Frequency*/) override { return 194; }
    void SetClockDivisor(std::int32_t /*Divisor*/) override {}
    double FrequencyForDivisor(std::int32_t Divisor) override { return 30e6 / (1.0 + Divisor); }
    void SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t /*LSBFirst*/,
                     std::int32_t /*WriteEdge*/) override
    {
        Copy(Samples, ByteCount);
    }
    void ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t /*LSBFirst*/,
                         std::int32_t /*WriteEdge*/, std::int32_t /*ReadEdge*/) override
    {
        Copy(Samples, ByteCount);
        benchmark::DoNotOptimize(Wire_.data());
        benchmark::ClobberMemory();
    }
    void Close() override {}

private:
    void Copy(std::span<const std::uint8_t> Samples, std::int32_t ByteCount)
    {
        std::memcpy(Wire_.data(), Samples.data(), static_cast<std::size_t>(ByteCount));
    }

    std::vector<std::uint8_t> Wire_ = std::vector<std::uint8_t>(65536);
};

constexpr std::array<std::uint8_t, 9> Data = {0x01, 0x80, 0xFF, 0x00, 0x55, 0xAA, 0x7F, 0xFE, 0x11};

void WriteFrame(benchmark::State& State)
{
    CopyingDevice Device;
    clsLIN Master;
    Master.Initialize(Device);
    Master.BreakWidth(static_cast<float>(State.range(0)) / 8);
    for (auto _ : State) {
        Master.WriteFrame(0x20, 8, Data);
    }
}

void PlainWriteFrame(benchmark::State& State)
{
    CopyingDevice Device;
    Testing::PlainEngine Engine(Device);
    for (auto _ : State) {
        Engine.LINTransmit(static_cast<std::int32_t>(State.range(0)), 0x55, 0x20, Data, 9);
    }
}

void ReadFrameWithoutAnswer(benchmark::State& State)
{
    CopyingDevice Device;
    clsLIN Master;
    Master.Initialize(Device);
    for (auto _ : State) {
        benchmark::DoNotOptimize(Master.ReadFrame(0x7D, 8));
    }
}

void PlainReadFrameWithoutAnswer(benchmark::State& State)
{
    CopyingDevice Device;
    Testing::PlainEngine Engine(Device);
    std::array<std::uint8_t, 9> Answer{};
    std::int32_t Received = 0;
    for (auto _ : State) {
        Engine.LINReceive(104, 0x55, 0x7D, Answer, Received);
        benchmark::DoNotOptimize(Received);
    }
}

// Cost in proportion to samples: a wait of n bit times.
void Wait(benchmark::State& State)
{
    CopyingDevice Device;
    clsLIN Master;
    Master.Initialize(Device);
    for (auto _ : State) {
        Master.Wait(static_cast<std::int16_t>(State.range(0)));
    }
    State.SetComplexityN(State.range(0));
}

} // namespace

BENCHMARK(WriteFrame)->Arg(104)->Arg(106);
BENCHMARK(PlainWriteFrame)->Arg(104)->Arg(106);
BENCHMARK(ReadFrameWithoutAnswer);
BENCHMARK(PlainReadFrameWithoutAnswer);
BENCHMARK(Wait)->RangeMultiplier(8)->Range(64, 32767)->Complexity(benchmark::oN);
