/// @file
/// Finds chips on USB and picks the one that is meant.
#pragma once

#include "pellumo/ChipAddress.h"
#include "pellumo/ChipFamily.h"
#include "pellumo/usb/Handles.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Pellumo {

/// A chip on USB. It must not outlive the context that listed it.
struct USBChip {
    DeviceReference Device;
    std::uint16_t Vendor = 0;
    std::uint16_t Product = 0;
    std::uint16_t Release = 0;        ///< bcdDevice: the maker gives each family its own
    std::optional<ChipFamily> Family; ///< empty: a chip without an MPSSE engine
    std::string Serial;               ///< empty: the chip has none, or it could not be read
    int OpenCode = 0;                 ///< 0: the chip can be opened; else libusb's code that tells why not

    /// Its name, for example "FT232H".
    std::string ProductName() const;
    /// The URL of its port `Interface`.
    std::string URL(int Interface) const;
};

/// libusb and libftdi, ready for use.
/// @throws Tarvix::Error  errUSB
FTDIContext StartUSB();

/// The devices on USB with these identifiers, in libusb's order. Each is opened for a moment, to read its serial
/// number.
/// @param Product  empty: any
/// @throws Tarvix::Error  errUSB
std::vector<USBChip> ListChips(const ftdi_context& Context, std::uint16_t Vendor, std::optional<std::uint16_t> Product);

/// The first chip that `Address` matches; one with an engine goes before one without.
/// @throws Tarvix::Error  errNotFound (no such chip, no such interface), errWrongChip (no engine on that interface),
///                        errUSB, or why a chip that may be the one could not be opened
USBChip FindChip(const ftdi_context& Context, const ChipAddress& Address);

} // namespace Pellumo
