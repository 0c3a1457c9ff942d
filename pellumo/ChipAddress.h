/// @file
/// Which chip on USB is meant.
#pragma once

#include "pellumo/ChipFamily.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Pellumo {

/// The vendor identifier that the chips' maker has from the USB Implementers Forum.
inline constexpr std::uint16_t MakersVendor = 0x0403;

/// What a device URL says about a chip; what it leaves out is empty.
struct ChipAddress {
    std::optional<std::uint16_t> Vendor;  ///< USB vendor identifier; empty: the chips' maker
    std::optional<std::uint16_t> Product; ///< USB product identifier; empty: any
    std::optional<ChipFamily> Family;     ///< of the product's name, where it tells one; empty: any
    std::optional<std::string> Serial;    ///< serial number; empty: the first chip that matches the rest
    int Interface = 1;                    ///< port on the chip, numbered from 1
};

} // namespace Pellumo
