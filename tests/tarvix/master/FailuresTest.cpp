// What a failing device and a failing log object leave behind, at every call of a session.

#include "tarvix/master/clsLIN.h"
#include "tests/support/CollectingLog.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeDevice.h"
#include "tests/support/SlaveAnswer.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <tuple>
#include <vector>

namespace Tarvix {

using namespace Testing;
using Bytes = std::vector<std::uint8_t>;

namespace {

constexpr std::array<std::uint8_t, 2> Data = {1, 2};

/// Everything that can be read of a master; no record when no frame data is available.
struct State {
    using Record = std::tuple<std::uint8_t, std::int32_t, std::array<std::uint8_t, 9>>;

    float BitTime = 0.0F;
    float BreakWidth = 0.0F;
    std::uint8_t SyncByte = 0;
    std::int32_t ChecksumMode = 0;
    std::optional<Record> Frame;

    explicit State(const clsLIN& Master)
        : BitTime(Master.BaudrateTbit()), BreakWidth(Master.BreakWidth()), SyncByte(Master.SyncByte()),
          ChecksumMode(Master.ChecksumMode())
    {
        if (FailureOf([&] { Frame = {Master.ID(), Master.DataLength(), Master.Data()}; }) != NoFailure) {
            EXPECT_EQ(FailureOf([&] { (void)Master.ID(); }), NoData);
        }
    }
    bool operator==(const State&) const = default;
};

struct Step {
    const char* What;
    std::function<void(clsLIN&)> Do;
    bool IsFrame = false;
};

/// Every operation, each with another value than the one in force; those of frames with two bytes for 0x7D.
const Step Session[] = {
    {"BaudrateBd", [](clsLIN& Master) { Master.BaudrateBd(9600); }},
    {"BreakWidth", [](clsLIN& Master) { Master.BreakWidth(20.0F); }},
    {"SyncByte", [](clsLIN& Master) { Master.SyncByte(0x54); }},
    {"ChecksumMode", [](clsLIN& Master) { Master.ChecksumMode(elcLIN13); }},
    {"WriteFrame", [](clsLIN& Master) { Master.WriteFrame(0x3C, 2, Data); }, true},
    {"Wait", [](clsLIN& Master) { Master.Wait(1); }},
    {"GenerateBreak", [](clsLIN& Master) { Master.GenerateBreak(); }},
    {"ReadFrame", [](clsLIN& Master) { EXPECT_TRUE(Master.ReadFrame(0x7D, 2)); }, true},
    {"WriteFrame2",
     [](clsLIN& Master) {
         Master.WriteFrame2(0x21, 1, Variant::Array{7, 0});
     },
     true},
    {"BaudrateTbit", [](clsLIN& Master) { Master.BaudrateTbit(1e-4F); }},
};

/// A bus that answers requests: nothing else is as long.
void AnswerRequests(std::span<std::uint8_t> Stream)
{
    constexpr std::int32_t ResponseSamples = 14 * 80;
    const auto Samples = static_cast<std::int32_t>(Stream.size()) * 8;
    if (Samples > ResponseSamples + 168) {
        Answering({0x12, 0x34, 0xB9}, Samples - ResponseSamples)(Stream); // the checksum is a classic one
    }
}

struct Bench {
    FakeDevice Device;
    CollectingLog Log;
    clsLIN Master;

    Bench()
    {
        Master.Initialize(Device);
        Master.BaudrateBd(19200);
        Master.ChecksumMode(elcLIN20);
        Master.WriteFrame(0x11, 1, Data);
        Master.Log(&Log);
        Device.Calls.clear();
        Device.Bus = AnswerRequests;
    }

