/// @file
/// Sample streams as runs of equal levels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace Pellumo {

/// The level of sample `Index`.
int SampleAt(std::span<const std::uint8_t> Samples, std::size_t Index) noexcept;

/// The first sample after `Index` whose level differs from that of sample `Index`; the number of samples if there is
/// none.
std::size_t EndOfRun(std::span<const std::uint8_t> Samples, std::size_t Index) noexcept;

/// Sets the samples [First, End) to `Level`.
void FillSamples(std::span<std::uint8_t> Samples, std::size_t First, std::size_t End, int Level) noexcept;

} // namespace Pellumo
