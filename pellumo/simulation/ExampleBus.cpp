#include "pellumo/simulation/ExampleBus.h"

namespace Pellumo {

BusDescription ExampleBus()
{
    BusDescription Bus;
    Bus.Slaves = {
        {"door", 0.5, 2.0, {{.Identifier = 0x3D, .Data = {0x12, 0x34}}, {.Identifier = 0x21, .Copies = 0x20}}},
        {"temperature", 0.0, 1.0, {{.Identifier = 0x11, .Data = {0x5A}, .Checksum = Tarvix::elcLIN13}}},
        {"wiper",
         1.5,
         1.0,
         {{.Identifier = 0x05, .Data = {0x00, 0xFF, 0x55, 0xAA}}, {.Identifier = 0x23, .Copies = 0x22}}},
        {"seat", -1.0, 4.5, {{.Identifier = 0x30, .Data = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}}}},
    };
    return Bus;
}

} // namespace Pellumo
