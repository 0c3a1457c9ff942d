/// @file
/// Buses on which half of the frames is in order and the other half is in trouble.
#pragma once

#include "pellumo/simulation/BusDescription.h"
#include "tests/support/Random.h"

#include <cstdint>
#include <vector>

namespace Pellumo::Testing {

inline constexpr std::uint8_t SteadyFrames = 0x08;        ///< 0x00 to 0x07: nothing ever happens to them
inline constexpr std::uint8_t FirstDisturbedFrame = 0x20; ///< and so on; some have several faults
inline constexpr std::uint8_t DisturbedFrames = 0x10;
inline constexpr std::uint8_t WrittenFrame = 0x10; ///< the commander's; `CopyingFrame` answers with its data
inline constexpr std::uint8_t CopyingFrame = 0x11;

/// What the steady frames are answered with: 1 to 8 bytes.
std::vector<std::uint8_t> SteadyData(std::uint8_t Identifier);

/// Nodes with clocks of their own; faults of every kind, anywhere in the disturbed frames.
BusDescription RandomBus(Tarvix::Testing::Random& Any);

} // namespace Pellumo::Testing
