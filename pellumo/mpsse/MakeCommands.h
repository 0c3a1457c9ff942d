/// @file
/// The commands that the device sends, put together.
#pragma once

#include "pellumo/mpsse/Commands.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace Pellumo {

/// The lower byte of a 16-bit argument, which goes first.
constexpr std::uint8_t LowByte(std::size_t Value) noexcept
{
    return static_cast<std::uint8_t>(Value & 0xFF);
}

/// The upper byte of a 16-bit argument.
constexpr std::uint8_t HighByte(std::size_t Value) noexcept
{
    return static_cast<std::uint8_t>(Value >> 8 & 0xFF);
}

/// The opcode that drives samples: bit 0 of each byte first, or bit 7 when `LSBFirst` is 0; put out on the rising edge,
/// or the falling one unless `WriteEdge` is 0.
constexpr std::uint8_t ShiftOpcode(std::int32_t LSBFirst, std::int32_t WriteEdge) noexcept
{
    return static_cast<std::uint8_t>(Shift::Write | (LSBFirst != 0 ? Shift::LSBFirst : 0) |
                                     (WriteEdge != 0 ? Shift::WriteOnFalling : 0));
}

/// The opcode that does the same as `WriteOpcode` and reads a sample on the edge after the one that put it out.
constexpr std::uint8_t ReadOnOtherEdge(std::uint8_t WriteOpcode) noexcept
{
    const bool WritesOnFalling = (WriteOpcode & Shift::WriteOnFalling) != 0;
    return static_cast<std::uint8_t>(WriteOpcode | Shift::Read | (WritesOnFalling ? 0 : Shift::ReadOnFalling));
}

/// Sets the divisor, which is one (`IsDivisor`).
constexpr std::array<std::uint8_t, 3> DivisorCommand(std::int32_t Divisor) noexcept
{
    const auto Value = static_cast<std::size_t>(Divisor);
    return {Commands::SetDivisor, LowByte(Value), HighByte(Value)};
}

/// All extras of a high-speed engine; a full-speed one has the last of them alone.
inline constexpr std::array ExtrasOff{Commands::DivideBy5Off, Commands::AdaptiveClockingOff, Commands::ThreePhaseOff,
                                      Commands::LoopbackOff};

/// Switches all extras of the engine off.
constexpr std::span<const std::uint8_t> PlainModeCommands(bool HighSpeed) noexcept
{
    return std::span(ExtrasOff).last(HighSpeed ? ExtrasOff.size() : 1);
}

} // namespace Pellumo
