/// @file
/// The version of the library that is loaded.
#pragma once

#include "tarvix/common/Export.h"

#include <cstdint>

namespace Tarvix {

/// Tells which version of the library the host has loaded. The numbers are those of the library file's own version.
class TARVIX_API Process {
public:
    /// Changes when programs written for the earlier version no longer work.
    std::int16_t Major() const noexcept;
    /// Changes when something is added.
    std::int16_t Minor() const noexcept;
    /// Changes when something is mended.
    std::int16_t Revision() const noexcept;
};

} // namespace Tarvix