    /// Does what comes before a step.
    void Approach(const Step& Next)
    {
        for (const Step* Earlier = std::begin(Session); Earlier != &Next; ++Earlier) {
            Earlier->Do(Master);
        }
    }
};

/// The states before and after a step that succeeds.
std::pair<State, State> AroundSuccess(const Step& Next)
{
    Bench Lin;
    Lin.Approach(Next);
    const State Before(Lin.Master);
    Next.Do(Lin.Master);
    EXPECT_FALSE(Next.IsFrame && State(Lin.Master) == Before) << Next.What << " shows no effect";
    return {Before, State(Lin.Master)};
}

} // namespace

TEST(FailingDevice, LeavesTheConfigurationAndNoFrame)
{
    std::size_t Failures = 0;
    for (const Step& Next : Session) {
        auto [Expected, Done] = AroundSuccess(Next);
        if (Next.IsFrame) {
            Expected.Frame.reset();
        }
        struct Unplugged {
            std::size_t Call;
        };
        std::size_t Calls = 1;
        for (std::size_t Failing = 0; Failing < Calls; ++Failing) {
            Bench Lin;
            Lin.Approach(Next);
            const std::size_t First = Lin.Device.Calls.size();
            const std::size_t Lines = Lin.Log.Lines.size();
            Lin.Device.BeforeCall = [First, Failing](std::size_t Call) {
                if (Call == First + Failing) {
                    throw Unplugged{Call};
                }
            };
            bool Failed = false;
            try {
                Next.Do(Lin.Master);
            } catch (const Unplugged& Thrown) {
                Failed = Thrown.Call == First + Failing;
            }
            Lin.Device.BeforeCall = nullptr;
            if (!Failed) {
                EXPECT_EQ(Lin.Device.Calls.size(), First + Failing) << Next.What;
                break; // the step makes no more calls
            }
            EXPECT_TRUE(State(Lin.Master) == Expected) << Next.What << " at its call " << Failing;
            EXPECT_EQ(Lin.Log.Lines.size(), Lines) << Next.What << " at its call " << Failing;
            Next.Do(Lin.Master);
            EXPECT_TRUE(State(Lin.Master) == Done) << Next.What << " repeated";
            ++Failures;
            ++Calls;
        }
    }
    EXPECT_EQ(Failures, 3U + 1 + 1 + 1 + 1 + 1 + 3); // three calls set a bit rate, one does anything else on the bus
}

TEST(FailingDevice, CanBeClosedAgain)
{
    struct Unplugged {};
    Bench Lin;
    Lin.Device.BeforeCall = [](std::size_t /*Call*/) { throw Unplugged(); };
    EXPECT_THROW(Lin.Master.Terminate(), Unplugged);
    EXPECT_EQ(Lin.Master.Log(), &Lin.Log);
    Lin.Device.BeforeCall = nullptr;
    Lin.Master.Terminate();
    EXPECT_EQ(Lin.Master.Log(), nullptr);
    EXPECT_EQ(Lin.Device.Calls, std::vector<std::string>{"Close"});
}

TEST(FailingLog, FindsTheWorkDone)
{
    for (const Step& Next : Session) {
        const State Done = AroundSuccess(Next).second;
        Bench Lin;
        Lin.Approach(Next);
        const std::size_t Lines = Lin.Log.Lines.size();
        Lin.Log.Fails = true;
        EXPECT_THROW(Next.Do(Lin.Master), int) << Next.What;
        EXPECT_TRUE(State(Lin.Master) == Done) << Next.What;
        Lin.Log.Fails = false;
        Next.Do(Lin.Master);
        EXPECT_TRUE(State(Lin.Master) == Done) << Next.What;
        EXPECT_EQ(Lin.Log.Lines.size(), Lines + 1) << Next.What;
    }
}

TEST(FailingLog, IsToldOfAReadBeforeItsChecksumIsJudged)
{
    Bench Lin;
    Lin.Log.Fails = true;
    EXPECT_THROW(Lin.Master.ReadFrame(0x7D, 2), int) << "the checksum is wrong for the enhanced model";
    EXPECT_EQ(Lin.Master.Checksum(), 0xB9);
}

} // namespace Tarvix
