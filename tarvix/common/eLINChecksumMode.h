/// @file
/// The two checksum models of LIN.
#pragma once

#include <cstdint>

namespace Tarvix {

/// Which bytes a frame's checksum covers.
enum eLINChecksumMode : std::int32_t {
    elcLIN13 = 0, ///< classic: the data bytes alone (LIN 1.3)
    elcLIN20 = 1  ///< enhanced: the protected identifier and the data bytes (LIN 2.0)
};

} // namespace Tarvix
