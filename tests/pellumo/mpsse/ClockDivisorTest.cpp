#include "pellumo/mpsse/ClockDivisor.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>
#include <utility>

namespace Pellumo {
namespace {

struct FrequencyCase {
    double Frequency;
    bool HighSpeed;
    std::optional<std::int32_t> Divisor;
};

class ClockDivisor : public testing::TestWithParam<FrequencyCase> {};

TEST_P(ClockDivisor, IsTheNearestOneOrNone)
{
    const auto [Frequency, HighSpeed, Divisor] = GetParam();
    EXPECT_EQ(NearestDivisor(Frequency, HighSpeed), Divisor) << Frequency;
}

// 20 MHz lies halfway between the divisors 0 and 1 of the 30 MHz clock, 12 MHz between 1 and 2; 40 MHz has -0.25.
INSTANTIATE_TEST_SUITE_P(
    Known, ClockDivisor,
    testing::Values(FrequencyCase{153600.0, true, 194}, FrequencyCase{153600.0, false, 38},
                    FrequencyCase{30e6, true, 0}, FrequencyCase{6e6, false, 0}, FrequencyCase{20e6, true, 0},
                    FrequencyCase{12e6, true, 2}, FrequencyCase{40e6, true, 0}, FrequencyCase{60e6, true, 0},
                    FrequencyCase{60.1e6, true, std::nullopt}, FrequencyCase{12.1e6, false, std::nullopt},
                    FrequencyCase{30e6 / 65536.0, true, 65535}, FrequencyCase{6e6 / 65536.0, false, 65535},
                    FrequencyCase{30e6 / 65536.4, true, 65535}, FrequencyCase{30e6 / 65536.6, true, std::nullopt},
                    FrequencyCase{6e6 / 65536.6, false, std::nullopt}, FrequencyCase{0.0, true, std::nullopt},
                    FrequencyCase{-0.0, true, std::nullopt}, FrequencyCase{-153600.0, true, std::nullopt},
                    FrequencyCase{std::numeric_limits<double>::denorm_min(), true, std::nullopt},
                    FrequencyCase{std::numeric_limits<double>::infinity(), true, std::nullopt},
                    FrequencyCase{-std::numeric_limits<double>::infinity(), true, std::nullopt},
                    FrequencyCase{std::numeric_limits<double>::quiet_NaN(), true, std::nullopt}));

TEST(ClockDivisor, EveryDivisorComesBackFromItsOwnFrequency)
{
    for (const bool HighSpeed : {false, true}) {
        for (std::int32_t Divisor = 0; Divisor <= 65535; ++Divisor) {
            ASSERT_EQ(NearestDivisor(FrequencyOf(Divisor, HighSpeed), HighSpeed), Divisor);
        }
    }
}

TEST(ClockDivisor, FrequenciesAreExact)
{
    EXPECT_EQ(FrequencyOf(0, true), 30e6);
    EXPECT_EQ(FrequencyOf(65535, true), 457.763671875);
    EXPECT_EQ(FrequencyOf(0, false), 6e6);
    EXPECT_EQ(FrequencyOf(65535, false), 91.552734375);
}

TEST(ClockDivisor, DoesNotDependOnTheHostsRoundingMode)
{
    const double JustBeyond = std::nextafter(60e6, 61e6);
    const auto Both = [&] { return std::pair(FrequencyOf(194, true), NearestDivisor(JustBeyond, true)); };
    const auto Nearest = Both();
    std::fesetround(FE_UPWARD);
    const auto Upward = Both();
    std::fesetround(FE_DOWNWARD);
    const auto Downward = Both();
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(Upward, Nearest);
    EXPECT_EQ(Downward, Nearest);
}

} // namespace
} // namespace Pellumo
