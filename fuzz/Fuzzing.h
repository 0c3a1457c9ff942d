/// @file
/// What the fuzzers share. Each is one function, `LLVMFuzzerTestOneInput`, which libFuzzer feeds with inputs of its own
/// making and the tests with those of fuzz/corpus/NAME.
#pragma once

#include "tarvix/common/Error.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <utility>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size);

namespace Tarvix::Fuzzing {

/// Ends the program, which is how a fuzzer reports a finding.
inline void Demand(bool Condition)
{
    if (!Condition) {
        std::abort();
    }
}

/// Whether `Action` ended without an `Error`; anything else that it throws is a finding.
template <typename Callable>
bool Succeeds(Callable&& Action)
{
    try {
        std::forward<Callable>(Action)();
        return true;
    } catch (const Error& Raised) {
        Demand(!Raised.Source().empty() && !Raised.Description().empty());
        return false;
    }
}

/// Hands out the input from its front; beyond its end there are zeros.
class Input {
public:
    Input(const std::uint8_t* Data, std::size_t Size) noexcept : Rest_(Data, Size) {}

    bool Empty() const noexcept { return Rest_.empty(); }
    std::uint8_t Byte() noexcept
    {
        const auto Taken = Bytes(1);
        return Taken.empty() ? std::uint8_t{0} : Taken.front();
    }
    /// A number below `Count`, at most 256.
    std::uint8_t Below(unsigned Count) noexcept { return static_cast<std::uint8_t>(Byte() % Count); }
    /// As many bytes as there are, at most `Count`.
    std::span<const std::uint8_t> Bytes(std::size_t Count) noexcept
    {
        const auto Taken = Rest_.first(Count < Rest_.size() ? Count : Rest_.size());
        Rest_ = Rest_.subspan(Taken.size());
        return Taken;
    }
    std::span<const std::uint8_t> Rest() noexcept { return Bytes(Rest_.size()); }

private:
    std::span<const std::uint8_t> Rest_;
};

} // namespace Tarvix::Fuzzing
