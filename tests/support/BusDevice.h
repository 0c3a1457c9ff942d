/// @file
/// A device that has a simulated bus on its pins and no chip in between.
#pragma once

#include "pellumo/emulation/Pins.h"
#include "tarvix/signalling/FTDIMPSSE.h"

#include <cmath>
#include <vector>

namespace Pellumo::Testing {

/// The clock is that of a 60 MHz chip: 30 MHz / (1 + divisor).
class BusDevice : public Tarvix::FTDIMPSSE {
public:
    /// @param Bus  held, not owned
    explicit BusDevice(Pins& Bus) noexcept : Bus_(Bus) {}

    void ConfigurePins(std::uint8_t /*Levels*/, std::uint8_t /*Directions*/) override {}
    void SetOption(std::int32_t /*Option*/) override {}
    std::int32_t DivisorForFrequency(double Frequency) override
    {
        return static_cast<std::int32_t>(std::lround(30e6 / Frequency)) - 1;
    }
    void SetClockDivisor(std::int32_t Divisor) override { SampleTicks_ = std::int64_t{2} * (Divisor + 1); }
    double FrequencyForDivisor(std::int32_t Divisor) override { return 30e6 / (1.0 + Divisor); }
    void SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t /*LSBFirst*/,
                     std::int32_t /*WriteEdge*/) override
    {
        Bus_.Clock(Samples.first(static_cast<std::size_t>(ByteCount)), {}, SampleTicks_);
    }
    void ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t /*LSBFirst*/,
                         std::int32_t /*WriteEdge*/, std::int32_t /*ReadEdge*/) override
    {
        const auto Stream = Samples.first(static_cast<std::size_t>(ByteCount));
        const std::vector<std::uint8_t> Out(Stream.begin(), Stream.end());
        Bus_.Clock(Out, Stream, SampleTicks_);
    }
    void Close() override {}

private:
    Pins& Bus_;
    std::int64_t SampleTicks_ = 2;
};

} // namespace Pellumo::Testing
