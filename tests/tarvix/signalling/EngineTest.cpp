#include "tarvix/signalling/clsLINViaFTDIMPSSE.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeDevice.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>

namespace Tarvix {

using namespace Testing;
using Bytes = std::vector<std::uint8_t>;
using Calls = std::vector<std::string>;

namespace {

struct Attached {
    FakeDevice Device;
    clsLINViaFTDIMPSSE Engine;
    Attached()
    {
        Engine.AttachDevice(Device);
        Device.Calls.clear();
    }
};

} // namespace

TEST(Engine, AttachingSetsUpPinsAndModeAndNothingElse)
{
    FakeDevice Device;
    clsLINViaFTDIMPSSE Engine;
    Engine.AttachDevice(Device);
    EXPECT_EQ(Device.Calls, (Calls{"ConfigurePins 3 11", "SetOption 0"}));
    EXPECT_EQ(Engine.tBit(), 0.0F);
}

TEST(Engine, KeepsTheDeviceWhoseSetUpFailed)
{
    FakeDevice Device;
    Device.BeforeCall = [](std::size_t Call) {
        if (Call == 1) {
            throw std::string("not an Error");
        }
    };
    clsLINViaFTDIMPSSE Engine;
    EXPECT_THROW(Engine.AttachDevice(Device), std::string);
    Device.BeforeCall = nullptr;
    Engine.LINWait(8);
    EXPECT_EQ(Device.Calls, (Calls{"ConfigurePins 3 11", "SendSamples 1 1 0"}));
}

TEST(Engine, AsksForEightSamplesPerBitAndKeepsWhatTheDeviceAchieves)
{
    Attached Bus;
    Bus.Engine.SetBitPeriod(1.0F / 9600);
    ASSERT_EQ(Bus.Device.Frequencies.size(), 1U);
    // 64-bit arithmetic from the 32-bit period
    EXPECT_EQ(Bus.Device.Frequencies[0], 1.0 / double{1.0F / 9600 / 8});
    EXPECT_EQ(Bus.Device.Calls, (Calls{"DivisorForFrequency", "SetClockDivisor 390", "FrequencyForDivisor 390"}));
    EXPECT_EQ(Bus.Engine.tBit(), 8 * static_cast<float>(391 / 30e6));
}

TEST(Engine, TimingDoesNotDependOnTheHostsRoundingMode)
{
    for (const int Mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        Attached Bus;
        Bus.Device.ClockOf = [](std::int32_t) { return 153846.15384615384; };
        std::fesetround(Mode);
        Bus.Engine.SetBitPeriod(5.208333E-05F);
        EXPECT_EQ(std::fegetround(), Mode);
        EXPECT_EQ(clsLINViaFTDIMPSSE::BitsToSamples(0.3125F), 2); // 2.5
        EXPECT_EQ(clsLINViaFTDIMPSSE::BitsToSamples(0.4375F), 4); // 3.5
        std::fesetround(FE_TONEAREST);
        EXPECT_EQ(Bus.Device.Frequencies[0], 1.0 / double{5.208333E-05F / 8});
        EXPECT_EQ(Bus.Engine.tBit(), 8 * static_cast<float>(1.0 / 153846.15384615384));
    }
}

TEST(Engine, AFailedBitPeriodKeepsTheEarlierOne)
{
    Attached Bus;
    Bus.Engine.SetBitPeriod(1.0F / 19200);
    const float Before = Bus.Engine.tBit();
    Bus.Device.Calls.clear();

    EXPECT_EQ(FailureOf([&] { Bus.Engine.SetBitPeriod(0.0F); }), DivisionByZero);
    EXPECT_EQ(FailureOf([&] { Bus.Engine.SetBitPeriod(std::numeric_limits<float>::denorm_min()); }), DivisionByZero)
        << "an eighth of it is 0";
    EXPECT_EQ(Bus.Device.Calls, Calls{});

    Bus.Device.ClockOf = [](std::int32_t) { return 0.0; };
    EXPECT_EQ(FailureOf([&] { Bus.Engine.SetBitPeriod(1.0F); }), DivisionByZero);
    Bus.Device.ClockOf = [](std::int32_t) { return 1e-300; };
    EXPECT_EQ(FailureOf([&] { Bus.Engine.SetBitPeriod(1.0F); }), Overflow);
    EXPECT_EQ(Bus.Engine.tBit(), Before);
}

TEST(Engine, LeavesNegativeAndOddPeriodsToTheDevice)
{
    Attached Bus;
    Bus.Engine.SetBitPeriod(-1.0F);
    Bus.Engine.SetBitPeriod(std::numeric_limits<float>::infinity());
    Bus.Engine.SetBitPeriod(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(Bus.Device.Frequencies[0], -8.0);
    EXPECT_EQ(Bus.Device.Frequencies[1], 0.0);
    EXPECT_TRUE(std::isnan(Bus.Device.Frequencies[2]));
}

TEST(Engine, ConvertsBetweenBitTimesAndSamples)
{
    struct Case {
        float Bits;
        std::int32_t Samples;
    };
    for (const auto& [Bits, Samples] : {Case{13, 104},
                                        {12.5F, 100},
                                        {13.0625F, 104},
                                        {13.1875F, 106},
                                        {0.0625F, 0},
                                        {0.1875F, 2},
                                        {-0.0625F, 0},
                                        {-0.1875F, -2},
                                        {13.3F, 106}}) {
        EXPECT_EQ(clsLINViaFTDIMPSSE::BitsToSamples(Bits), Samples) << Bits;
    }
    EXPECT_EQ(clsLINViaFTDIMPSSE::SamplesToBits(104), 13.0F);
    EXPECT_EQ(clsLINViaFTDIMPSSE::SamplesToBits(-101), -12.625F);

    const float TooMany = 0x1p28F; // times 8 is 2^31
    EXPECT_EQ(clsLINViaFTDIMPSSE::BitsToSamples(std::nextafter(TooMany, 0.0F)), 0x7FFFFF80);
    for (const float Bits :
         {TooMany, -0x1.000002p28F, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_EQ(FailureOf([&] { clsLINViaFTDIMPSSE::BitsToSamples(Bits); }), Overflow) << Bits;
    }
}

TEST(Engine, WaitsRecessiveForWholeBytes)
{
    Attached Bus;
    Bus.Engine.LINWait(80);
    Bus.Engine.LINWait(81);
    Bus.Engine.LINWait(0);
    EXPECT_EQ(Bus.Device.Sent, (std::vector<Bytes>{Bytes(10, 0xFF), Bytes(11, 0xFF), {}}));
    EXPECT_EQ(Bus.Device.Calls, (Calls{"SendSamples 10 1 0", "SendSamples 11 1 0", "SendSamples 0 1 0"}));
}

TEST(Engine, BreaksEndWithADelimiterOfOneBitTime)
{
    Attached Bus;
    Bus.Engine.LINBreak(104);
    Bus.Engine.LINBreak(100);
    Bus.Engine.LINBreak(0);
    Bytes Whole(13, 0x00);
    Whole.push_back(0xFF);
    Bytes Ragged(12, 0x00);
    Ragged.insert(Ragged.end(), {0xF0, 0xFF});
    EXPECT_EQ(Bus.Device.Sent, (std::vector<Bytes>{Whole, Ragged, {0xFF}}));
    EXPECT_EQ(Bus.Device.Calls[0], "SendSamples 14 1 0");
}

TEST(Engine, NothingNegativeReachesTheDevice)
{
    Attached Bus;
    std::int32_t Received = 0;
    const Bytes Data(9);
    Bytes Answer(9);
    for (const std::int32_t Length : {-1, -8, -80, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(FailureOf([&] { Bus.Engine.LINWait(Length); }), InvalidArgument);
        EXPECT_EQ(FailureOf([&] { Bus.Engine.LINBreak(Length); }), InvalidArgument);
        EXPECT_EQ(FailureOf([&] { Bus.Engine.LINTransmit(Length, 0x55, 0, Data, 1); }), InvalidArgument);
        EXPECT_EQ(FailureOf([&] { Bus.Engine.LINReceive(Length, 0x55, 0, Answer, Received); }), InvalidArgument);
        EXPECT_EQ(FailureOf([&] { Bus.Engine.LINTransmit(104, 0x55, 0, Data, Length); }), InvalidArgument);
    }
    constexpr std::int32_t Most = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(FailureOf([&] { Bus.Engine.LINBreak(Most); }), Overflow);
    EXPECT_EQ(FailureOf([&] { Bus.Engine.LINTransmit(104, 0x55, 0, Data, Most / 10); }), Overflow);
    EXPECT_EQ(FailureOf([&] { Bus.Engine.LINTransmit(104, 0x55, 0, Data, Most); }), Overflow);
    EXPECT_EQ(FailureOf([&] { Bus.Engine.LINTransmit(104, 0x55, 0, Data, 10); }), IndexOutOfRange);
    EXPECT_EQ(Bus.Device.Calls, Calls{});
}

TEST(Engine, NeedsADevice)
{
    clsLINViaFTDIMPSSE Engine;
    std::int32_t Received = 0;
    Bytes Data(9);
    const auto ExpectNotAttached = [&] {
        EXPECT_EQ(FailureOf([&] { Engine.SetBitPeriod(1.0F); }), NotAttached);
        EXPECT_EQ(FailureOf([&] { Engine.LINWait(8); }), NotAttached);
        EXPECT_EQ(FailureOf([&] { Engine.LINBreak(8); }), NotAttached);
        EXPECT_EQ(FailureOf([&] { Engine.LINTransmit(8, 0x55, 0, Data, 1); }), NotAttached);
        EXPECT_EQ(FailureOf([&] { Engine.LINReceive(8, 0x55, 0, Data, Received); }), NotAttached);
    };
    ExpectNotAttached();
    FakeDevice Device;
    Engine.AttachDevice(Device);
    Engine.ReleaseDevice();
    ExpectNotAttached();
}

} // namespace Tarvix
