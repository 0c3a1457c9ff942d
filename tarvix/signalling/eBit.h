/// @file
/// The two levels of the bus.
#pragma once

#include <cstdint>

namespace Tarvix {

/// A bus level, as a sample or as a bit.
enum eBit : std::int32_t {
    eb0 = 0, ///< dominant, low
    eb1 = 1  ///< recessive, high
};

} // namespace Tarvix
