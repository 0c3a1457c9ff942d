/// @file
/// The two checksum models: sums with end-around carry, inverted.
#pragma once

#include <cstdint>
#include <span>

namespace Tarvix {

/// The classic checksum (LIN 1.3) of the first `DataLength` bytes; 0xFF when that is 0 or less.
/// @throws Error  errIndexOutOfRange when `Data` is shorter
std::uint8_t ClassicChecksum(std::int32_t DataLength, std::span<const std::uint8_t> Data);

/// The enhanced checksum (LIN 2.0): as the classic one, begun with the identifier byte as it goes on the bus. The
/// byte's value selects nothing: diagnostic identifiers are summed like any other.
/// @throws Error  errIndexOutOfRange when `Data` is shorter
std::uint8_t EnhancedChecksum(std::uint8_t IDbyte, std::int32_t DataLength, std::span<const std::uint8_t> Data);

} // namespace Tarvix
