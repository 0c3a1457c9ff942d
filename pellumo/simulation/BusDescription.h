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
    std::int32_t OnlyRequest = 0; ///< answer only this one of the frame's headers, from 1; 0: each of them
};

/// A slave node.
struct SlaveDescription {
    std::string Name;           ///< for messages
    double ClockError = 0.0;    ///< percent; +2 is a clock that runs 2 % fast, so that the node's bits are short
    double ResponseSpace = 1.0; ///< bit times of the node's clock between identifier and answer, 0 or more
    std::vector<FrameDescription> Frames;
    double ByteSpace = 0.0; ///< bit times of the node's clock from one byte of its answer to the next
};

/// Where a disturbance begins.
///
/// Without `Frame` samples count from the beginning of all time, every sample that the commander clocks. With `Frame`
/// they count from the end of the frame's identifier field, or, with `Byte`, from the start edge of one of the bytes
/// after it: 0 is the first sample that begins at that moment or after it.
struct FaultPlace {
    std::optional<std::uint8_t> Frame = std::nullopt; ///< 0x00..0x3F
    std::optional<std::int32_t> Byte = std::nullopt;  ///< from 0
    std::int64_t Sample = 0;
    std::int32_t Occurrence = 0; ///< which of the frames with this identifier, from 1; 0: each of them
};

/// Something wrong with the wire for a number of samples.
struct WireFault {
    enum class Effect : std::uint8_t {
        Dominant,  ///< the bus is dominant, whatever anybody drives
        Recessive, ///< the bus is recessive
        Noise,     ///< single samples of the bus are inverted
        NoEcho     ///< the bus is in order, but the commander reads it as recessive
    };

    Effect Kind = Effect::Dominant;
    FaultPlace Place = {};
    std::optional<std::int64_t> Length = std::nullopt; ///< samples; nothing: for good
    double Probability = 0.0;                          ///< of a sample to be inverted by noise, 0 to 1
};

/// Something wrong with what a node answers.
struct AnswerFault {
    enum class Effect : std::uint8_t {
        WrongChecksum, ///< every bit of the last byte is inverted
        Short,         ///< the last `Bytes` bytes are missing
        Long           ///< `Bytes` random bytes follow
    };

    Effect Kind = Effect::WrongChecksum;
    std::uint8_t Frame = 0;
    std::int32_t Occurrence = 0; ///< as in `FaultPlace`
    std::int32_t Bytes = 1;
};

/// A second node that answers a frame, at the same time as the node that should or over the commander's own bytes.
struct CollisionFault {
    std::uint8_t Frame = 0;
    std::int32_t Occurrence = 0;         ///< as in `FaultPlace`
    std::vector<std::uint8_t> Data = {}; ///< 1 to 8 bytes, sent with the enhanced checksum; empty: eight random ones
    double ResponseSpace = 1.0;          ///< as in `SlaveDescription`
};

/// A whole bus.
struct BusDescription {
    std::vector<SlaveDescription> Slaves = {};
    std::vector<WireFault> WireFaults = {}; ///< where several act on one sample, the later one has the last word
    std::vector<AnswerFault> AnswerFaults = {};
    std::vector<CollisionFault> Collisions = {};
    std::uint64_t Seed = 1; ///< everything random comes from it
};

} // namespace Pellumo
