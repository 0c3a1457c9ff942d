/// @file
/// The unit of virtual time.
#pragma once

#include <cstdint>
#include <limits>

namespace Pellumo {

/// A moment or a duration in units of 1/60 MHz, in which the sample clock of every chip is a whole number. 64 bits last
/// for 4,800 years.
using Tick = std::int64_t;

/// A moment that does not come.
inline constexpr Tick Never = std::numeric_limits<Tick>::max();

} // namespace Pellumo
