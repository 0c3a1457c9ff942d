/// @file
/// Floating-point arithmetic that gives the same result whatever rounding mode, flush-to-zero mode or traps the host
/// has set: everything here computes in the default environment and leaves the host's as it was.
#pragma once

#include <cfenv>
#if defined(__MINGW64__)
#include <xmmintrin.h>
#endif

namespace Tarvix {

/// While it lives, the thread computes in the default floating-point environment.
class DefaultFloatingPoint {
public:
    DefaultFloatingPoint() noexcept
    {
        std::fegetenv(&Host_);
        std::fesetenv(FE_DFL_ENV);
#if defined(__MINGW64__)
        _mm_setcsr(0x1F80); // MinGW's default environment leaves out the unit that computes, and its control register
#endif
    }
    ~DefaultFloatingPoint()
    {
        std::fesetenv(&Host_);
    }
    DefaultFloatingPoint(const DefaultFloatingPoint&) = delete;
    DefaultFloatingPoint& operator=(const DefaultFloatingPoint&) = delete;

private:
    std::fenv_t Host_{};
};

/// Numerator / Denominator, to the nearest 64-bit float.
/// @throws Error  errDivisionByZero
double Quotient(double Numerator, double Denominator);

/// The nearest 32-bit float.
/// @throws Error  errOverflow when a finite `Value` lies beyond the 32-bit float range
float NarrowToFloat(double Value);

} // namespace Tarvix
