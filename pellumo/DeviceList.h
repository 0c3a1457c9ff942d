/// @file
/// Lists the chips that are plugged in.
#pragma once

#include "pellumo/Export.h"

#include <string>
#include <vector>

namespace Pellumo {

/// One port of a chip on USB.
struct FoundDevice {
    std::string URL;           ///< what `OpenDevice` takes; a chip without a serial number shares it with its like
    std::string Product;       ///< the chip's name, for example "FT232H"
    std::string Serial;        ///< empty: the chip has none, or it could not be read
    int Interface = 1;         ///< port on the chip, numbered from 1
    bool KernelDriver = false; ///< a kernel driver holds the port; opening takes it away until the port is closed
    std::string Obstacle;      ///< why it cannot be opened, and what helps; empty: it can
};

/// The ports with an MPSSE engine of all chips on USB that bear their maker's vendor identifier, in the order in which
/// `OpenDevice` goes through them. A chip without an engine is listed once, with that as its obstacle.
/// @throws Tarvix::Error  errUSB when the USB system does not work, errNoUSBSupport in a library without it
PELLUMO_API std::vector<FoundDevice> FindDevices();

} // namespace Pellumo
