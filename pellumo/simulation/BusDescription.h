/// @file
/// What is on a simulated bus, as plain data: written in a bus file (`ReadBusFile`) or built in (`ExampleBus`).
#pragma once

#include "tarvix/common/eLINChecksumMode.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Pellumo {

/// A frame that a slave node answers.
struct FrameDescription {
    std::uint8_t Identifier = 0;         ///< 0x00..0x3F
    std::vector<std::uint8_t> Data = {}; ///< 1 to 8 bytes; without meaning when `Copies` is set
    std::optional<std::uint8_t> Copies =
        std::nullopt; ///< answer with the data last received in this frame; none received: no answer
    Tarvix::eLINChecksumMode Checksum = Tarvix::elcLIN20;
    std::optional<std::uint8_t> FixedChecksum = std::nullopt; ///< sent as it is in place of the checksum
};

/// A slave node.
struct SlaveDescription {
    std::string Name;           ///< for messages
    double ClockError = 0.0;    ///< percent; +2 is a clock that runs 2 % fast, so that the node's bits are short
    double ResponseSpace = 1.0; ///< bit times of the node's clock between identifier and answer, 0 or more
    std::vector<FrameDescription> Frames;
};

/// A whole bus.
struct BusDescription {
    std::vector<SlaveDescription> Slaves;
};

} // namespace Pellumo
