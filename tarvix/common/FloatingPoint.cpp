#include "tarvix/common/FloatingPoint.h"

#include "tarvix/common/Raise.h"

#include <cmath>
#include <limits>

namespace Tarvix {

// The operands and results are volatile so that the compiler cannot move the one operation that matters across the
// switches of the environment.

double Quotient(double Numerator, double Denominator)
{
    if (Denominator == 0.0) {
        Raise(errGeneral::errDivisionByZero);
    }
    const DefaultFloatingPoint Guard;
    const volatile double Dividend = Numerator;
    const volatile double Divisor = Denominator;
    const volatile double Result = Dividend / Divisor;
    return Result;
}

float NarrowToFloat(double Value)
{
    // Half a step above the largest float is where rounding to nearest would give infinity.
    constexpr double Limit = 0x1.ffffffp+127;
    if (std::isfinite(Value) && std::fabs(Value) >= Limit) {
        Raise(errGeneral::errOverflow);
    }
    const DefaultFloatingPoint Guard;
    const volatile double Wide = Value;
    const volatile float Result = static_cast<float>(Wide);
    return Result;
}

} // namespace Tarvix
