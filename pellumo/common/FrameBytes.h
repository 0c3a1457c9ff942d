/// @file
/// The bytes of a LIN frame as every node makes and checks them (LIN 2.2A, 2.3.1.3 protected identifier, 2.3.1.5
/// checksum).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace Pellumo {

/// A response has at most this many data bytes.
inline constexpr std::size_t MaximumDataBytes = 8;

/// The frame identifier (the lower six bits of `Identifier`) with its two parity bits.
std::uint8_t ProtectedIdentifier(std::uint8_t Identifier) noexcept;

/// The inverted sum with carry over `Data`.
/// @param Start  0 for the classic checksum, the protected identifier for the enhanced one
std::uint8_t Checksum(std::uint8_t Start, std::span<const std::uint8_t> Data) noexcept;

} // namespace Pellumo
