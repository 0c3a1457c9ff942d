/// @file
/// What a device's URL says.
#pragma once

#include "pellumo/ChipAddress.h"

#include <string>
#include <string_view>
#include <variant>

namespace Pellumo {

/// `sim:` or `sim:FILE`: a simulated bus.
struct SimulatedBusURL {
    std::string BusFile; ///< path of its description; empty: the built-in example bus

    bool operator==(const SimulatedBusURL&) const = default;
};

/// `sim:...`, or `ftdi://[VENDOR][:[PRODUCT][:SERIAL]]/INTERFACE`, a chip on USB.
using DeviceURL = std::variant<SimulatedBusURL, ChipAddress>;

/// Takes a URL apart. The vendor is `ftdi` or a hexadecimal number; the product is `2232`, `2232d`, `2232h`, `4232h` or
/// `232h`, with or without `ft` before it (`2232` is either of its kind), or a hexadecimal number (`0x` may stand
/// before it, and must where it would be a name otherwise). Letters may be of either case; the serial number is taken
/// as it is.
/// @throws Tarvix::Error  errURL; the description names the part that is wrong and the forms that exist
DeviceURL ParseDeviceURL(std::string_view URL);

} // namespace Pellumo
