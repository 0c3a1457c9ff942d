/// @file
/// The one fake device of the library's tests: it records every call, plays back what it is told, and fails on command.
#pragma once

#include "tarvix/signalling/FTDIMPSSE.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Tarvix::Testing {

/// Without further orders it is a bus that echoes: what goes out comes back.
class FakeDevice : public FTDIMPSSE {
public:
    using Bytes = std::vector<std::uint8_t>;

    /// Every call in order, as text: "ConfigurePins 3 11", "SetOption 0", "DivisorForFrequency", "SetClockDivisor 195",
    /// "FrequencyForDivisor 195", "SendSamples 14 1 0", "ExchangeSamples 64 1 0 0", "Close".
    std::vector<std::string> Calls;
    /// The arrays of every SendSamples and ExchangeSamples as they went out, whole: a stream fills its array.
    std::vector<Bytes> Sent;
    /// The frequencies asked of DivisorForFrequency.
    std::vector<double> Frequencies;

    /// Called with the samples of an exchange; it turns them into what the bus read. Empty: echo.
    std::function<void(std::span<std::uint8_t>)> Bus;
    /// Called at the start of every operation with the number of calls before it; what it throws leaves the operation.
    std::function<void(std::size_t)> BeforeCall;
    /// What FrequencyForDivisor answers; the default is the clock of a 60 MHz engine.
    std::function<double(std::int32_t)> ClockOf = [](std::int32_t Divisor) { return 30e6 / (1.0 + Divisor); };

    void ConfigurePins(std::uint8_t Levels, std::uint8_t Directions) override;
    void SetOption(std::int32_t Option) override;
    std::int32_t DivisorForFrequency(double Frequency) override;
    void SetClockDivisor(std::int32_t Divisor) override;
    double FrequencyForDivisor(std::int32_t Divisor) override;
    void SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                     std::int32_t WriteEdge) override;
    void ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                         std::int32_t WriteEdge, std::int32_t ReadEdge) override;
    void Close() override;

private:
    void Record(std::string Call);
};

} // namespace Tarvix::Testing
