/// @file
/// The seed of every random test: the same in every run, unless the environment variable TARVIX_TEST_SEED names
/// another.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

namespace Tarvix::Testing {

inline std::uint64_t TestSeed()
{
    const char* Chosen = std::getenv("TARVIX_TEST_SEED"); // NOLINT(concurrency-mt-unsafe): nobody changes it
    return Chosen == nullptr ? 20 : std::stoull(Chosen);
}

/// Random numbers that every platform draws alike.
class Random {
public:
    /// A number in 0 .. `Limit` - 1.
    std::size_t Below(std::size_t Limit) { return static_cast<std::size_t>(Generator_() % Limit); }

private:
    std::mt19937_64 Generator_{TestSeed()};
};

} // namespace Tarvix::Testing
