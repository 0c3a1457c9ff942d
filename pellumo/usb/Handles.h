/// @file
/// Owners of what libusb and libftdi hand out.
#pragma once

#include <ftdi.h>
#include <libusb.h>

#include <memory>

namespace Pellumo {

struct FTDIContextDeleter {
    void operator()(ftdi_context* Context) const noexcept
    {
        ftdi_usb_close(Context); // gives the interface back to the kernel driver, which ftdi_free does not
        ftdi_free(Context);
    }
};
/// libftdi's context: owns libusb's context, and the handle of the chip once `ftdi_set_usbdev` has been called.
using FTDIContext = std::unique_ptr<ftdi_context, FTDIContextDeleter>;

struct DeviceDeleter {
    void operator()(libusb_device* Device) const noexcept { libusb_unref_device(Device); }
};
/// A reference to a device on the bus; it must not outlive its context.
using DeviceReference = std::unique_ptr<libusb_device, DeviceDeleter>;

struct DeviceHandleDeleter {
    void operator()(libusb_device_handle* Handle) const noexcept { libusb_close(Handle); }
};
/// A device that has been opened; it must not outlive its context.
using DeviceHandle = std::unique_ptr<libusb_device_handle, DeviceHandleDeleter>;

struct ConfigDescriptorDeleter {
    void operator()(libusb_config_descriptor* Descriptor) const noexcept { libusb_free_config_descriptor(Descriptor); }
};
using ConfigDescriptor = std::unique_ptr<libusb_config_descriptor, ConfigDescriptorDeleter>;

struct TransferDeleter {
    void operator()(libusb_transfer* Transfer) const noexcept { libusb_free_transfer(Transfer); }
};
/// A transfer; it must not be in flight when it is freed.
using USBTransfer = std::unique_ptr<libusb_transfer, TransferDeleter>;

} // namespace Pellumo
