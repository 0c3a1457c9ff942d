// What stays after a failure.

#include "pellumo/errPellumo.h"
#include "pellumo/mpsse/MPSSEDevice.h"
#include "tarvix/common/Raise.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeTransport.h"

#include <gtest/gtest.h>

#include <functional>

namespace Pellumo {
namespace {

using namespace std::chrono_literals;
using Tarvix::Testing::Failure;
using Tarvix::Testing::FailureOf;
using Tarvix::Testing::NoFailure;
using Testing::FakeTransport;
using Testing::TransportRecord;
using Bytes = std::vector<std::uint8_t>;
using Lines = std::vector<std::string>;

const Failure Unplugged{static_cast<std::uint32_t>(errPellumo::errUnplugged), "FakeTransport", "pulled out"};

void Unplug()
{
    Tarvix::Raise(errPellumo::errUnplugged, "FakeTransport", "pulled out");
}

class Opened : public testing::Test {
protected:
    TransportRecord Record;
    MPSSEDevice Device{std::make_unique<FakeTransport>(Record), ChipFamily::FT232H};
};

// A device from opening to closing; returns what the first failing operation raised.
Failure RunWhole(TransportRecord& Record)
{
    Failure First;
    const auto Try = [&First](const std::function<void()>& Step) {
        const Failure Result = FailureOf(Step);
        First = First == NoFailure ? Result : First;
    };
    std::unique_ptr<MPSSEDevice> Device;
    Try([&] { Device = std::make_unique<MPSSEDevice>(std::make_unique<FakeTransport>(Record), ChipFamily::FT232H); });
    if (!Device) {
        return First;
    }
    Bytes Samples(8);
    Try([&] { Device->ConfigurePins(0x03, 0x0B); });
    Try([&] { Device->SetOption(0); });
    Try([&] { Device->SetClockDivisor(194); });
    Try([&] { Device->SendSamples(Samples, 8, 1, 0); });
    Try([&] { Device->ExchangeSamples(Samples, 8, 1, 0, 0); });
    Try([&] { Device->Close(); });
    return First;
}

TEST(FailingTransport, ErrorsArriveUnchangedAndTheTransportIsClosedAtEveryCall)
{
    TransportRecord Whole;
    ASSERT_EQ(RunWhole(Whole), NoFailure);
    ASSERT_EQ(Whole.Calls.size(), 9U);
    for (std::size_t n = 0; n < Whole.Calls.size(); ++n) {
        TransportRecord Record;
        bool Failed = false;
        Record.BeforeCall = [&](std::size_t CallsBefore) {
            if (CallsBefore == n && !Failed) {
                Failed = true;
                Unplug();
            }
        };
        EXPECT_EQ(RunWhole(Record), Unplugged) << n;
        const bool WasOpened = n > 1;
        const bool FailedToClose = n == Whole.Calls.size() - 1;
        EXPECT_EQ(!Record.Calls.empty() && Record.Calls.back() == "close", WasOpened && !FailedToClose) << n;
    }
}

// Commands that were taken without an answer may never have been executed.
class Recovery : public Opened {
protected:
    void Fail()
    {
        Record.BeforeCall = [](std::size_t) { Unplug(); };
        EXPECT_EQ(FailureOf([this] { Device.SetClockDivisor(7); }), Unplugged);
        Record.BeforeCall = nullptr;
        Record.Calls.clear();
    }
};
struct SettingsCase {
    const char* Name;
    std::function<void(MPSSEDevice&)> Set;
    const char* Restored;
};

class RecoveryOfSettings : public Recovery, public testing::WithParamInterface<SettingsCase> {};
INSTANTIATE_TEST_SUITE_P(
    Settings, RecoveryOfSettings,
    testing::Values(SettingsCase{"None", [](MPSSEDevice&) {}, "80 00 00"},
                    SettingsCase{"Pins", [](MPSSEDevice& Device) { Device.ConfigurePins(0x03, 0x0B); }, "80 03 0B"},
                    SettingsCase{"Option", [](MPSSEDevice& Device) { Device.SetOption(0); }, "80 00 00 8A 97 8D 85"},
                    SettingsCase{"Divisor", [](MPSSEDevice& Device) { Device.SetClockDivisor(0x1234); },
                                 "80 00 00 86 34 12"},
                    SettingsCase{"All",
                                 [](MPSSEDevice& Device) {
                                     Device.ConfigurePins(0x03, 0x0B);
                                     Device.SetOption(0);
                                     Device.SetClockDivisor(0x00C2);
                                 },
                                 "80 03 0B 8A 97 8D 85 86 C2 00"}),
    [](const auto& Info) { return Info.param.Name; });

TEST_P(RecoveryOfSettings, GivesThemBackToTheRestartedEngineOnce)
{
    GetParam().Set(Device);
    Fail();
    Device.SetClockDivisor(7);
    Device.SetClockDivisor(8);
    EXPECT_EQ(Record.Calls, (Lines{"restart", "AA 87 <2", GetParam().Restored, "86 07 00", "86 08 00"}));
}

TEST_F(Recovery, BeginsAgainWhereverItFails)
{
    Device.SetClockDivisor(7);
    const Lines Whole = {"restart", "AA 87 <2", "80 00 00 86 07 00", "86 07 00"};
    for (std::size_t n = 0; n < Whole.size(); ++n) {
        Fail();
        Record.BeforeCall = [n](std::size_t CallsBefore) {
            if (CallsBefore == n) {
                Unplug();
            }
        };
        EXPECT_EQ(FailureOf([this] { Device.SetClockDivisor(7); }), Unplugged) << n;
        Record.BeforeCall = nullptr;
        Record.Calls.clear();
        Device.SetClockDivisor(7);
        EXPECT_EQ(Record.Calls, Whole) << n;
    }
}

TEST_F(Recovery, KeepsTheFrameThatWaitsToBeSent)
{
    Fail();
    Device.SendSamples(Bytes{0x0F, 0xF1}, 2, 1, 0);
    EXPECT_EQ(Record.Calls.back(), "18 01 00 0F F1");
}

TEST_F(Recovery, WaitsForNothingThatWasQueued)
{
    Device.SetClockDivisor(29999);
    Device.SendSamples(Bytes(1250), 1250, 1, 0);
    Fail();
    Device.SetClockDivisor(7);
    for (std::size_t k = Record.Transfers.size() - 3; k < Record.Transfers.size(); ++k) {
        EXPECT_EQ(Record.Transfers[k].Limit, 1s) << k;
    }
}

TEST_F(Recovery, OfADeviceThatIsClosedLeavesTheLineRecessive)
{
    Device.ConfigurePins(0x01, 0x0B);
    Fail();
    Device.Close();
    EXPECT_EQ(Record.Calls, (Lines{"restart", "AA 87 <2", "80 01 0B", "80 03 0B 81 87 <1", "close"}));
}

TEST_F(Opened, StaysOutOfStepWhenTheEngineDoesNotAnswerAgain)
{
    Record.BeforeCall = [](std::size_t) { Unplug(); };
    EXPECT_EQ(FailureOf([&] { Device.SetClockDivisor(1); }), Unplugged);
    Record.BeforeCall = nullptr;
    Record.BogusAnswer = {0x00, 0xFA};
    for (int Attempt = 0; Attempt < 2; ++Attempt) {
        EXPECT_EQ(FailureOf([&] { Device.SetClockDivisor(1); }).Number,
                  static_cast<std::uint32_t>(errPellumo::errNoEngine));
    }
    EXPECT_EQ(FailureOf([&] { Device.Close(); }).Number, static_cast<std::uint32_t>(errPellumo::errNoEngine));
    EXPECT_EQ(Record.Calls.back(), "close");
}

TEST_F(Opened, ClosingFailsWithTheFirstOfTwoErrorsAndOnlyOnce)
{
    Record.BeforeCall = [First = true](std::size_t) mutable {
        if (std::exchange(First, false)) {
            Unplug();
        }
        Tarvix::Raise(errPellumo::errUSB, "FakeTransport", "the second");
    };
    EXPECT_EQ(FailureOf([&] { Device.Close(); }), Unplugged);
    EXPECT_EQ(FailureOf([&] { Device.Close(); }), NoFailure);
}

TEST(FailingTransport, DestructionRaisesNothing)
{
    TransportRecord Record;
    {
        const MPSSEDevice Device(std::make_unique<FakeTransport>(Record), ChipFamily::FT232H);
        Record.BeforeCall = [](std::size_t) { Unplug(); };
    }
    EXPECT_EQ(Record.Calls, (Lines{"purge", "AA 87 <2"}));
}

} // namespace
} // namespace Pellumo
