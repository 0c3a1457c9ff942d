/// @file
/// A text too long for any memory: what must be refused by its length alone.
#pragma once

#include <new>
#include <string_view>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace Tarvix::Testing {

/// Addresses without memory behind them: a test that reads the text crashes.
class UnreadText {
public:
    explicit UnreadText(std::size_t Units) : Bytes_(Units * sizeof(char16_t)), Addresses_(Reserve(Bytes_)) {}
    UnreadText(const UnreadText&) = delete;
    UnreadText& operator=(const UnreadText&) = delete;

#if defined(_WIN32)
    ~UnreadText()
    {
        VirtualFree(Addresses_, 0, MEM_RELEASE);
    }
#else
    ~UnreadText()
    {
        munmap(Addresses_, Bytes_);
    }
#endif

    std::u16string_view Text() const
    {
        return {static_cast<const char16_t*>(Addresses_), Bytes_ / sizeof(char16_t)};
    }

private:
    static void* Reserve(std::size_t Bytes)
    {
#if defined(_WIN32)
        void* const Addresses = VirtualAlloc(nullptr, Bytes, MEM_RESERVE, PAGE_NOACCESS);
        const bool Failed = Addresses == nullptr;
#else
        void* const Addresses = mmap(nullptr, Bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        const bool Failed = Addresses == MAP_FAILED;
#endif
        if (Failed) {
            throw std::bad_alloc();
        }
        return Addresses;
    }

    std::size_t Bytes_;
    void* Addresses_;
};

} // namespace Tarvix::Testing
