#include "tarvix/common/CheckedArithmetic.h"
#include "tarvix/common/DecimalText.h"
#include "tarvix/common/FloatingPoint.h"
#include "tests/support/Errors.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <string>

namespace Tarvix {

using namespace Testing;

TEST(CheckedArithmetic, CatchesEveryOverflow)
{
    constexpr std::int32_t Most = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t Least = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(CheckedAdd(Most, Least), -1);
    EXPECT_EQ(CheckedMultiply(46340, 46340), 2147395600);
    EXPECT_EQ(CheckedNarrow<std::int16_t>(-32768), -32768);
    EXPECT_EQ(CheckedNarrow<std::uint8_t>(255), 255);
    EXPECT_EQ(FailureOf([] { CheckedAdd(Most, 1); }), Overflow);
    EXPECT_EQ(FailureOf([] { CheckedAdd(Least, -1); }), Overflow);
    EXPECT_EQ(FailureOf([] { CheckedMultiply(46341, 46341); }), Overflow);
    EXPECT_EQ(FailureOf([] { CheckedMultiply(Least, -1); }), Overflow);
    EXPECT_EQ(FailureOf([] { CheckedNarrow<std::int16_t>(32768); }), Overflow);
    EXPECT_EQ(FailureOf([] { CheckedNarrow<std::uint8_t>(-1); }), Overflow);
    EXPECT_EQ(FailureOf([] { CheckedNarrow<std::uint8_t>(256); }), Overflow);
}

TEST(Rounding, HalvesGoToTheEvenNeighbourInEveryRoundingMode)
{
    struct Case {
        double Value;
        std::int32_t Rounded;
    };
    for (const int Mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        std::fesetround(Mode);
        for (const auto& [Value, Rounded] : {Case{0.5, 0},
                                             {1.5, 2},
                                             {2.5, 2},
                                             {-0.5, 0},
                                             {-1.5, -2},
                                             {-2.5, -2},
                                             {0.49999999999999994, 0},
                                             {-0.49999999999999994, 0},
                                             {0.5000000000000001, 1},
                                             {-1e-20, 0},
                                             {1e-20, 0},
                                             {104.5, 104},
                                             {2147483647.4, 2147483647},
                                             {-2147483648.5, -2147483648}}) {
            EXPECT_EQ(RoundTo<std::int32_t>(Value), Rounded) << Value << " in mode " << Mode;
        }
    }
    std::fesetround(FE_TONEAREST);
    for (const double Value : {2147483647.5, -2147483649.0, HUGE_VAL, -HUGE_VAL, std::nan("")}) {
        EXPECT_EQ(FailureOf([=] { RoundTo<std::int32_t>(Value); }), Overflow) << Value;
    }
    EXPECT_EQ(RoundTo<std::uint8_t>(254.5), 254);
    EXPECT_EQ(RoundTo<std::uint8_t>(-0.5), 0);
    EXPECT_EQ(FailureOf([] { RoundTo<std::uint8_t>(255.5); }), Overflow);
}

TEST(FloatingPoint, ComputesInTheDefaultEnvironmentAndLeavesTheHosts)
{
    std::fesetround(FE_UPWARD);
    EXPECT_EQ(Quotient(1.0, 3.0), 0x1.5555555555555p-2);
    EXPECT_EQ(NarrowToFloat(0x1.0000008p0), 1.0F);
    EXPECT_EQ(DecimalToReal("5.208333E-05"), 0x1.b4e8197961b77p-15);
    EXPECT_EQ(std::fegetround(), FE_UPWARD);
    std::fesetround(FE_TONEAREST);

    EXPECT_EQ(FailureOf([] { Quotient(1.0, -0.0); }), DivisionByZero);
    EXPECT_EQ(NarrowToFloat(0x1.fffffefffffffp+127), std::numeric_limits<float>::max());
    EXPECT_EQ(FailureOf([] { NarrowToFloat(0x1.ffffffp+127); }), Overflow);
    EXPECT_EQ(FailureOf([] { NarrowToFloat(-1e39); }), Overflow);
    EXPECT_TRUE(std::isnan(NarrowToFloat(std::nan(""))));
}

TEST(DecimalText, TellsNumbersFromOtherText)
{
    for (const char* const Number : {"0", "5.", ".5", "1.35e1", "1E+08", "007", "1e-0"}) {
        EXPECT_TRUE(IsDecimalNumber(Number)) << Number;
    }
    for (const char* const Other : {"", ".", "e5", ".e5", "1e", "1e+", "1e5.5", "1.2.3", "-1", "+1", " 1", "1 ", "0x10",
                                    "nan", "inf", "1,5", "1e5e5"}) {
        EXPECT_FALSE(IsDecimalNumber(Other)) << Other;
    }
}

TEST(DecimalText, TooLargeFailsAndTooSmallIsZero)
{
    const std::string Zeros(400, '0');
    for (const std::string& Number :
         {std::string("1e-400"), std::string("2e-324"), std::string("1e-99999999999999999999"),
          std::string("0.").append(Zeros).append("1"), std::string("0e400"),
          std::string("1").append(Zeros).append("e-900"), std::string(Zeros).append("1e-400")}) {
        EXPECT_EQ(DecimalToReal(Number), 0.0) << Number;
    }
    for (const std::string& Number :
         {std::string("1e309"), std::string("1e99999999999999999999"), std::string("1").append(Zeros),
          std::string("1e+309"), std::string("0.").append(Zeros).append("1e800")}) {
        EXPECT_EQ(FailureOf([&] { DecimalToReal(Number); }), Overflow) << Number;
    }
    EXPECT_EQ(DecimalToReal(std::string("0.").append(Zeros).append("1e402")), 10.0);
    EXPECT_EQ(DecimalToReal("1.7976931348623157e308"), std::numeric_limits<double>::max());
}

} // namespace Tarvix
