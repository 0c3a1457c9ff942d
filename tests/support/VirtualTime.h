/// @file
/// Time as the emulated hardware counts it: it passes when somebody waits, and only then.
#pragma once

#include <chrono>
#include <cstdint>
#include <ratio>

namespace Pellumo::Testing {

/// 1/60 MHz: every sample clock of every chip is a whole number of these.
using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 60'000'000>>;

} // namespace Pellumo::Testing
