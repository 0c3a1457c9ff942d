/// @file
/// Opens the byte pipe to a chip on USB.
#pragma once

#include "pellumo/ChipAddress.h"
#include "pellumo/ChipFamily.h"
#include "pellumo/mpsse/Transport.h"

#include <memory>

namespace Pellumo {

/// A chip that has been opened.
struct OpenedUSBTransport {
    std::unique_ptr<Transport> Pipe; ///< to the chip's MPSSE engine, its buffers empty
    ChipFamily Family;               ///< what kind of chip it is
};

/// Opens the first chip that `Address` matches, takes the port away from a kernel driver if one holds it (until the
/// transport is closed), and puts it into MPSSE mode.
/// @throws Tarvix::Error  errNotFound, errPermission, errBusy, errDriver, errWrongChip, errUnplugged, errStalled,
///                        errTimeout, errUSB, errNoUSBSupport; nothing is left open then
OpenedUSBTransport OpenUSBTransport(const ChipAddress& Address);

} // namespace Pellumo
