// A session over the whole road, from the script to the simulated bus and back, in which the transport or the memory
// fails at one call after the other.

#include "pellumo/emulation/EmulatedTransport.h"
#include "pellumo/errPellumo.h"
#include "pellumo/mpsse/MPSSEDevice.h"
#include "pellumo/simulation/ExampleBus.h"
#include "pellumo/simulation/SimulatedBus.h"
#include "tarvix/common/Raise.h"
#include "tarvix/master/clsLIN.h"
#include "tarvix/script/clsLINScriptInterpreter.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/CollectingLog.h"
#include "tests/support/Errors.h"

#include <gtest/gtest.h>

#include <new>

namespace Pellumo {
namespace {

using namespace Tarvix::Testing;

const Failure Unplugged{static_cast<std::uint32_t>(errPellumo::errUnplugged), "FailingTransport", "pulled out"};

/// A transport that fails once, at one of its calls.
class FailingTransport final : public Transport {
public:
    /// @param CallsLeft  before the one that fails; outlives the transport
    FailingTransport(std::shared_ptr<EmulatedChip> Chip, int& CallsLeft)
        : Inner_(std::move(Chip), "sim:"), CallsLeft_(CallsLeft)
    {
    }

    void Transfer(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In,
                  std::chrono::nanoseconds Limit) override
    {
        Count();
        Inner_.Transfer(Out, In, Limit);
    }
    void Purge() override
    {
        Count();
        Inner_.Purge();
    }
    void Restart() override
    {
        Count();
        Inner_.Restart();
    }
    void Close() override { Inner_.Close(); }
    std::string_view Name() const noexcept override { return Inner_.Name(); }

private:
    void Count()
    {
        if (CallsLeft_-- == 0) {
            Tarvix::Raise(errPellumo::errUnplugged, Unplugged.Source, Unplugged.Description);
        }
    }

    EmulatedTransport Inner_;
    int& CallsLeft_;
};

/// One of everything between a script and the example bus.
struct Road {
    int CallsLeft = -1;
    SimulatedBus Bus{ExampleBus()};
    MPSSEDevice Device{
        std::make_unique<FailingTransport>(std::make_shared<EmulatedChip>(ChipFamily::FT232H, Bus), CallsLeft),
        ChipFamily::FT232H};
    CollectingLog Log;
    Tarvix::clsLIN Master;
    Tarvix::clsLINScriptInterpreter Interpreter;

    Road()
    {
        Master.Initialize(Device);
        Master.Log(&Log);
        Interpreter.Initialize(Master);
    }

    static constexpr int ScriptLines = 8;
    void Run()
    {
        Log.Lines.clear();
        Interpreter.ExecuteScript("BAUDRATE 19200 BD; BREAK_WIDTH 14; SYNC_BYTE (55); CHKSUM_MODE LIN2_0;\n"
                                  "WAIT 300; BREAK;\n"
                                  "WRITE_FRAME ID (20) LEN 2 TX (0A 0B);\n"
                                  "READ_FRAME ID (61) LEN 2 RX (0A 0B);\n");
    }

    /// The same session again finds all in order.
    void ExpectUsable()
    {
        EXPECT_EQ(FailureOf([&] { Run(); }), NoFailure);
        EXPECT_EQ(Log.Lines.size(), ScriptLines);
        EXPECT_EQ(Master.ID(), 0x61);
    }
};

TEST(RoadFailures, OfTheTransportArriveUnchangedAtEveryCall)
{
    int Failing = 0;
    for (bool Failed = true; Failed; ++Failing) {
        Road Whole;
        Whole.CallsLeft = Failing;
        const Failure Raised = FailureOf([&] { Whole.Run(); });
        Failed = Raised != NoFailure;
        EXPECT_TRUE(!Failed || Raised == Unplugged) << Raised << " at call " << Failing;
        EXPECT_EQ(Failed, Whole.CallsLeft < 0) << "at call " << Failing;
        Whole.CallsLeft = -1;
        Whole.ExpectUsable();
    }
    EXPECT_EQ(Failing - 1, 5) << "one transfer for the bit rate, the pause, the break and each of the frames";
}

TEST(RoadFailures, OfMemoryArriveAtEveryAllocation)
{
    std::size_t Failing = 0;
    for (bool Failed = true; Failed; ++Failing) {
        const std::size_t LiveBefore = LiveBytes();
        {
            std::unique_ptr<Road> Whole;
            FailAllocation(Failing);
            Failed = false;
            try {
                Whole = std::make_unique<Road>();
                Whole->Run();
            } catch (const std::bad_alloc&) {
                Failed = true;
            }
            EXPECT_EQ(FailAllocation(std::nullopt), Failed) << "at allocation " << Failing;
            if (!Whole) {
                Whole = std::make_unique<Road>();
            }
            Whole->ExpectUsable();
        }
        EXPECT_EQ(LiveBytes(), LiveBefore) << "at allocation " << Failing;
    }
    EXPECT_GT(Failing, 30U);
}

} // namespace
} // namespace Pellumo
