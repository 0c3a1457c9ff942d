/// @file
/// Counts what the whole program allocates. Linking AllocationCounter.cpp replaces the global operator new.
#pragma once

#include <cstddef>

namespace Tarvix::Testing {

/// Allocations since the program started.
std::size_t Allocations() noexcept;
/// Bytes that are allocated now.
std::size_t LiveBytes() noexcept;
/// The most bytes that were allocated at any time since `ResetPeak`.
std::size_t PeakBytes() noexcept;
/// Starts a new peak at what is allocated now.
void ResetPeak() noexcept;

} // namespace Tarvix::Testing
