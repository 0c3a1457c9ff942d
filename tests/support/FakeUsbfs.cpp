#include "tests/support/FakeUsbfs.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace Pellumo::Testing {

namespace {

constexpr std::string_view NodePrefix = "/dev/bus/usb/001/";
constexpr std::string_view SysPrefix = "/sys/bus/usb/devices/1-";
constexpr int PipeBytes = 4096;
constexpr Ticks EndOfTime = std::chrono::hours(24 * 365);

thread_local FakeUsbfs* CurrentUsbfs = nullptr;

int Fail(int Number)
{
    errno = Number;
    return -1;
}

// A fake that does not work must not look like a fault of what is tested.
void Require(bool Success, const char* What)
{
    if (!Success) {
        std::perror(What);
        std::abort();
    }
}

// The number that names the device, counted from 1: "003" in its node, "1-3" in sysfs.
std::size_t NumberAt(std::string_view Text)
{
    std::size_t Number = 0;
    for (const char Digit : Text.substr(0, Text.find('/'))) {
        Number = Number * 10 + static_cast<std::size_t>(Digit - '0');
    }
    return Number;
}

} // namespace

FakeUsbfs::FakeUsbfs()
{
    CurrentUsbfs = this;
}

FakeUsbfs::~FakeUsbfs()
{
    CurrentUsbfs = nullptr;
}

FakeUsbfs* FakeUsbfs::Current() noexcept
{
    return CurrentUsbfs;
}

FakeUSBDevice& FakeUsbfs::Plug(ChipFamily Family, std::string Serial, Pins& Wires)
{
    return Devices_.emplace_back(Family, std::move(Serial), Wires);
}

std::vector<std::string> FakeUsbfs::Names() const
{
    std::vector<std::string> Found;
    std::size_t Number = 0;
    for (const FakeUSBDevice& Device : Devices_) {
        ++Number;
        if (Device.IsPlugged()) {
            Found.push_back(std::string("1-").append(std::to_string(Number)));
        }
    }
    return Found;
}

// Plugged in one after the other, the devices stand at the addresses 1, 2, 3 ... of bus 1.
FakeUSBDevice* FakeUsbfs::DeviceAt(std::size_t Number)
{
    if (Number == 0 || Number > Devices_.size()) {
        return nullptr;
    }
    return &*std::next(Devices_.begin(), static_cast<std::ptrdiff_t>(Number) - 1);
}

std::optional<int> FakeUsbfs::Open(std::string_view Path)
{
    if (Path.starts_with(SysPrefix)) {
        return OpenAttribute(Path.substr(SysPrefix.size()));
    }
    if (Path.starts_with(NodePrefix)) {
        return OpenNode(DeviceAt(NumberAt(Path.substr(NodePrefix.size()))));
    }
    return std::nullopt;
}

int FakeUsbfs::OpenAttribute(std::string_view Path)
{
    const std::size_t Number = NumberAt(Path);
    const FakeUSBDevice* const Device = DeviceAt(Number);
    if (Device == nullptr) {
        return Fail(ENOENT);
    }
    const std::map<std::string_view, std::string> Attributes = {
        {"busnum", "1\n"},
        {"devnum", std::to_string(Number).append("\n")},
        {"speed", Device->PacketSize() == 512 ? "480\n" : "12\n"},
        {"bConfigurationValue", "1\n"},
        {"descriptors", Device->Descriptors()}};
    const auto Found = Attributes.find(Path.substr(std::min(Path.find('/'), Path.size() - 1) + 1));
    if (Found == Attributes.end()) {
        return Fail(ENOENT);
    }
    const int File = ::memfd_create("attribute", MFD_CLOEXEC);
    Require(::write(File, Found->second.data(), Found->second.size()) == std::ssize(Found->second),
            "write a memory file");
    ::lseek(File, 0, SEEK_SET);
    return File;
}

int FakeUsbfs::OpenNode(FakeUSBDevice* Device)
{
    if (Device == nullptr || !Device->IsPlugged()) {
        return Fail(ENOENT);
    }
    if (Device->OpenError != 0) {
        return Fail(Device->OpenError);
    }
    std::array<int, 2> Ends{};
    Require(::pipe2(Ends.data(), O_CLOEXEC | O_NONBLOCK) == 0, "open a pipe");
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): libc has no other
    Require(::fcntl(Ends[1], F_SETPIPE_SZ, PipeBytes) == PipeBytes, "make the pipe small");
    Open_.emplace(Ends[1], OpenDevice{Device, Ends[0], true});
    ShowReadiness(Ends[1], Open_.at(Ends[1]));
    return Ends[1];
}

std::optional<int> FakeUsbfs::Close(int Descriptor)
{
    const auto Found = Open_.find(Descriptor);
    if (Found == Open_.end()) {
        return std::nullopt;
    }
    if (Found->second.ReadEnd >= 0) {
        ::close(Found->second.ReadEnd);
    }
    Found->second.Device->Forget(Descriptor);
    Open_.erase(Found);
    return ::close(Descriptor);
}

