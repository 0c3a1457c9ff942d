// Faults at every transfer, and how a device goes on after one.

#include "pellumo/mpsse/MPSSEDevice.h"
#include "tests/pellumo/usb/USBTest.h"

#include <utility>

namespace Pellumo::Testing {
namespace {

using namespace std::chrono_literals;

struct FaultCase {
    const char* Name;
    Fault Kind;
    errPellumo Number;
};

class USBFaults : public USBTest, public testing::WithParamInterface<FaultCase> {
protected:
    // Every kind of transfer that there is. Closing never fails.
    static void Session()
    {
        const auto Pipe = OpenUSBTransport({}).Pipe;
        Bytes Answer(2);
        Pipe->Transfer(Bytes{0xAA, 0x87}, Answer, 20ms);
        EXPECT_EQ(Answer, (Bytes{0xFA, 0xAA}));
        Pipe->Purge();
        Pipe->Transfer(Bytes{0x80, 0x03, 0x0B}, {}, 20ms);
    }
};

INSTANTIATE_TEST_SUITE_P(All, USBFaults,
                         testing::Values(FaultCase{"Stall", Fault::Stall, errPellumo::errStalled},
                                         FaultCase{"Unplug", Fault::Unplug, errPellumo::errUnplugged},
                                         FaultCase{"Mute", Fault::Mute, errPellumo::errTimeout},
                                         FaultCase{"Broken", Fault::Broken, errPellumo::errUSB}),
                         [](const auto& Info) { return Info.param.Name; });

TEST_P(USBFaults, AtEveryTransferBearTheirNumberAndLeaveNothingOpen)
{
    const std::size_t Count = [this] {
        FakeUSBDevice& Sound = Usb.Plug(ChipFamily::FT232H, "S", Wires);
        Session();
        Sound.Unplug();
        return Sound.Transfers;
    }();
    ASSERT_EQ(Count, 17U); // 2 for the serial number, 9 to set up, read, write, 2 to purge, write, 1 to close

    for (std::size_t k = 0; k < Count; ++k) {
        FakeUSBDevice& Chip = Usb.Plug(ChipFamily::FT232H, "S", Wires);
        Chip.Faults[k] = GetParam().Kind;
        const Failure Raised = FailureOf(Session);
        const bool Closing = k == Count - 1;
        EXPECT_EQ(Raised.Number, Closing ? 0U : static_cast<std::uint32_t>(GetParam().Number)) << k << Raised;
        EXPECT_EQ(Raised.Description.starts_with("ftdi://ftdi:232h"), !Closing) << k << Raised;
        EXPECT_EQ(Usb.OpenDevices(), 0U) << k;
        EXPECT_TRUE(Chip.Claimed.empty()) << k;
        Chip.Unplug();
    }
}

// How many bytes of samples stand in the chip's buffer before a setting when the fault happens.
class USBRecovery : public USBTest, public testing::WithParamInterface<std::int32_t> {
protected:
    FakeUSBDevice& Chip = Usb.Plug(ChipFamily::FT232H, "S", Wires);
    OpenedUSBTransport Opened = OpenUSBTransport({});
    MPSSEDevice Device{std::move(Opened.Pipe), Opened.Family};
};
INSTANTIATE_TEST_SUITE_P(Queued, USBRecovery, testing::Values(2, 3, 4, 5, 6, 7, 8, 800));

TEST_P(USBRecovery, GoesOnAtTheFirstAttemptWithTheSettingsThatWereStillQueued)
{
    Device.ConfigurePins(0x03, 0x0B);
    Device.SetOption(0);
    Device.SetClockDivisor(194);
    Device.SendSamples(Pattern(800), GetParam(), 1, 0);
    Device.SetClockDivisor(389);

    Bytes Samples = Pattern(174);
    Chip.Faults[Chip.Transfers + 1] = Fault::Stall; // the write; the read is in flight by then
    EXPECT_EQ(FailureOf([&] { Device.ExchangeSamples(Samples, 174, 1, 0, 0); }).Number,
              static_cast<std::uint32_t>(errPellumo::errStalled));
    Wires.Calls.clear();

    Samples = Pattern(174);
    Device.ExchangeSamples(Samples, 174, 1, 0, 0);
    EXPECT_EQ(Samples, Pattern(174));
    EXPECT_EQ(Wires.Stream(), Pattern(174)) << "nothing else reaches the bus";
    EXPECT_EQ(Wires.Calls.front().SampleTicks, 2 * 390);
    EXPECT_EQ(Wires.Calls.back().SampleTicks, 2 * 390);
}

} // namespace
} // namespace Pellumo::Testing
