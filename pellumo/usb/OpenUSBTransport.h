/// @file
/// Opens the byte pipe to a chip on USB.
#pragma once

#include "pellumo/ChipAddress.h"
#include "pellumo/ChipFamily.h"
#include "pellumo/mpsse/Transport.h"

#include <chrono>
#include <memory>

namespace Pellumo {

/// A chip that has been opened.
struct OpenedUSBTransport {
    std::unique_ptr<Transport> Pipe; ///< to the chip's MPSSE engine, its buffers empty
    ChipFamily Family;               ///< what kind of chip it is
};

/// Opens the first chip that `Address` matches, takes the port away from a kernel driver if one holds it (until the
/// transport is closed), and puts it into MPSSE mode.
/// @param RequestLimit  how long the chip may take to answer one set-up request
/// @throws Tarvix::Error  errNotFound, errPermission, errBusy, errDriver, errWrongChip, errUnplugged, errStalled,
///                        errTimeout, errUSB, errNoUSBSupport; nothing is left open then
OpenedUSBTransport OpenUSBTransport(const ChipAddress& Address,
                                    std::chrono::milliseconds RequestLimit = std::chrono::seconds(1));

} // namespace Pellumo
