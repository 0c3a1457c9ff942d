#include "pellumo/DeviceURL.h"

#include "pellumo/errPellumo.h"
#include "tests/support/Errors.h"

#include <gtest/gtest.h>

namespace Pellumo {
namespace {

using Tarvix::Testing::FailureOf;

TEST(SimulatedBus, IsTheExampleOrAFile)
{
    EXPECT_EQ(std::get<SimulatedBusURL>(ParseDeviceURL("sim:")).BusFile, "");
    EXPECT_EQ(std::get<SimulatedBusURL>(ParseDeviceURL("sim:my bus:1/door.toml")).BusFile, "my bus:1/door.toml");
}

struct ChipCase {
    const char* URL;
    std::optional<std::uint16_t> Vendor;
    std::optional<std::uint16_t> Product;
    std::optional<ChipFamily> Family;
    std::optional<std::string> Serial;
    int Interface;
};

class ChipURL : public testing::TestWithParam<ChipCase> {};

TEST_P(ChipURL, NamesWhatItNames)
{
    const auto Chip = std::get<ChipAddress>(ParseDeviceURL(GetParam().URL));
    EXPECT_EQ(Chip.Vendor, GetParam().Vendor);
    EXPECT_EQ(Chip.Product, GetParam().Product);
    EXPECT_EQ(Chip.Family, GetParam().Family);
    EXPECT_EQ(Chip.Serial, GetParam().Serial);
    EXPECT_EQ(Chip.Interface, GetParam().Interface);
}

INSTANTIATE_TEST_SUITE_P(Forms, ChipURL,
                         testing::Values(ChipCase{"ftdi:///1", {}, {}, {}, {}, 1},
                                         ChipCase{"ftdi:///4", {}, {}, {}, {}, 4},
                                         ChipCase{"ftdi://ftdi/2", 0x0403, {}, {}, {}, 2},
                                         ChipCase{"ftdi://:232h/1", {}, 0x6014, ChipFamily::FT232H, {}, 1},
                                         ChipCase{"ftdi://FTDI:FT2232H/1", 0x0403, 0x6010, ChipFamily::FT2232H, {}, 1},
                                         ChipCase{"ftdi://ftdi:2232/1", 0x0403, 0x6010, {}, {}, 1},
                                         ChipCase{"ftdi://ftdi:2232d/1", 0x0403, 0x6010, ChipFamily::FT2232D, {}, 1},
                                         ChipCase{"ftdi://ftdi:4232h/1", 0x0403, 0x6011, ChipFamily::FT4232H, {}, 1},
                                         ChipCase{"ftdi://0403:6014:FT0abC/1", 0x0403, 0x6014, {}, "FT0abC", 1},
                                         ChipCase{"ftdi://0x15Ba:0x2232/1", 0x15BA, 0x2232, {}, {}, 1},
                                         ChipCase{"ftdi://::no/slash/1", {}, {}, {}, "no/slash", 1},
                                         ChipCase{"ftdi://::/1", {}, {}, {}, {}, 1},
                                         ChipCase{"ftdi://0:FFFF/1", 0, 0xFFFF, {}, {}, 1}));

struct MalformedCase {
    const char* URL;
    const char* Reason;
};

class MalformedURL : public testing::TestWithParam<MalformedCase> {};

TEST_P(MalformedURL, IsRefusedWithTheReasonAndTheForms)
{
    const auto Failure = FailureOf([] { ParseDeviceURL(GetParam().URL); });
    EXPECT_EQ(Failure.Number, static_cast<std::uint32_t>(errPellumo::errURL));
    EXPECT_EQ(Failure.Source, "DeviceURL");
    EXPECT_EQ(Failure.Description,
              std::string("\"")
                  .append(GetParam().URL)
                  .append("\" names no device: ")
                  .append(GetParam().Reason)
                  .append(". Devices are \"sim:\" (simulated bus), \"sim:FILE.toml\" (bus described in a file), "
                          "\"ftdi:///1\" (first chip on USB) and \"ftdi://VENDOR:PRODUCT:SERIAL/INTERFACE\", "
                          "for example \"ftdi://ftdi:232h/1\""));
}

INSTANTIATE_TEST_SUITE_P(
    Parts, MalformedURL,
    testing::Values(
        MalformedCase{"", "it begins neither with \"sim:\" nor with \"ftdi:\""},
        MalformedCase{"sim", "it begins neither with \"sim:\" nor with \"ftdi:\""},
        MalformedCase{"/dev/ttyUSB0", "it begins neither with \"sim:\" nor with \"ftdi:\""},
        MalformedCase{"ftdi:", "\"//\" is missing after \"ftdi:\""},
        MalformedCase{"ftdi:/1", "\"//\" is missing after \"ftdi:\""},
        MalformedCase{"ftdi://", "\"/\" and the interface are missing at its end"},
        MalformedCase{"ftdi://ftdi:232h", "\"/\" and the interface are missing at its end"},
        MalformedCase{"ftdi:///", "the interface after the last \"/\" is missing"},
        MalformedCase{"ftdi:///0", "the interface \"0\" is not a number from 1 to 4"},
        MalformedCase{"ftdi:///5", "the interface \"5\" is not a number from 1 to 4"},
        MalformedCase{"ftdi:///11", "the interface \"11\" is not a number from 1 to 4"},
        MalformedCase{"ftdi:///A", "the interface \"A\" is not a number from 1 to 4"},
        MalformedCase{"ftdi://acme/1", "the vendor \"acme\" is neither \"ftdi\" nor a hexadecimal number up to FFFF"},
        MalformedCase{"ftdi://10403/1", "the vendor \"10403\" is neither \"ftdi\" nor a hexadecimal number up to FFFF"},
        MalformedCase{"ftdi://-1/1", "the vendor \"-1\" is neither \"ftdi\" nor a hexadecimal number up to FFFF"},
        MalformedCase{"ftdi://0x/1", "the vendor \"0x\" is neither \"ftdi\" nor a hexadecimal number up to FFFF"},
        MalformedCase{"ftdi://ftdi:232r/1", "the product \"232r\" is neither 2232, 2232d, 2232h, 4232h or 232h nor a "
                                            "hexadecimal number up to FFFF"},
        MalformedCase{"ftdi://ftdi:6014 /1", "the product \"6014 \" is neither 2232, 2232d, 2232h, 4232h or 232h nor a "
                                             "hexadecimal number up to FFFF"},
        MalformedCase{"ftdi://ftdi:232h:A:1/1", "the part \"ftdi:232h:A:1\" is more than VENDOR:PRODUCT:SERIAL"},
        MalformedCase{"ftdi://ftdi:232h:A:/1", "the part \"ftdi:232h:A:\" is more than VENDOR:PRODUCT:SERIAL"}));

} // namespace
} // namespace Pellumo
