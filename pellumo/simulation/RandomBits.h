/// @file
/// Random numbers that are the same on every platform.
#pragma once

#include <cstdint>

namespace Pellumo {

/// Number `Index` of the sequence that belongs to `Seed`: the SplitMix64 generator (Steele, Lea, Flood: Fast Splittable
/// Pseudorandom Number Generators, 2014), which reaches each of its numbers directly.
constexpr std::uint64_t RandomBits(std::uint64_t Seed, std::uint64_t Index) noexcept
{
    std::uint64_t Bits = Seed + (Index + 1) * 0x9E3779B97F4A7C15U;
    Bits = (Bits ^ Bits >> 30) * 0xBF58476D1CE4E5B9U;
    Bits = (Bits ^ Bits >> 27) * 0x94D049BB133111EBU;
    return Bits ^ Bits >> 31;
}

} // namespace Pellumo
