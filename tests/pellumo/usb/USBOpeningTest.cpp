// Finding the chip that is meant, taking it, and giving it back.

#include "pellumo/DeviceList.h"
#include "tests/pellumo/usb/USBTest.h"

#include <cerrno>
#include <string>

namespace Pellumo::Testing {
namespace {

constexpr const char* InstallRules = "no permission. Copy the udev rules file 70-tarvix.rules to /etc/udev/rules.d and "
                                     "plug the chip in again";

using USBOpening = USBTest;

Failure OpeningFails(const ChipAddress& Address)
{
    return FailureOf([&] { OpenUSBTransport(Address); });
}

TEST_F(USBOpening, PutsTheChipIntoMPSSEModeAndOutOfItAgain)
{
    FakeUSBDevice& Chip = Usb.Plug(ChipFamily::FT2232H, "FT0001", Wires);

    const auto Opened = OpenUSBTransport(At("ftdi:///2"));
    const std::vector<ChipRequest> SetUp = {
        {0x00, 0, 2},      // reset
        {0x06, 0, 2},      // no event character
        {0x07, 0, 2},      // no error character
        {0x09, 255, 2},    // latency timer
        {0x02, 0, 0x0102}, // flow control RTS/CTS
        {0x0B, 0x0000, 2}, // mode: reset
        {0x0B, 0x0200, 2}, // mode: MPSSE
        {0x00, 1, 2},      // empty the command buffer
        {0x00, 2, 2},      // empty the answer buffer
    };
    EXPECT_EQ(Chip.Requests, SetUp);
    EXPECT_EQ(Opened.Family, ChipFamily::FT2232H);
    EXPECT_EQ(Opened.Pipe->Name(), "ftdi://ftdi:2232h:FT0001/2");

    Chip.Requests.clear();
    Opened.Pipe->Close();
    EXPECT_EQ(Chip.Requests, (std::vector<ChipRequest>{{0x0B, 0x0000, 2}}));
    EXPECT_EQ(Usb.OpenDevices(), 0U);
    Opened.Pipe->Close();
    EXPECT_EQ(Chip.Requests.size(), 1U);
}

// What was queued goes before the engine is reset: it would take the rest of some samples for commands.
TEST_F(USBOpening, ARestartSwitchesTheEngineAloneOffAndOnBetweenEmptyBuffers)
{
    FakeUSBDevice& Chip = Usb.Plug(ChipFamily::FT232H, "FT0001", Wires);
    const auto Opened = OpenUSBTransport({});
    Chip.Requests.clear();
    Opened.Pipe->Restart();
    EXPECT_EQ(Chip.Requests,
              (std::vector<ChipRequest>{
                  {0x00, 1, 1}, {0x00, 2, 1}, {0x0B, 0x0000, 1}, {0x0B, 0x0200, 1}, {0x00, 1, 1}, {0x00, 2, 1}}));
}

TEST_F(USBOpening, TakesTheChipOutOfMPSSEModeWhenTheLastStepFails)
{
    FakeUSBDevice& Chip = Usb.Plug(ChipFamily::FT232H, "FT0001", Wires);
    Chip.Faults[10] = Fault::Stall; // emptying the answer buffer
    EXPECT_EQ(OpeningFails({}), Error(errPellumo::errStalled, "USBPort",
                                      "ftdi://ftdi:232h:FT0001/1: emptying the buffers failed: the chip refused it. "
                                      "Plug it in again and try again"));
    EXPECT_EQ(Chip.Requests.back(), (ChipRequest{0x0B, 0x0000, 1}));
    EXPECT_TRUE(Chip.Claimed.empty());
}

TEST_F(USBOpening, TakesThePortFromTheKernelDriverAndGivesItBack)
{
    FakeUSBDevice& Chip = Usb.Plug(ChipFamily::FT2232H, "FT0001", Wires);
    Chip.KernelDriver = {0, 1};
    {
        const auto Opened = OpenUSBTransport({});
        EXPECT_EQ(Chip.KernelDriver, (std::set<unsigned>{1}));
    }
    EXPECT_EQ(Chip.KernelDriver, (std::set<unsigned>{0, 1}));

    Chip.Faults[Chip.Transfers + 2] = Fault::Stall; // after the serial number: the reset
    EXPECT_EQ(OpeningFails({}).Number, static_cast<std::uint32_t>(errPellumo::errStalled));
    EXPECT_EQ(Chip.KernelDriver, (std::set<unsigned>{0, 1}));
}

TEST_F(USBOpening, TellsWhatStandsInTheWay)
{
    FakeUSBDevice& Chip = Usb.Plug(ChipFamily::FT232H, "FT0001", Wires);
    {
        const auto First = OpenUSBTransport({});
        EXPECT_EQ(OpeningFails({}),
                  Error(errPellumo::errBusy, "USBPort",
                        "ftdi://ftdi:232h:FT0001/1: claiming the interface failed: another program holds the chip. End "
                        "that program and try again"));
    }
    Chip.KernelDriver = {0};
    Chip.DriverStays = true;
    EXPECT_EQ(OpeningFails({}), Error(errPellumo::errDriver, "USBPort",
                                      "ftdi://ftdi:232h:FT0001/1: a kernel driver holds the chip and does not let go. "
                                      "Unload it (`sudo rmmod ftdi_sio`) and try again"));
    Chip.OpenError = EACCES;
    EXPECT_EQ(OpeningFails({}),
              Error(errPellumo::errPermission, "USBChips",
                    std::string("ftdi://ftdi:232h/1: opening the chip failed: ").append(InstallRules)));
}

TEST_F(USBOpening, FindsTheChipThatTheAddressNames)
{
    Usb.Plug(ChipFamily::FT232H, "R", Wires).Release = 0x0600; // an FT232R under a stolen product identifier
    Usb.Plug(ChipFamily::FT2232D, "D", Wires);
    Usb.Plug(ChipFamily::FT2232H, "H", Wires);
    Usb.Plug(ChipFamily::FT232H, "A", Wires).OpenError = EACCES;
    Usb.Plug(ChipFamily::FT232H, "B", Wires);
    FakeUSBDevice& Renamed = Usb.Plug(ChipFamily::FT4232H, "", Wires);
    Renamed.Vendor = 0x15BA;
    Renamed.Product = 0x002A;

    const auto NameOf = [](const ChipAddress& Address) { return std::string(OpenUSBTransport(Address).Pipe->Name()); };
    EXPECT_EQ(NameOf({}), "ftdi://ftdi:2232d:D/1");
    EXPECT_EQ(NameOf(At("ftdi://:6010:H/1")), "ftdi://ftdi:2232h:H/1");
    EXPECT_EQ(NameOf(At("ftdi://::B/1")), "ftdi://ftdi:232h:B/1");
    EXPECT_EQ(NameOf(At("ftdi://15BA/2")), "ftdi://0x15ba:0x002a/2");
    // The chip that cannot be opened may be the one.
    EXPECT_EQ(OpeningFails(At("ftdi://::A/1")).Number, static_cast<std::uint32_t>(errPellumo::errPermission));
    EXPECT_EQ(OpeningFails(At("ftdi://:6014/1")).Number, static_cast<std::uint32_t>(errPellumo::errPermission));
    EXPECT_EQ(OpeningFails(At("ftdi://::R/1")),
              Error(errPellumo::errWrongChip, "USBChips",
                    "ftdi://ftdi:0x6014:R/1: the chip (FT232R) has no MPSSE engine. Use an FT232H, FT2232H, FT4232H or "
                    "FT2232D"));
    EXPECT_EQ(OpeningFails(At("ftdi://:6010:X/2")),
              Error(errPellumo::errNotFound, "USBChips",
                    "No chip on USB matches ftdi://:0x6010:X/2. Found: ftdi://ftdi:2232d:D/1 (FT2232D) "
                    "ftdi://ftdi:2232h:H/1 (FT2232H)"));
    EXPECT_EQ(OpeningFails(At("ftdi://:6011/1")),
              Error(errPellumo::errNotFound, "USBChips",
                    "No chip on USB matches ftdi://:0x6011/1. None with these identifiers is plugged in; check the "
                    "cable, and the address with `tarvix devices`"));
}

TEST_F(USBOpening, TellsChipsWithOneIdentifierApartByTheirNames)
{
    Usb.Plug(ChipFamily::FT2232H, "", Wires);
    Usb.Plug(ChipFamily::FT2232D, "", Wires);
    for (const auto& [URL, Family] : {std::pair{"ftdi://:2232d/1", ChipFamily::FT2232D},
                                      {"ftdi://:2232h/1", ChipFamily::FT2232H},
                                      {"ftdi://:2232/1", ChipFamily::FT2232H},
                                      {"ftdi://:0x6010/1", ChipFamily::FT2232H}}) {
        EXPECT_EQ(OpenUSBTransport(At(URL)).Family, Family) << URL;
    }
    EXPECT_EQ(OpeningFails(At("ftdi://ftdi:2232h:X/1")).Description,
              "No chip on USB matches ftdi://ftdi:2232h:X/1. Found: ftdi://ftdi:2232h/1 (FT2232H) "
              "ftdi://ftdi:2232d/1 (FT2232D)");
}

TEST_F(USBOpening, GuessesAmongLockedChipsOneThatHasTheInterface)
{
    FakeUSBDevice& Plain = Usb.Plug(ChipFamily::FT232H, "R", Wires);
    Plain.Release = 0x0600; // an FT232R
    Plain.OpenError = EACCES;
    Usb.Plug(ChipFamily::FT232H, "A", Wires).OpenError = EACCES;
    Usb.Plug(ChipFamily::FT2232H, "B", Wires).OpenError = EACCES;
    EXPECT_EQ(OpeningFails(At("ftdi://::X/1")).Description,
              std::string("ftdi://ftdi:232h/1: opening the chip failed: ").append(InstallRules));
    EXPECT_EQ(OpeningFails(At("ftdi://::X/2")).Description,
              std::string("ftdi://ftdi:2232h/2: opening the chip failed: ").append(InstallRules));
}

struct InterfaceCase {
    ChipFamily Family;
    int Interface;
    errPellumo Number;
    const char* Description;
};

class USBInterfaces : public USBTest, public testing::WithParamInterface<InterfaceCase> {};

TEST_P(USBInterfaces, WithoutAnEngineAreRefused)
{
    FakeUSBDevice& Chip = Usb.Plug(GetParam().Family, "S", Wires);
    EXPECT_EQ(OpeningFails({{}, {}, {}, {}, GetParam().Interface}),
              Error(GetParam().Number, "USBChips", GetParam().Description));
    EXPECT_TRUE(Chip.Requests.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Last, USBInterfaces,
    testing::Values(
        InterfaceCase{ChipFamily::FT2232D, 2, errPellumo::errWrongChip,
                      "ftdi://ftdi:2232d:S/2: the FT2232D has no MPSSE engine on this interface. Use interface 1"},
        InterfaceCase{ChipFamily::FT4232H, 3, errPellumo::errWrongChip,
                      "ftdi://ftdi:4232h:S/3: the FT4232H has no MPSSE engine on this interface. Use interface 1 or 2"},
        InterfaceCase{ChipFamily::FT4232H, 5, errPellumo::errNotFound,
                      "ftdi://ftdi:4232h:S/5: the FT4232H has no such interface. Use interface 1 or 2"},
        InterfaceCase{ChipFamily::FT232H, 2, errPellumo::errNotFound,
                      "ftdi://ftdi:232h:S/2: the FT232H has no such interface. Use interface 1"},
        InterfaceCase{ChipFamily::FT232H, 0, errPellumo::errNotFound,
                      "ftdi://ftdi:232h:S/0: the FT232H has no such interface. Use interface 1"}));

TEST_F(USBOpening, TwoPortsOfOneChipAreTwoDevices)
{
    FakeUSBDevice& Chip = Usb.Plug(ChipFamily::FT2232H, "FT0001", Wires);
    const auto First = OpenUSBTransport(At("ftdi:///1"));
    const auto Second = OpenUSBTransport(At("ftdi:///2"));
    Bytes Answer(1);
    First.Pipe->Transfer(Bytes{0x80, 0x50, 0xFF, 0x81}, {}, std::chrono::seconds(1));
    Second.Pipe->Transfer(Bytes{0x80, 0xA0, 0xFF, 0x81, 0x87}, Answer, std::chrono::seconds(1));
    EXPECT_EQ(Answer[0] & 0xF0, 0xA0);
    First.Pipe->Transfer(Bytes{0x87}, Answer, std::chrono::seconds(1));
    EXPECT_EQ(Answer[0] & 0xF0, 0x50);
    EXPECT_EQ(Chip.Claimed.size(), 2U);
}

TEST_F(USBOpening, ListsEveryPortAndWhatStandsInItsWay)
{
    EXPECT_TRUE(FindDevices().empty());

    Usb.Plug(ChipFamily::FT232H, "R", Wires).Release = 0x0600;
    Usb.Plug(ChipFamily::FT4232H, "Q", Wires).KernelDriver = {0};
    Usb.Plug(ChipFamily::FT232H, "P", Wires).OpenError = EACCES;
    Usb.Plug(ChipFamily::FT232H, "V", Wires).Vendor = 0x15BA;
    const auto Held = OpenUSBTransport(At("ftdi://::Q/2"));

    std::string Lines;
    for (const FoundDevice& Each : FindDevices()) {
        Lines.append(Each.URL).append(" ").append(Each.Product).append(" ").append(Each.Serial).append(" ");
        Lines.append(std::to_string(Each.Interface)).append(Each.KernelDriver ? " driver " : " ");
        Lines.append(Each.Obstacle).append("\n");
    }
    EXPECT_EQ(Lines, std::string("ftdi://ftdi:0x6014:R/1 FT232R R 1 it has no MPSSE engine\n"
                                 "ftdi://ftdi:4232h:Q/1 FT4232H Q 1 driver \n"
                                 "ftdi://ftdi:4232h:Q/2 FT4232H Q 2 another program holds the chip. End that program "
                                 "and try again\n"
                                 "ftdi://ftdi:232h/1 FT232H  1 ")
                         .append(InstallRules)
                         .append("\n"));
}

} // namespace
} // namespace Pellumo::Testing
