#include "tests/support/AllocationCounter.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <utility>

// NOLINTBEGIN(cppcoreguidelines-no-malloc): what operator new stands on

namespace {

std::size_t Count = 0;
std::size_t Live = 0;
std::size_t Peak = 0;
std::optional<std::size_t> FailingCount; // the value of Count at which an allocation fails
bool HasFailed = false;

// In front of every block stands its size, in room that keeps the block aligned.
constexpr std::size_t HeadBytes = alignof(std::max_align_t);

void* Allocate(std::size_t Bytes)
{
    if (Count == FailingCount) {
        FailingCount.reset();
        HasFailed = true;
        throw std::bad_alloc();
    }
    void* const Block = std::malloc(Bytes + HeadBytes);
    if (Block == nullptr) {
        throw std::bad_alloc();
    }
    *static_cast<std::size_t*>(Block) = Bytes;
    ++Count;
    Live += Bytes;
    Peak = std::max(Peak, Live);
    return static_cast<std::uint8_t*>(Block) + HeadBytes;
}

void Free(void* Memory) noexcept
{
    if (Memory != nullptr) {
        void* const Block = static_cast<std::uint8_t*>(Memory) - HeadBytes;
        Live -= *static_cast<std::size_t*>(Block);
        std::free(Block);
    }
}

} // namespace

// NOLINTEND(cppcoreguidelines-no-malloc)

void* operator new(std::size_t Bytes)
{
    return Allocate(Bytes);
}
void* operator new[](std::size_t Bytes)
{
    return Allocate(Bytes);
}
void operator delete(void* Memory) noexcept
{
    Free(Memory);
}
void operator delete[](void* Memory) noexcept
{
    Free(Memory);
}
void operator delete(void* Memory, std::size_t /*Bytes*/) noexcept
{
    Free(Memory);
}
void operator delete[](void* Memory, std::size_t /*Bytes*/) noexcept
{
    Free(Memory);
}

namespace Tarvix::Testing {

std::size_t Allocations() noexcept
{
    return Count;
}
std::size_t LiveBytes() noexcept
{
    return Live;
}
std::size_t PeakBytes() noexcept
{
    return Peak;
}
void ResetPeak() noexcept
{
    Peak = Live;
}

bool FailAllocation(std::optional<std::size_t> Before) noexcept
{
    FailingCount.reset();
    if (Before) {
        FailingCount = Count + *Before;
    }
    return std::exchange(HasFailed, false);
}

} // namespace Tarvix::Testing
