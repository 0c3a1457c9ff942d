/// @file
/// The command bytes of the MPSSE engine, as FTDI's application note AN_108 lists them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Pellumo {

/// What the bits of an opcode below 0x80 mean: it shifts data, and its bits choose how. A length follows, low byte
/// first and one less than is meant: two bytes that count bytes, or one byte that counts bits.
namespace Shift {

inline constexpr std::uint8_t WriteOnFalling = 0x01; ///< data is put out on the falling clock edge, else the rising one
inline constexpr std::uint8_t Bits = 0x02;           ///< clocks 1 to 8 bits, else whole bytes
inline constexpr std::uint8_t ReadOnFalling = 0x04;  ///< data is read on the falling clock edge, else the rising one
inline constexpr std::uint8_t LSBFirst = 0x08;       ///< bit 0 of each byte goes first, else bit 7
inline constexpr std::uint8_t Write = 0x10;          ///< the data output is driven from the bytes that follow
inline constexpr std::uint8_t Read = 0x20;           ///< the data input is answered
inline constexpr std::uint8_t WriteTMS = 0x40;       ///< the bits go to the mode-select pin instead

} // namespace Shift

/// The opcodes from 0x80 on.
namespace Commands {

inline constexpr std::uint8_t SetLowPins = 0x80;         ///< levels, directions
inline constexpr std::uint8_t ReadLowPins = 0x81;        ///< answered with the levels
inline constexpr std::uint8_t SetHighPins = 0x82;        ///< levels, directions
inline constexpr std::uint8_t ReadHighPins = 0x83;       ///< answered with the levels
inline constexpr std::uint8_t LoopbackOn = 0x84;         ///< the data output is read back inside the chip
inline constexpr std::uint8_t LoopbackOff = 0x85;        ///< the data input is read from its pin
inline constexpr std::uint8_t SetDivisor = 0x86;         ///< sample clock divisor, low byte, high byte
inline constexpr std::uint8_t SendImmediate = 0x87;      ///< answers go to the host now, not when a packet is full
inline constexpr std::uint8_t DivideBy5Off = 0x8A;       ///< 60 MHz base clock; high-speed chips, as all that follow
inline constexpr std::uint8_t DivideBy5On = 0x8B;        ///< 12 MHz base clock, as after a reset
inline constexpr std::uint8_t ThreePhaseOn = 0x8C;       ///< a cycle of the clock has three phases instead of two
inline constexpr std::uint8_t ThreePhaseOff = 0x8D;      ///< a cycle of the clock has two phases
inline constexpr std::uint8_t ClockBits = 0x8E;          ///< clocks bits and neither writes nor reads: count - 1
inline constexpr std::uint8_t ClockBytes = 0x8F;         ///< the same for bytes: count - 1, low byte, high byte
inline constexpr std::uint8_t AdaptiveClockingOn = 0x96; ///< the clock waits for its echo
inline constexpr std::uint8_t AdaptiveClockingOff = 0x97;

inline constexpr std::uint8_t Bogus = 0xAA; ///< no command: sent to see whether an engine answers
inline constexpr std::uint8_t Bad = 0xFA; ///< what the chip answers to an opcode that it does not know, and the opcode

} // namespace Commands

/// Bits of the pins in the low byte.
namespace LowPin {

inline constexpr std::uint8_t DataOut = 0x02;
inline constexpr std::uint8_t DataIn = 0x04;

} // namespace LowPin

/// The most bytes that one command shifts.
inline constexpr std::size_t MostBytesPerCommand = 65536;

} // namespace Pellumo
