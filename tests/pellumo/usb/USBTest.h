/// @file
/// What the tests of the USB transport share.
#pragma once

#include "pellumo/DeviceURL.h"
#include "pellumo/errPellumo.h"
#include "pellumo/usb/OpenUSBTransport.h"
#include "tests/support/EchoPins.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeUsbfs.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Pellumo::Testing {

using Bytes = std::vector<std::uint8_t>;
using Tarvix::Testing::Failure;
using Tarvix::Testing::FailureOf;

inline Failure Error(errPellumo Number, std::string_view Source, std::string_view Description)
{
    return {static_cast<std::uint32_t>(Number), std::string(Source), std::string(Description)};
}

/// The chip that a URL names.
inline ChipAddress At(std::string_view URL)
{
    return std::get<ChipAddress>(ParseDeviceURL(URL));
}

/// A pattern in which no two neighbouring stretches are alike.
inline Bytes Pattern(std::size_t Count)
{
    Bytes Samples(Count);
    for (std::size_t i = 0; i < Count; ++i) {
        Samples[i] = static_cast<std::uint8_t>(i * 7 + i / 256 * 3 + 1);
    }
    return Samples;
}

/// A USB system with wires that echo; what stays open at the end of a test fails it.
class USBTest : public testing::Test {
public:
    ~USBTest() override { EXPECT_EQ(Usb.OpenDevices(), 0U); }

protected:
    FakeUsbfs Usb;
    EchoPins Wires;
};

} // namespace Pellumo::Testing
