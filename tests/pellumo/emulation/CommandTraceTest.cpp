#include "pellumo/emulation/EmulatedChip.h"
#include "tests/support/EchoPins.h"

#include <gtest/gtest.h>

#include <string>

namespace Pellumo {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Lines = std::vector<std::string>;

struct TraceCase {
    Bytes Commands;
    const char* Line;
};

class CommandTrace : public testing::TestWithParam<TraceCase> {};

TEST_P(CommandTrace, TellsTheBytesAndWhatTheyMean)
{
    Testing::EchoPins Wires;
    EmulatedChip Chip(ChipFamily::FT232H, Wires);
    Lines Trace;
    Chip.TraceTo([&](std::string_view Line) { Trace.emplace_back(Line); });
    Chip.Write(GetParam().Commands);
    EXPECT_EQ(Trace, Lines{GetParam().Line});

    Chip.TraceTo({});
    Chip.Write(GetParam().Commands);
    EXPECT_EQ(Trace.size(), 1U) << "it has been switched off";
}

INSTANTIATE_TEST_SUITE_P(
    Commands, CommandTrace,
    testing::Values(
        TraceCase{{0x80, 0x03, 0x0B}, "80 03 0B  set low pins 0x03, directions 0x0B"},
        TraceCase{{0x82, 0xA0, 0xFF}, "82 A0 FF  set high pins 0xA0, directions 0xFF"},
        TraceCase{{0x81}, "81  read low pins"}, TraceCase{{0x83}, "83  read high pins"},
        TraceCase{{0x84}, "84  loopback on"}, TraceCase{{0x85}, "85  loopback off"},
        TraceCase{{0x86, 0xC2, 0x01}, "86 C2 01  sample clock divisor 450"},
        TraceCase{{0x87}, "87  send answers at once"}, TraceCase{{0x8A}, "8A  base clock 60 MHz"},
        TraceCase{{0x8B}, "8B  base clock 12 MHz"}, TraceCase{{0x8C}, "8C  three-phase clocking on"},
        TraceCase{{0x8D}, "8D  three-phase clocking off"}, TraceCase{{0x8E, 0x02}, "8E 02  clock 3 bits, no data"},
        TraceCase{{0x8F, 0x00, 0x01}, "8F 00 01  clock 257 bytes, no data"},
        TraceCase{{0x96}, "96  adaptive clocking on"}, TraceCase{{0x97}, "97  adaptive clocking off"},
        TraceCase{{0x18, 0x01, 0x00, 0xFF, 0xFF}, "18 01 00 ..  clock 2 bytes, LSB first, out on the rising edge"},
        TraceCase{{0x3C, 0x00, 0x00, 0xFF},
                  "3C 00 00 ..  clock 1 byte, LSB first, out on the rising edge, in on the falling edge"},
        TraceCase{{0x31, 0x00, 0x00, 0xFF},
                  "31 00 00 ..  clock 1 byte, MSB first, out on the falling edge, in on the rising edge"},
        TraceCase{{0x28, 0xFF, 0xFF}, "28 FF FF  clock 65536 bytes, LSB first, in on the rising edge"},
        TraceCase{{0x1A, 0x00, 0x01}, "1A 00 01  clock 1 bit, LSB first, out on the rising edge"},
        TraceCase{{0x6B, 0x06, 0x03},
                  "6B 06 03  clock 7 bits, LSB first, mode select on the falling edge, in on the rising edge"},
        TraceCase{{0xAA}, "AA  no command of this chip"}));

} // namespace
} // namespace Pellumo
