/// @file
/// Devices written in Python.
#pragma once

#include "tarvix/signalling/FTDIMPSSE.h"

#include <pybind11/pybind11.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace Tarvix::Python {

/// Hands each operation to the method of that name of a Python subclass of `FTDIMPSSE`.
class PythonDevice final : public FTDIMPSSE {
public:
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
    pybind11::function Method(const char* Name) const;
    template <typename Result>
    Result Ask(const char* Name, const pybind11::object& Value) const;
};

/// The first `ByteCount` bytes of `Samples`.
/// @throws pybind11::value_error  when they are not there
template <typename Byte>
std::span<Byte> Clocked(std::span<Byte> Samples, std::int32_t ByteCount)
{
    if (ByteCount < 0 || static_cast<std::size_t>(ByteCount) > Samples.size()) {
        throw pybind11::value_error("ByteCount must be 0 to the number of bytes in Samples");
    }
    return Samples.first(static_cast<std::size_t>(ByteCount));
}

} // namespace Tarvix::Python
