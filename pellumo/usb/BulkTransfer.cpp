#include "pellumo/usb/BulkTransfer.h"

#include <new>

namespace Pellumo {

namespace {

void LIBUSB_CALL NoteEnd(libusb_transfer* Transfer)
{
    *static_cast<bool*>(Transfer->user_data) = false;
}

} // namespace

BulkTransfer::BulkTransfer() : Transfer_(libusb_alloc_transfer(0))
{
    if (!Transfer_) {
        throw std::bad_alloc();
    }
}

int BulkTransfer::Submit(libusb_device_handle* Handle, unsigned char Endpoint, std::span<std::uint8_t> Data,
                         std::chrono::milliseconds Limit) noexcept
{
    libusb_fill_bulk_transfer(Transfer_.get(), Handle, Endpoint, Data.data(), static_cast<int>(Data.size()), NoteEnd,
                              &InFlight_, static_cast<unsigned int>(Limit.count()));
    const int Code = libusb_submit_transfer(Transfer_.get());
    InFlight_ = Code == LIBUSB_SUCCESS;
    return Code;
}

void BulkTransfer::Cancel() noexcept
{
    if (InFlight_) {
        libusb_cancel_transfer(Transfer_.get());
    }
}

int BulkTransfer::Code() const noexcept
{
    switch (Transfer_->status) {
    case LIBUSB_TRANSFER_COMPLETED: return LIBUSB_SUCCESS;
    case LIBUSB_TRANSFER_TIMED_OUT: return LIBUSB_ERROR_TIMEOUT;
    case LIBUSB_TRANSFER_STALL: return LIBUSB_ERROR_PIPE;
    case LIBUSB_TRANSFER_NO_DEVICE: return LIBUSB_ERROR_NO_DEVICE;
    case LIBUSB_TRANSFER_OVERFLOW: return LIBUSB_ERROR_OVERFLOW;
    case LIBUSB_TRANSFER_CANCELLED: return LIBUSB_ERROR_INTERRUPTED;
    case LIBUSB_TRANSFER_ERROR: break;
    }
    return LIBUSB_ERROR_IO;
}

} // namespace Pellumo
