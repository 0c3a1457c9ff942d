/// @file
/// The fuzzers' device.
#pragma once

#include "tarvix/signalling/FTDIMPSSE.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <utility>
#include <vector>

namespace Tarvix::Fuzzing {

/// A bus that echoes, and keeps what was asked of it. Its clock is that of a 60 MHz engine.
class StreamDevice final : public FTDIMPSSE {
public:
    /// Every divisor set, and every stream with the divisor that it was clocked with.
    struct Call {
        std::int32_t Divisor = 0;
        bool IsRead = false;
        std::vector<std::uint8_t> Samples;

        bool operator==(const Call&) const = default;
    };
    std::vector<Call> Calls;
    /// Turns what goes out in an exchange into what is read; empty: an echo.
    std::function<void(std::span<std::uint8_t>)> Bus;

    void ConfigurePins(std::uint8_t /*Levels*/, std::uint8_t /*Directions*/) override {}
    void SetOption(std::int32_t /*Option*/) override {}
    std::int32_t DivisorForFrequency(double Frequency) override
    {
        const double Divisor = std::nearbyint(30e6 / Frequency - 1.0);
        return Divisor >= 0.0 && Divisor <= 65535.0 ? static_cast<std::int32_t>(Divisor) : 0;
    }
    void SetClockDivisor(std::int32_t Divisor) override { Calls.push_back({Divisor_ = Divisor, false, {}}); }
    double FrequencyForDivisor(std::int32_t Divisor) override { return 30e6 / (1.0 + Divisor); }
    void SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t /*LSBFirst*/,
                     std::int32_t /*WriteEdge*/) override
    {
        Keep(Samples.first(static_cast<std::size_t>(ByteCount)), false);
    }
    void ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t /*LSBFirst*/,
                         std::int32_t /*WriteEdge*/, std::int32_t /*ReadEdge*/) override
    {
        const auto Stream = Samples.first(static_cast<std::size_t>(ByteCount));
        Keep(Stream, true);
        if (Bus) {
            Bus(Stream);
        }
    }
    void Close() override {}

private:
    void Keep(std::span<const std::uint8_t> Stream, bool IsRead)
    {
        Calls.push_back({Divisor_, IsRead, {Stream.begin(), Stream.end()}});
    }

    std::int32_t Divisor_ = -1;
};

/// Inverts the samples that are 1 in `Disturbance`; beyond its end the bus is in order.
inline void Disturb(std::span<std::uint8_t> Stream, std::span<const std::uint8_t> Disturbance) noexcept
{
    for (std::size_t i = 0; i < Stream.size() && i < Disturbance.size(); ++i) {
        Stream[i] = static_cast<std::uint8_t>(Stream[i] ^ Disturbance[i]);
    }
}

} // namespace Tarvix::Fuzzing
