/// @file
/// A device that lets a run end between two frames.
#pragma once

#include "tarvix/signalling/FTDIMPSSE.h"

namespace Tarvix::Tool {

/// Passes every call on unchanged, but before anything goes on the bus it asks whether the run is to end.
class InterruptibleDevice final : public FTDIMPSSE {
public:
    /// @param Device  held, not owned
    explicit InterruptibleDevice(FTDIMPSSE& Device) noexcept : Device_(Device) {}

    void ConfigurePins(std::uint8_t Levels, std::uint8_t Directions) override;
    void SetOption(std::int32_t Option) override;
    std::int32_t DivisorForFrequency(double Frequency) override;
    void SetClockDivisor(std::int32_t Divisor) override;
    double FrequencyForDivisor(std::int32_t Divisor) override;
    /// @throws Interrupted  nothing was sent then
    void SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                     std::int32_t WriteEdge) override;
    /// @throws Interrupted  nothing was sent then
    void ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                         std::int32_t WriteEdge, std::int32_t ReadEdge) override;
    void Close() override;

private:
    FTDIMPSSE& Device_;
};

} // namespace Tarvix::Tool
