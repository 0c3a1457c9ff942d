/// @file
/// The part of a TOML text that is neither quoted nor a comment.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace Pellumo {

/// The first byte outside quotes and comments that is not ASCII: TOML has no use for one there. A byte-order mark at
/// the beginning does not count. Of a text that is no TOML it finds at least those before the first mistake.
/// @return its index
std::optional<std::size_t> FindBareNonASCII(std::string_view Text) noexcept;

} // namespace Pellumo
