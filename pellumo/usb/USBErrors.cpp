#include "pellumo/usb/USBErrors.h"

#include "pellumo/mpsse/RaiseForDevice.h"

#include <libusb.h>

namespace Pellumo {

USBFailure Explain(int Code)
{
    switch (Code) {
    case LIBUSB_ERROR_ACCESS:
        return {
            errPellumo::errPermission,
            "no permission. Copy the udev rules file 70-tarvix.rules to /etc/udev/rules.d and plug the chip in again"};
    case LIBUSB_ERROR_BUSY:
        return {errPellumo::errBusy, "another program holds the chip. End that program and try again"};
    case LIBUSB_ERROR_NO_DEVICE: return {errPellumo::errUnplugged, "the chip is gone. Plug it in and open it again"};
    case LIBUSB_ERROR_PIPE: return {errPellumo::errStalled, "the chip refused it. Plug it in again and try again"};
    case LIBUSB_ERROR_TIMEOUT:
        return {errPellumo::errTimeout, "the chip does not answer. Plug it in again and try again"};
    default:
        return {errPellumo::errUSB, std::string(libusb_strerror(static_cast<libusb_error>(Code)))
                                        .append(" (")
                                        .append(libusb_error_name(Code))
                                        .append("). Check the cable and the hub and try again")};
    }
}

void RaiseUSB(int Code, std::string_view Source, std::string_view Device, std::string_view Action)
{
    const USBFailure Failure = Explain(Code);
    RaiseForDevice(Failure.Number, Source, Device, std::string(Action).append(" failed: ").append(Failure.Text));
}

} // namespace Pellumo
