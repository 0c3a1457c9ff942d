// The functions of libudev that libusb uses, answered from the `FakeUsbfs` of the calling thread. Nothing is ever
// reported as plugged in or pulled out later on: libusb finds out by itself when a device is gone.

#include "tests/support/FakeUsbfs.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

using Pellumo::Testing::FakeUsbfs;

// libudev's types are known by name only.
struct udev {};
struct udev_monitor {
    int Descriptor;
};
struct udev_list_entry {
    std::string Path;
    udev_list_entry* Next = nullptr;
};
struct udev_enumerate {
    std::vector<std::unique_ptr<udev_list_entry>> Entries;
};
struct udev_device {
    std::string Name;
    std::string Node;
};

extern "C" {

udev* udev_new()
{
    return new udev;
}

udev* udev_unref(udev* Library)
{
    delete Library;
    return nullptr;
}

udev_monitor* udev_monitor_new_from_netlink(udev* /*Library*/, const char* /*Name*/)
{
    return new udev_monitor{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
}

int udev_monitor_filter_add_match_subsystem_devtype(udev_monitor* /*Monitor*/, const char* /*Subsystem*/,
                                                    const char* /*Type*/)
{
    return 0;
}

int udev_monitor_enable_receiving(udev_monitor* /*Monitor*/)
{
    return 0;
}

int udev_monitor_get_fd(udev_monitor* Monitor)
{
    return Monitor->Descriptor;
}

udev_device* udev_monitor_receive_device(udev_monitor* /*Monitor*/)
{
    return nullptr;
}

udev_monitor* udev_monitor_unref(udev_monitor* Monitor)
{
    ::close(Monitor->Descriptor);
    delete Monitor;
    return nullptr;
}

udev_enumerate* udev_enumerate_new(udev* /*Library*/)
{
    return new udev_enumerate;
}

int udev_enumerate_add_match_subsystem(udev_enumerate* /*List*/, const char* /*Subsystem*/)
{
    return 0;
}

int udev_enumerate_add_match_property(udev_enumerate* /*List*/, const char* /*Property*/, const char* /*Value*/)
{
    return 0;
}

int udev_enumerate_scan_devices(udev_enumerate* List)
{
    const FakeUsbfs* const Usb = FakeUsbfs::Current();
    for (const std::string& Name : Usb != nullptr ? Usb->Names() : std::vector<std::string>()) {
        auto Entry = std::make_unique<udev_list_entry>();
        Entry->Path = std::string("/sys/bus/usb/devices/").append(Name);
        if (!List->Entries.empty()) {
            List->Entries.back()->Next = Entry.get();
        }
        List->Entries.push_back(std::move(Entry));
    }
    return 0;
}

udev_list_entry* udev_enumerate_get_list_entry(udev_enumerate* List)
{
    return List->Entries.empty() ? nullptr : List->Entries.front().get();
}

udev_list_entry* udev_list_entry_get_next(udev_list_entry* Entry)
{
    return Entry->Next;
}

const char* udev_list_entry_get_name(udev_list_entry* Entry)
{
    return Entry->Path.c_str();
}

udev_enumerate* udev_enumerate_unref(udev_enumerate* List)
{
    delete List;
    return nullptr;
}

udev_device* udev_device_new_from_syspath(udev* /*Library*/, const char* Path)
{
    const std::string_view Name = std::string_view(Path).substr(std::string_view(Path).rfind('/') + 1);
    auto Device = std::make_unique<udev_device>();
    Device->Name = Name;
    std::string Number(Name.substr(Name.find('-') + 1));
    Device->Node = std::string("/dev/bus/usb/001/").append(std::string(3 - Number.size(), '0')).append(Number);
    return Device.release();
}

const char* udev_device_get_devnode(udev_device* Device)
{
    return Device->Node.c_str();
}

const char* udev_device_get_sysname(udev_device* Device)
{
    return Device->Name.c_str();
}

const char* udev_device_get_action(udev_device* /*Device*/)
{
    return nullptr;
}

udev_device* udev_device_unref(udev_device* Device)
{
    delete Device;
    return nullptr;
}

} // extern "C"
