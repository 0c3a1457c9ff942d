#include "pellumo/emulation/EmulatedTransport.h"
#include "pellumo/mpsse/MPSSEDevice.h"

#include <benchmark/benchmark.h>

#include <algorithm>

namespace {

using namespace Pellumo;

/// Wires that cost next to nothing: what is driven is read back.
class BareWires final : public Pins {
public:
    void Clock(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In, std::int64_t /*SampleTicks*/) override
    {
        std::copy_n(Out.begin(), In.size(), In.begin());
    }
    void SetLevel(int /*Level*/) override {}
};

/// Device, transport, decoder and chip, there and back. 174 bytes are a read with an empty response period; the full
/// command is 65,536 bytes.
void Exchange(benchmark::State& State, std::int32_t LSBFirst)
{
    BareWires Wires;
    MPSSEDevice Device(
        std::make_unique<EmulatedTransport>(std::make_shared<EmulatedChip>(ChipFamily::FT232H, Wires), "sim:"),
        ChipFamily::FT232H);
    Device.ConfigurePins(0x03, 0x0B);
    Device.SetOption(0);
    Device.SetClockDivisor(194);
    std::vector<std::uint8_t> Samples(static_cast<std::size_t>(State.range(0)), 0xF0);
    for ([[maybe_unused]] auto Iteration : State) {
        Device.ExchangeSamples(Samples, static_cast<std::int32_t>(Samples.size()), LSBFirst, 0, 0);
        benchmark::DoNotOptimize(Samples.data());
    }
    State.SetBytesProcessed(State.iterations() * State.range(0));
}
BENCHMARK_CAPTURE(Exchange, LSBFirst, 1)->Arg(174)->Arg(65536);
BENCHMARK_CAPTURE(Exchange, MSBFirst, 0)->Arg(174)->Arg(65536);

} // namespace
