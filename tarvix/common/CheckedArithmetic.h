/// @file
/// 32-bit arithmetic that never wraps, and the one way in which fractions become whole numbers: to the nearest, halves
/// to the even neighbour. What does not fit its type raises the overflow error.
#pragma once

#include "tarvix/common/Raise.h"

#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <utility>

namespace Tarvix {

/// `Value` as a `To`.
template <std::integral To>
constexpr To CheckedNarrow(std::int64_t Value)
{
    if (!std::in_range<To>(Value)) {
        Raise(errGeneral::errOverflow);
    }
    return static_cast<To>(Value);
}

/// A + B.
constexpr std::int32_t CheckedAdd(std::int32_t A, std::int32_t B)
{
    return CheckedNarrow<std::int32_t>(std::int64_t{A} + B);
}

/// A * B.
constexpr std::int32_t CheckedMultiply(std::int32_t A, std::int32_t B)
{
    return CheckedNarrow<std::int32_t>(std::int64_t{A} * B);
}

/// `Value` rounded half to even, whatever rounding mode the host has set; NaN and the infinities pass through.
inline double RoundHalfEven(double Value) noexcept
{
    const double Whole = std::trunc(Value);
    const double Fraction = std::fabs(Value - Whole); // exact in every rounding mode
    if (Fraction > 0.5 || (Fraction == 0.5 && std::fmod(Whole, 2.0) != 0.0)) {
        return Whole + std::copysign(1.0, Value);
    }
    return Whole;
}

/// `Value` rounded half to even, as a `To`; NaN raises the overflow error, too.
template <std::integral To>
requires(sizeof(To) <= sizeof(std::int32_t)) To RoundTo(double Value)
{
    const double Rounded = RoundHalfEven(Value);
    if (!(Rounded >= double{std::numeric_limits<To>::min()} && Rounded <= double{std::numeric_limits<To>::max()})) {
        Raise(errGeneral::errOverflow);
    }
    return static_cast<To>(Rounded);
}

} // namespace Tarvix
