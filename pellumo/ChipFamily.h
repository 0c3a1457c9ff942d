/// @file
/// What tells one family of MPSSE chips from another.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Pellumo {

/// The chips that have the engine.
enum class ChipFamily : std::uint8_t { FT2232D, FT2232H, FT4232H, FT232H };

/// The facts of one family, from the makers' data sheets.
struct ChipFacts {
    const char* Name;         ///< as printed on the chip
    std::uint16_t USBRelease; ///< bcdDevice of its USB descriptor
    std::uint16_t USBProduct; ///< product identifier that it has when nobody changed it
    int Interfaces;           ///< ports on the chip, numbered from 1
    int Engines;              ///< ports that have an MPSSE engine, the first ones
    bool HighSpeed;           ///< 60 MHz base clock and the commands that go with it; else 12 MHz
    std::size_t BufferBytes;  ///< size of its buffer in each direction, per port
};

/// The facts of `Family`.
const ChipFacts& FactsOf(ChipFamily Family) noexcept;

/// Ticks of 1/60 MHz in one cycle of divisor 0: the unit in which every sample clock of every family is a whole number.
constexpr std::int64_t TicksPerCycle(bool HighSpeed) noexcept
{
    return HighSpeed ? 2 : 10;
}

} // namespace Pellumo
