// Stands in for the USB sources in a library that is built without them.
#include "pellumo/DeviceList.h"
#include "pellumo/errPellumo.h"
#include "pellumo/usb/OpenUSBTransport.h"
#include "tarvix/common/Raise.h"

namespace Pellumo {

namespace {

[[noreturn]] void RaiseNoUSBSupport()
{
    Tarvix::Raise(errPellumo::errNoUSBSupport, "Pellumo",
                  "This library was built without USB. Build it with TARVIX_WITH_USB=ON to open chips");
}

} // namespace

std::vector<FoundDevice> FindDevices()
{
    RaiseNoUSBSupport();
}

OpenedUSBTransport OpenUSBTransport(const ChipAddress& /*Address*/)
{
    RaiseNoUSBSupport();
}

} // namespace Pellumo
