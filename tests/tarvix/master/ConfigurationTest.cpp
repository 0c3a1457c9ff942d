#include "tarvix/master/Process.h"
#include "tarvix/master/clsLIN.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeDevice.h"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

namespace Tarvix {

using namespace Testing;
using Calls = std::vector<std::string>;

static_assert(!std::is_copy_constructible_v<clsLIN> && !std::is_copy_assignable_v<clsLIN>);

TEST(Master, StartsWithTheCustomarySettings)
{
    clsLIN Master;
    EXPECT_EQ(Master.BreakWidth(), 13.0F);
    EXPECT_EQ(Master.SyncByte(), 0x55);
    EXPECT_EQ(Master.ChecksumMode(), elcLIN20);
    EXPECT_EQ(Master.Log(), nullptr);
    EXPECT_EQ(Master.BaudrateTbit(), 0.0F);
    EXPECT_EQ(FailureOf([&] { Master.BaudrateBd(); }), DivisionByZero);
    EXPECT_EQ(FailureOf([&] { Master.ID(); }), NoData);
}

TEST(Master, RoundsTheBreakWidthToSamplesHalfToEven)
{
    clsLIN Master;
    struct Case {
        float Set, Read;
    };
    for (const auto& [Set, Read] : {Case{13.3F, 13.25F}, {13.0625F, 13.0F}, {13.1875F, 13.25F}, {0.05F, 0.0F}}) {
        Master.BreakWidth(Set);
        EXPECT_EQ(Master.BreakWidth(), Read) << Set;
    }
}

TEST(Master, RefusesBreakWidthsAndKeepsTheOldOne)
{
    clsLIN Master;
    Master.BreakWidth(20.0F);
    for (const float Width :
         {0.0F, -0.0F, -1.0F, -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_EQ(FailureOf([&] { Master.BreakWidth(Width); }), InvalidParameter) << Width;
    }
    for (const float Width : {0x1p28F, std::numeric_limits<float>::infinity()}) {
        EXPECT_EQ(FailureOf([&] { Master.BreakWidth(Width); }), Overflow) << Width;
    }
    EXPECT_EQ(Master.BreakWidth(), 20.0F);
}

TEST(Master, AcceptsTheTwoChecksumModesOnly)
{
    clsLIN Master;
    Master.ChecksumMode(elcLIN13);
    for (const std::int32_t Mode : {-1, 2, std::numeric_limits<std::int32_t>::max()}) {
        EXPECT_EQ(FailureOf([&] { Master.ChecksumMode(Mode); }), InvalidParameter) << Mode;
    }
    EXPECT_EQ(Master.ChecksumMode(), 0);
    Master.ChecksumMode(1);
    EXPECT_EQ(Master.ChecksumMode(), 1);
}

TEST(Master, ReportsTheBitRateThatTheDeviceAchieves)
{
    FakeDevice Device;
    clsLIN Master;
    Master.Initialize(Device);
    Master.BaudrateBd(19200);
    EXPECT_EQ(Device.Frequencies.back(), 1.0 / double{static_cast<float>(1.0 / 19200) / 8});
    EXPECT_EQ(Master.BaudrateBd(), 19231); // 30 MHz / 195 / 8
    EXPECT_EQ(Master.BaudrateTbit(), 8 * static_cast<float>(195 / 30e6));

    Master.BaudrateTbit(1.0F / 9600);
    EXPECT_EQ(Device.Frequencies.back(), 1.0 / double{1.0F / 9600 / 8});
    EXPECT_EQ(Master.BaudrateBd(), 9591); // 30 MHz / 391 / 8

    const std::size_t Before = Device.Calls.size();
    EXPECT_EQ(FailureOf([&] { Master.BaudrateBd(0); }), DivisionByZero);
    EXPECT_EQ(Device.Calls.size(), Before);
    Device.ClockOf = [](std::int32_t) { return 0.5 * 8; }; // half a bit per second rounds to the even neighbour
    Master.BaudrateBd(1);
    EXPECT_EQ(Master.BaudrateBd(), 0);
    Device.ClockOf = [](std::int32_t) { return 1e11; };
    Master.BaudrateBd(1);
    EXPECT_EQ(FailureOf([&] { Master.BaudrateBd(); }), Overflow);
}

TEST(Master, WaitsAndBreaksInSamples)
{
    FakeDevice Device;
    clsLIN Master;
    Master.Initialize(Device);
    Device.Calls.clear();
    Master.Wait(10);
    Master.Wait(0);
    Master.Wait(32767);
    Master.GenerateBreak();
    Master.BreakWidth(0.05F);
    Master.GenerateBreak();
    EXPECT_EQ(FailureOf([&] { Master.Wait(-1); }), InvalidArgument);
    EXPECT_EQ(Device.Calls, (Calls{"SendSamples 10 1 0", "SendSamples 0 1 0", "SendSamples 32767 1 0",
                                   "SendSamples 14 1 0", "SendSamples 1 1 0"}));
}

TEST(Master, CanChangeDevices)
{
    FakeDevice First;
    FakeDevice Second;
    clsLIN Master;
    Master.Initialize(First);
    Master.Initialize(Second);
    Master.GenerateBreak();
    Master.Terminate();
    EXPECT_EQ(First.Calls, (Calls{"ConfigurePins 3 11", "SetOption 0"}));
    EXPECT_EQ(Second.Calls, (Calls{"ConfigurePins 3 11", "SetOption 0", "SendSamples 14 1 0", "Close"}));
}

TEST(Master, NeedsADeviceBeforeAndAnEngineAfter)
{
    FakeDevice Device;
    clsLIN Master;
    const std::uint8_t Data[2] = {1, 2};
    const auto ExpectNotAttached = [&] {
        EXPECT_EQ(FailureOf([&] { Master.BaudrateBd(9600); }), NotAttached);
        EXPECT_EQ(FailureOf([&] { Master.BaudrateBd(0); }), DivisionByZero) << "the value is judged first";
        EXPECT_EQ(FailureOf([&] { Master.BaudrateTbit(1.0F); }), NotAttached);
        EXPECT_EQ(FailureOf([&] { Master.Wait(1); }), NotAttached);
        EXPECT_EQ(FailureOf([&] { Master.GenerateBreak(); }), NotAttached);
        EXPECT_EQ(FailureOf([&] { Master.WriteFrame(1, 2, Data); }), NotAttached);
        EXPECT_EQ(FailureOf([&] { Master.ReadFrame(1, 2); }), NotAttached);
    };
    ExpectNotAttached();
    Master.Initialize(Device);
    Master.WriteFrame(0xC1, 2, Data);
    Master.BreakWidth(20.0F);
    Master.Terminate();
    EXPECT_EQ(Master.Checksum(), 0x3B) << "the last frame stays readable";
    EXPECT_EQ(Master.BreakWidth(), 20.0F);
    ExpectNotAttached();
    EXPECT_EQ(FailureOf([&] { Master.BaudrateBd(); }), NotAttached);
    EXPECT_EQ(FailureOf([&] { Master.Initialize(Device); }), NotAttached);
    Device.Calls.clear();
    Master.Terminate();
    EXPECT_TRUE(Device.Calls.empty()) << "the refused device is not closed";
}

TEST(Master, TerminateClosesOnceAndDestructionNever)
{
    FakeDevice Device;
    {
        clsLIN Master;
        Master.Initialize(Device);
    }
    EXPECT_EQ(Device.Calls.back(), "SetOption 0");
    clsLIN Master;
    Master.Initialize(Device);
    Device.Calls.clear();
    Master.Terminate();
    Master.Terminate();
    EXPECT_EQ(Device.Calls, Calls{"Close"});
}

TEST(Process, TellsTheVersion)
{
    const Process Library;
    EXPECT_EQ(Library.Major(), 1);
    EXPECT_EQ(Library.Minor(), 1);
    EXPECT_EQ(Library.Revision(), 0);
}

} // namespace Tarvix
