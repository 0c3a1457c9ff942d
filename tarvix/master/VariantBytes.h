/// @file
/// Byte arrays in and out of variants.
#pragma once

#include "tarvix/common/Variant.h"

#include <cstdint>
#include <span>
#include <vector>

namespace Tarvix {

/// The first `Length` elements of the array in `Value` as bytes; none, and `Value` is not looked at, when that is 0 or
/// less.
/// @throws Error  errTypeMismatch when there is no array or an element is not numeric, errIndexOutOfRange when the
///                array is shorter, errOverflow for an element outside 0 to 255; the first fault in index order
std::vector<std::uint8_t> VariantToBytes(const Variant& Value, std::int32_t Length);

/// An array of the first `Length` bytes; empty when that is 0 or less.
/// @throws Error  errIndexOutOfRange when there are fewer
Variant BytesToVariant(std::span<const std::uint8_t> Bytes, std::int32_t Length);

} // namespace Tarvix
