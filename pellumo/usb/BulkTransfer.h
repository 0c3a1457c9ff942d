/// @file
/// A bulk transfer that runs while the program goes on.
#pragma once

#include "pellumo/usb/Handles.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>

namespace Pellumo {

/// One transfer object, used again and again. Its events are handled by whoever calls `libusb_handle_events`.
class BulkTransfer {
public:
    /// @throws std::bad_alloc
    BulkTransfer();
    BulkTransfer(const BulkTransfer&) = delete;
    BulkTransfer& operator=(const BulkTransfer&) = delete;
    /// Not while in flight.
    ~BulkTransfer() = default;

    /// Starts the transfer of `Data`, which must stay where it is until the transfer is over. libusb cancels it by
    /// itself when `Limit` (at least 1 ms) is over.
    /// @param Endpoint  its direction bit says whether `Data` is written or read
    /// @return 0, or libusb's error code: nothing is in flight then
    int Submit(libusb_device_handle* Handle, unsigned char Endpoint, std::span<std::uint8_t> Data,
               std::chrono::milliseconds Limit) noexcept;

    /// Asks for an early end. The transfer is in flight until its events have been handled.
    void Cancel() noexcept;

    bool InFlight() const noexcept { return InFlight_; }
    /// Bytes moved by the transfer that is over, also if it failed.
    std::size_t Count() const noexcept { return static_cast<std::size_t>(Transfer_->actual_length); }
    /// How the transfer ended: 0, or libusb's error code.
    int Code() const noexcept;

private:
    USBTransfer Transfer_;
    bool InFlight_ = false;
};

} // namespace Pellumo
