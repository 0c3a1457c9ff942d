/// @file
/// Counts what the whole program allocates, and lets an allocation fail. Linking AllocationCounter.cpp replaces the
/// global operator new.
#pragma once

#include <cstddef>
#include <optional>

namespace Tarvix::Testing {

/// Allocations since the program started.
std::size_t Allocations() noexcept;
/// Bytes that are allocated now.
std::size_t LiveBytes() noexcept;
/// The most bytes that were allocated at any time since `ResetPeak`.
std::size_t PeakBytes() noexcept;
/// Starts a new peak at what is allocated now.
void ResetPeak() noexcept;

/// From now on lets the one allocation fail that has `Before` others before it; nothing: none.
/// @return whether the one asked for earlier has failed
bool FailAllocation(std::optional<std::size_t> Before) noexcept;

} // namespace Tarvix::Testing
