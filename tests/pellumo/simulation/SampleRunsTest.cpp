#include "pellumo/simulation/SampleRuns.h"

#include "tests/support/Random.h"

#include <gtest/gtest.h>

#include <array>

namespace Pellumo::Testing {

namespace {

constexpr std::size_t Count = 24;
using Samples = std::array<std::uint8_t, Count / 8>;

} // namespace

TEST(SampleRuns, FillsExactlyTheRange)
{
    for (const int Level : {0, 1}) {
        for (std::size_t First = 0; First <= Count; ++First) {
            for (std::size_t End = First; End <= Count; ++End) {
                Samples Filled{};
                Filled.fill(Level != 0 ? 0x00 : 0xFF);
                FillSamples(Filled, First, End, Level);
                for (std::size_t k = 0; k < Count; ++k) {
                    EXPECT_EQ(SampleAt(Filled, k) == Level, k >= First && k < End) << First << ' ' << End << ' ' << k;
                }
            }
        }
    }
}

TEST(SampleRuns, FindsTheFirstDifferentSample)
{
    Tarvix::Testing::Random Random;
    for (int Round = 0; Round < 200; ++Round) {
        const std::uint64_t Rare = Random.Next() & Random.Next() & Random.Next();
        const Samples Stream = {static_cast<std::uint8_t>(Rare), static_cast<std::uint8_t>(~Rare >> 8),
                                static_cast<std::uint8_t>(Rare >> 16)};
        for (std::size_t Index = 0; Index < Count; ++Index) {
            std::size_t Expected = Index;
            while (Expected < Count && SampleAt(Stream, Expected) == SampleAt(Stream, Index)) {
                ++Expected;
            }
            EXPECT_EQ(EndOfRun(Stream, Index), Expected);
        }
    }
}

} // namespace Pellumo::Testing