// Drains or fills the pipe, or closes its far end, so that waiting for the descriptor ends as it should.
void FakeUsbfs::ShowReadiness(int Descriptor, OpenDevice& Each)
{
    std::array<char, PipeBytes> Page{};
    if (!Each.Device->IsPlugged()) {
        if (Each.ReadEnd >= 0) {
            ::close(std::exchange(Each.ReadEnd, -1));
        }
    } else if (const bool Ready = Each.Device->HasFinished(Descriptor); Ready != Each.Ready) {
        Each.Ready = Ready;
        const ssize_t Count =
            Ready ? ::read(Each.ReadEnd, Page.data(), Page.size()) : ::write(Descriptor, Page.data(), Page.size());
        Require(Count == PipeBytes, "turn the pipe");
    }
}

std::optional<int> FakeUsbfs::Control(int Descriptor, unsigned long Request, void* Argument)
{
    const auto Found = Open_.find(Descriptor);
    if (Found == Open_.end()) {
        return std::nullopt;
    }
    const int Number = Dispatch(Descriptor, *Found->second.Device, Request, Argument);
    ShowReadiness(Descriptor, Found->second);
    return Number == 0 ? 0 : Fail(Number);
}

// Returns 0 or an errno.
int FakeUsbfs::Dispatch(int Descriptor, FakeUSBDevice& Device, unsigned long Request, void* Argument)
{
    if (Request == USBDEVFS_REAPURBNDELAY) {
        usbdevfs_urb* const Finished = Device.Reap(Descriptor);
        if (Finished == nullptr) {
            return Device.IsPlugged() ? EAGAIN : ENODEV;
        }
        *static_cast<usbdevfs_urb**>(Argument) = Finished;
        return 0;
    }
    if (Request == USBDEVFS_DISCARDURB) {
        return Device.Discard(static_cast<usbdevfs_urb*>(Argument));
    }
    if (!Device.IsPlugged()) {
        return ENODEV;
    }
    switch (Request) {
    case USBDEVFS_GET_CAPABILITIES:
        *static_cast<std::uint32_t*>(Argument) = USBDEVFS_CAP_ZERO_PACKET | USBDEVFS_CAP_BULK_CONTINUATION |
                                                 USBDEVFS_CAP_NO_PACKET_SIZE_LIM | USBDEVFS_CAP_BULK_SCATTER_GATHER |
                                                 USBDEVFS_CAP_REAP_AFTER_DISCONNECT;
        return 0;
    case USBDEVFS_SUBMITURB: return Device.Submit(Descriptor, *static_cast<usbdevfs_urb*>(Argument), Now_);
    case USBDEVFS_CLAIMINTERFACE: return Device.ClaimInterface(Descriptor, *static_cast<unsigned*>(Argument), false);
    case USBDEVFS_DISCONNECT_CLAIM:
        return Device.ClaimInterface(Descriptor, static_cast<usbdevfs_disconnect_claim*>(Argument)->interface, true);
    case USBDEVFS_RELEASEINTERFACE: return Device.ReleaseInterface(Descriptor, *static_cast<unsigned*>(Argument));
    case USBDEVFS_GETDRIVER: return Device.NameDriver(*static_cast<usbdevfs_getdriver*>(Argument));
    case USBDEVFS_IOCTL: return Device.Attach(*static_cast<usbdevfs_ioctl*>(Argument));
    case USBDEVFS_CLEAR_HALT: return Device.ClearHalt(*static_cast<unsigned*>(Argument));
    default: return ENOTTY;
    }
}

std::optional<int> FakeUsbfs::Poll(std::span<pollfd> Descriptors, int Milliseconds)
{
    if (std::none_of(Descriptors.begin(), Descriptors.end(),
                     [this](const pollfd& Each) { return Open_.contains(Each.fd); })) {
        return std::nullopt;
    }
    const Ticks End = Milliseconds < 0 ? Ticks::max() : Now_ + std::chrono::milliseconds(Milliseconds);
    const auto Look = [&] {
        const timespec NoWait{};
        return ::ppoll(Descriptors.data(), Descriptors.size(), &NoWait, nullptr);
    };
    Run();
    int Ready = Look();
    while (Ready == 0 && Now_ < End) {
        Now_ = NextStep(End);
        Require(Now_ < EndOfTime, "end the wait: nothing is coming, and there is no deadline");
        if (Run()) {
            Ready = Look();
        }
    }
    return Ready;
}

// True when a device has something to tell.
bool FakeUsbfs::Run()
{
    for (FakeUSBDevice& Device : Devices_) {
        Device.Run(Now_);
    }
    for (auto& [Descriptor, Each] : Open_) {
        ShowReadiness(Descriptor, Each);
    }
    return std::any_of(Open_.begin(), Open_.end(),
                       [](const auto& Each) { return Each.second.Ready || Each.second.ReadEnd < 0; });
}

Ticks FakeUsbfs::NextStep(Ticks Limit) const
{
    Ticks Next = Limit;
    for (const FakeUSBDevice& Device : Devices_) {
        Next = std::min(Next, Device.NextStep(Now_).value_or(Limit));
    }
    return Next;
}

} // namespace Pellumo::Testing
