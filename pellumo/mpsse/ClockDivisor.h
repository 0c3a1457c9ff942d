/// @file
/// The sample clock of the engine: base clock / 2 / (1 + divisor), with a base of 60 MHz on high-speed chips and of
/// 12 MHz on others.
#pragma once

#include <cstdint>
#include <optional>

namespace Pellumo {

/// The largest divisor; the smallest is 0.
inline constexpr std::int32_t LargestDivisor = 65535;

/// True for a divisor that the engine takes.
constexpr bool IsDivisor(std::int32_t Divisor) noexcept
{
    return Divisor >= 0 && Divisor <= LargestDivisor;
}

/// The divisor nearest to the one that would give `Frequency` (Hz) exactly, halves to the even neighbour; nothing when
/// there is none from 0 to `LargestDivisor`. Any value may be asked for, NaN included, in any floating-point
/// environment.
std::optional<std::int32_t> NearestDivisor(double Frequency, bool HighSpeed) noexcept;

/// The sample clock in Hz that `Divisor` gives, to the nearest 64-bit float.
double FrequencyOf(std::int32_t Divisor, bool HighSpeed) noexcept;

} // namespace Pellumo
