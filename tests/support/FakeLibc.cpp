// The functions of libc through which libusb reaches the kernel. They take precedence over libc's own in a program that
// links this file; their names and types are libc's.

#include "tests/support/FakeUsbfs.h"

#include <dlfcn.h>
#include <linux/magic.h>
#include <sys/statfs.h>

#include <cerrno>
#include <cstdarg>
#include <ctime>

namespace {

using Pellumo::Testing::FakeUsbfs;

// NOLINTBEGIN(cppcoreguidelines-pro-type-vararg, cppcoreguidelines-pro-type-reinterpret-cast, cert-dcl50-cpp,
// bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp, readability-inconsistent-declaration-parameter-name,
// readability-named-parameter): libc's own declarations

template <typename Function>
Function* Real(const char* Name) noexcept
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, Name));
}

} // namespace

extern "C" {

int open(const char* Path, int Flags, ...)
{
    if (FakeUsbfs* const Usb = FakeUsbfs::Current()) {
        if (const auto Answer = Usb->Open(Path)) {
            return *Answer;
        }
    }
    va_list Arguments;
    va_start(Arguments, Flags);
    const auto Mode = va_arg(Arguments, unsigned);
    va_end(Arguments);
    static auto* const RealOpen = Real<int(const char*, int, ...)>("open");
    return RealOpen(Path, Flags, Mode);
}

int __open_2(const char* Path, int Flags)
{
    return open(Path, Flags);
}

int close(int Descriptor)
{
    if (FakeUsbfs* const Usb = FakeUsbfs::Current()) {
        if (const auto Answer = Usb->Close(Descriptor)) {
            return *Answer;
        }
    }
    static auto* const RealClose = Real<int(int)>("close");
    return RealClose(Descriptor);
}

int ioctl(int Descriptor, unsigned long Request, ...) noexcept
{
    va_list Arguments;
    va_start(Arguments, Request);
    void* const Argument = va_arg(Arguments, void*);
    va_end(Arguments);
    if (FakeUsbfs* const Usb = FakeUsbfs::Current()) {
        if (const auto Answer = Usb->Control(Descriptor, Request, Argument)) {
            return *Answer;
        }
    }
    static auto* const RealIoctl = Real<int(int, unsigned long, ...)>("ioctl");
    return RealIoctl(Descriptor, Request, Argument);
}

int poll(pollfd* Descriptors, nfds_t Count, int Milliseconds)
{
    if (FakeUsbfs* const Usb = FakeUsbfs::Current()) {
        if (const auto Answer = Usb->Poll({Descriptors, Count}, Milliseconds)) {
            return *Answer;
        }
    }
    static auto* const RealPoll = Real<int(pollfd*, nfds_t, int)>("poll");
    return RealPoll(Descriptors, Count, Milliseconds);
}

// libusb looks whether there is a sysfs.
int statfs(const char* Path, struct statfs* Answer) noexcept
{
    if (FakeUsbfs::Current() != nullptr) {
        *Answer = {};
        Answer->f_type = SYSFS_MAGIC;
        return 0;
    }
    static auto* const RealStatfs = Real<int(const char*, struct statfs*)>("statfs");
    return RealStatfs(Path, Answer);
}

int clock_gettime(clockid_t Clock, timespec* Answer) noexcept
{
    if (const FakeUsbfs* const Usb = FakeUsbfs::Current(); Usb != nullptr && Clock == CLOCK_MONOTONIC) {
        const auto Nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(Usb->Now()).count();
        *Answer = {.tv_sec = Nanoseconds / 1'000'000'000, .tv_nsec = Nanoseconds % 1'000'000'000};
        return 0;
    }
    static auto* const RealClock = Real<int(clockid_t, timespec*)>("clock_gettime");
    return RealClock(Clock, Answer);
}

// A timer of the kernel would count real time. Without one libusb keeps its deadlines by the limit of `poll`.
int timerfd_create(int Clock, int Flags) noexcept
{
    if (FakeUsbfs::Current() != nullptr) {
        errno = ENOSYS;
        return -1;
    }
    static auto* const RealCreate = Real<int(int, int)>("timerfd_create");
    return RealCreate(Clock, Flags);
}

} // extern "C"

// NOLINTEND(cppcoreguidelines-pro-type-vararg, cppcoreguidelines-pro-type-reinterpret-cast, cert-dcl50-cpp,
// bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp, readability-inconsistent-declaration-parameter-name,
// readability-named-parameter)
