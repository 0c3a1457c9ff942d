// A library that is built without USB.

#include "pellumo/DeviceList.h"
#include "pellumo/errPellumo.h"
#include "pellumo/usb/OpenUSBTransport.h"
#include "tests/support/Errors.h"

#include <gtest/gtest.h>

namespace Pellumo {
namespace {

using Tarvix::Testing::Failure;
using Tarvix::Testing::FailureOf;

TEST(NoUSB, SaysSo)
{
    const Failure Expected{static_cast<std::uint32_t>(errPellumo::errNoUSBSupport), "Pellumo",
                           "This library was built without USB. Build it with TARVIX_WITH_USB=ON to open chips"};
    EXPECT_EQ(FailureOf([] { FindDevices(); }), Expected);
    EXPECT_EQ(FailureOf([] { OpenUSBTransport({}); }), Expected);
}

} // namespace
} // namespace Pellumo
