#include "pellumo/DeviceList.h"

#include "pellumo/usb/USBChips.h"
#include "pellumo/usb/USBErrors.h"

namespace Pellumo {

namespace {

// Whether another program holds the port is found out by taking it; closing the handle gives it back.
std::string ObstacleOn(libusb_device_handle* Handle, int Interface)
{
    const int Code = libusb_claim_interface(Handle, Interface - 1);
    return Code < 0 ? Explain(Code).Text : std::string();
}

FoundDevice DescribePort(const USBChip& Chip, int Interface)
{
    FoundDevice Found;
    Found.URL = Chip.URL(Interface);
    Found.Product = Chip.ProductName();
    Found.Serial = Chip.Serial;
    Found.Interface = Interface;
    if (!Chip.Family) {
        Found.Obstacle = "it has no MPSSE engine";
        return Found;
    }
    libusb_device_handle* Opened = nullptr;
    const int Code = Chip.OpenCode < 0 ? Chip.OpenCode : libusb_open(Chip.Device.get(), &Opened);
    if (Code < 0) {
        Found.Obstacle = Explain(Code).Text;
        return Found;
    }
    const DeviceHandle Handle(Opened);
    Found.KernelDriver = libusb_kernel_driver_active(Handle.get(), Interface - 1) == 1;
    if (!Found.KernelDriver) {
        Found.Obstacle = ObstacleOn(Handle.get(), Interface);
    }
    return Found;
}

} // namespace

std::vector<FoundDevice> FindDevices()
{
    const FTDIContext Context = StartUSB();
    std::vector<FoundDevice> Found;
    for (const USBChip& Chip : ListChips(*Context, MakersVendor, std::nullopt)) {
        const int Ports = Chip.Family ? FactsOf(*Chip.Family).Engines : 1;
        for (int Interface = 1; Interface <= Ports; ++Interface) {
            Found.push_back(DescribePort(Chip, Interface));
        }
    }
    return Found;
}

} // namespace Pellumo
