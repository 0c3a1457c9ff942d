/// @file
/// Error numbers of the devices. They arrive as `Tarvix::Error`, whose description says what happened to which device
/// and what the user can do.
#pragma once

#include <cstdint>

namespace Pellumo {

/// Errors raised while a device is found, opened and used.
enum class errPellumo : std::int32_t {
    _errPellumo = static_cast<std::int32_t>(0x8004C500), ///< base of the block, never raised
    errURL,                                              ///< the text names no device: unknown scheme, malformed part
    errNotFound,                                         ///< no such chip on USB, or no such interface on it
    errPermission,                                       ///< the user may not open the chip
    errBusy,                                             ///< another program holds the chip
    errDriver,                                           ///< a kernel driver holds the chip and cannot be detached
    errWrongChip,                                        ///< the chip has no MPSSE engine, or not on that interface
    errNoEngine,                                         ///< the MPSSE engine does not answer as one
    errUnplugged,                                        ///< the chip went away
    errStalled,                                          ///< the chip refused a transfer
    errTimeout,     ///< the chip did not finish in the time that the clocked bits take
    errShortAnswer, ///< the chip answered with fewer bytes than were clocked
    errUSB,         ///< any other failure of the USB system
    errUnsupported, ///< a clocking mode that the device does not have
    errFrequency,   ///< no divisor gives the frequency
    errDivisor,     ///< a divisor outside the chip's range
    errClosed,      ///< the device has been closed
    errBusFile,     ///< the bus file is unreadable or its contents are wrong
    errNoUSBSupport ///< the library was built without USB
};

} // namespace Pellumo
