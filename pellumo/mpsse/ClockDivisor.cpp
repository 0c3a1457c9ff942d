#include "pellumo/mpsse/ClockDivisor.h"

#include "tarvix/common/CheckedArithmetic.h"
#include "tarvix/common/FloatingPoint.h"

#include <cmath>

namespace Pellumo {

namespace {

constexpr double FastestClock(bool HighSpeed) noexcept
{
    return HighSpeed ? 30e6 : 6e6;
}

// In the default floating-point environment; volatile keeps the division between the switches of the environment.
double Divide(double Numerator, double Denominator) noexcept
{
    const Tarvix::DefaultFloatingPoint Guard;
    const volatile double Dividend = Numerator;
    const volatile double Divisor = Denominator;
    const volatile double Result = Dividend / Divisor;
    return Result;
}

} // namespace

std::optional<std::int32_t> NearestDivisor(double Frequency, bool HighSpeed) noexcept
{
    if (!std::isfinite(Frequency) || Frequency <= 0.0) {
        return std::nullopt;
    }
    const Tarvix::DefaultFloatingPoint Guard;
    const volatile double OnePlusDivisor = Divide(FastestClock(HighSpeed), Frequency);
    const volatile double Exact = OnePlusDivisor - 1.0;
    const double Divisor = Tarvix::RoundHalfEven(Exact);
    if (Divisor < 0.0 || Divisor > double{LargestDivisor}) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(Divisor);
}

double FrequencyOf(std::int32_t Divisor, bool HighSpeed) noexcept
{
    return Divide(FastestClock(HighSpeed), 1.0 + Divisor);
}

} // namespace Pellumo
