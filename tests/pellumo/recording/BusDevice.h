/// @file
/// A device whose samples go straight to a simulated bus.
#pragma once

#include "pellumo/simulation/SimulatedBus.h"
#include "tarvix/signalling/FTDIMPSSE.h"

#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

namespace Pellumo::Testing {

/// Has the clocks of a 60 MHz engine: a divisor of n gives samples of 2 * (n + 1) ticks.
class BusDevice : public Tarvix::FTDIMPSSE {
public:
    explicit BusDevice(const BusDescription& Description) : Bus_(Description) {}

    void ConfigurePins(std::uint8_t /*Levels*/, std::uint8_t /*Directions*/) override {}
    void SetOption(std::int32_t /*Option*/) override {}
    std::int32_t DivisorForFrequency(double Frequency) override
    {
        return static_cast<std::int32_t>(std::lround(30e6 / Frequency)) - 1;
    }
    void SetClockDivisor(std::int32_t Divisor) override { SampleTicks_ = 2 * (std::int64_t{Divisor} + 1); }
    double FrequencyForDivisor(std::int32_t Divisor) override { return 30e6 / (1.0 + Divisor); }
    void SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t /*LSBFirst*/,
                     std::int32_t /*WriteEdge*/) override
    {
        Bus_.Clock(Samples.first(static_cast<std::size_t>(ByteCount)), {}, SampleTicks_);
    }
    void ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t /*LSBFirst*/,
                         std::int32_t /*WriteEdge*/, std::int32_t /*ReadEdge*/) override
    {
        const std::vector<std::uint8_t> Out(Samples.begin(), Samples.end());
        const auto Count = static_cast<std::size_t>(ByteCount);
        Bus_.Clock(std::span(Out).first(Count), Samples.first(Count), SampleTicks_);
    }
    void Close() override {}

private:
    SimulatedBus Bus_;
    std::int64_t SampleTicks_ = 0;
};

} // namespace Pellumo::Testing
