/// @file
/// Exchanges with a simulated bus in tests.
#pragma once

#include "pellumo/simulation/SimulatedBus.h"
#include "tests/pellumo/simulation/CommanderStream.h"

#include <ostream>

namespace Pellumo::Testing {

inline constexpr Tick Ticks19200 = 390; // 153,846 samples a second

inline constexpr std::uint8_t Protected3D = 0x7D;
inline constexpr std::uint8_t Protected20 = 0x20;
inline constexpr std::uint8_t Protected21 = 0x61;

/// Answers 0x3D with 12 34, and 0x21 with what it received in 0x20.
inline SlaveDescription Door()
{
    return {"door", 0.0, 1.0, {{.Identifier = 0x3D, .Data = {0x12, 0x34}}, {.Identifier = 0x21, .Copies = 0x20}}};
}

/// What is read back of a stream.
inline Bytes Exchange(Pins& Bus, const CommanderStream& Stream, Tick SampleTicks = Ticks19200)
{
    Bytes In(Stream.Data().size());
    Bus.Clock(Stream.Data(), In, SampleTicks);
    return In;
}

/// The answer to a request.
inline Decoded Read(Pins& Bus, std::uint8_t ProtectedIdentifier, Tick SampleTicks = Ticks19200)
{
    return Decode(Exchange(Bus, CommanderStream().Request(ProtectedIdentifier), SampleTicks),
                  CommanderStream::HeaderSamples);
}

inline const Decoded Silence{};
inline const Decoded DoorAnswer{{0x12, 0x34, 0x3C}};

} // namespace Pellumo::Testing
