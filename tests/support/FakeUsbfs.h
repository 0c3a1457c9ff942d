/// @file
/// USB inside the process: stands in for the kernel's usbfs and for udev, under the unmodified libusb and libftdi.
///
/// libusb reaches the kernel through a few functions of libc (`open`, `ioctl`, `close`, `poll` ...) and of libudev. A
/// test program that links this file defines them itself: what concerns a fake device goes to the `FakeUsbfs` of the
/// calling thread, everything else to the real functions. A fake device's descriptor is the write end of a pipe with
/// room for one page: full, there is nothing to reap; drained, a transfer is over; with its read end closed, the device
/// is gone. So waiting for it works by itself.
///
/// Time is virtual (`CLOCK_MONOTONIC`) and passes only in `poll`: to the next moment at which a fake device has
/// something to do, or to the end of the wait. Nothing depends on the machine's speed, and nobody ever waits.
#pragma once

#include "tests/support/FakeUSBDevice.h"
#include "tests/support/VirtualTime.h"

#include <poll.h>

#include <list>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Pellumo::Testing {

/// One at a time in a thread; it must outlive everything that uses USB in it.
class FakeUsbfs {
public:
    FakeUsbfs();
    FakeUsbfs(const FakeUsbfs&) = delete;
    FakeUsbfs& operator=(const FakeUsbfs&) = delete;
    ~FakeUsbfs();

    /// The one of this thread, or nullptr.
    static FakeUsbfs* Current() noexcept;

    /// Plugs a chip in. Chips that are plugged in later than the first use of USB are not seen.
    FakeUSBDevice& Plug(ChipFamily Family, std::string Serial, Pins& Wires);

    Ticks Now() const noexcept { return Now_; }
    /// Descriptors of devices that are open.
    std::size_t OpenDevices() const noexcept { return Open_.size(); }

    // What libc's functions are asked. The results are libc's: -1 with errno, or nothing when it is no business of
    // ours.
    std::optional<int> Open(std::string_view Path);
    std::optional<int> Close(int Descriptor);
    std::optional<int> Control(int Descriptor, unsigned long Request, void* Argument);
    std::optional<int> Poll(std::span<pollfd> Descriptors, int Milliseconds);
    /// What udev's enumeration finds: names below /sys/bus/usb/devices.
    std::vector<std::string> Names() const;

private:
    struct OpenDevice {
        FakeUSBDevice* Device;
        int ReadEnd; // of the pipe; -1 when the device is gone
        bool Ready;  // the pipe is drained
    };

    FakeUSBDevice* DeviceAt(std::size_t Number);
    int OpenAttribute(std::string_view Path);
    int OpenNode(FakeUSBDevice* Device);
    int Dispatch(int Descriptor, FakeUSBDevice& Device, unsigned long Request, void* Argument);
    static void ShowReadiness(int Descriptor, OpenDevice& Each);
    bool Run();
    Ticks NextStep(Ticks Limit) const;

    std::list<FakeUSBDevice> Devices_;
    std::map<int, OpenDevice> Open_;
    Ticks Now_ = std::chrono::hours(1);
};

} // namespace Pellumo::Testing
