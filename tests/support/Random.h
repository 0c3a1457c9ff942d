/// @file
/// Random numbers for tests: the same on every platform, from a seed that TARVIX_TEST_SEED overrides.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>

namespace Tarvix::Testing {

/// SplitMix64 (Sebastiano Vigna, public domain algorithm).
class Random {
public:
    explicit Random(std::uint64_t Seed = 20261122) noexcept : State_(Seed)
    {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): tests read their environment before they start threads
        if (const char* const Text = std::getenv("TARVIX_TEST_SEED")) {
            State_ ^= std::strtoull(Text, nullptr, 0);
        }
    }

    std::uint64_t Next() noexcept
    {
        State_ += 0x9E3779B97F4A7C15U;
        std::uint64_t Word = State_;
        Word = (Word ^ Word >> 30) * 0xBF58476D1CE4E5B9U;
        Word = (Word ^ Word >> 27) * 0x94D049BB133111EBU;
        return Word ^ Word >> 31;
    }

    /// A number from `First` to `Last`, both included.
    std::int32_t Between(std::int32_t First, std::int32_t Last) noexcept
    {
        const auto Span = static_cast<std::uint64_t>(std::int64_t{Last} - First) + 1;
        return static_cast<std::int32_t>(First + static_cast<std::int64_t>(Next() % Span));
    }

    std::uint8_t Byte() noexcept { return static_cast<std::uint8_t>(Next()); }

private:
    std::uint64_t State_;
};

} // namespace Tarvix::Testing
