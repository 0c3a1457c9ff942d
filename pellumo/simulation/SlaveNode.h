/// @file
/// A slave node of the simulated bus.
#pragma once

#include "pellumo/simulation/BusDescription.h"
#include "pellumo/simulation/FrameReceiver.h"
#include "pellumo/simulation/Tick.h"
#include "pellumo/simulation/Transmitter.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

namespace Pellumo {

/// Knows nothing but the level of the bus over time, and acts on it as a real node does:
///
/// - It finds break and sync field by itself and measures the bit time there (`HeaderFinder`), so it follows any bit
///   rate. What it *receives* it judges with that measured bit time, to which its own clock adds no error.
/// - An identifier with wrong parity bits, and one that means nothing to it, makes it wait for the next header.
/// - It *sends* with its own clock: its response space and bits take 1 / (1 + clock error) of the measured bit time. A
///   clock error of +2 % is thus a clock that runs 2 % fast, seen as it remains after synchronisation.
/// - It watches the bus in the middle of each of its own bits and, when it finds another level than it drives, lets go
///   of the bus until the next header.
/// - A frame whose data it copies lasts until the next break. It is accepted with 1 to 8 data bytes and the checksum of
///   either model; anything else leaves the data received earlier.
class SlaveNode {
public:
    /// @param Faults  what goes wrong with answers; those to frames of other nodes do not matter
    /// @param Seed    of the node's random bytes
    explicit SlaveNode(const SlaveDescription& Description, std::span<const AnswerFault> Faults = {},
                       std::uint64_t Seed = 0);

    /// What the node drives now, 0 or 1.
    int Level() const noexcept { return Transmitter_.Level(); }

    /// Tells the level of the bus from the current moment on.
    void See(int BusLevel)
    {
        if (BusLevel != BusLevel_) {
            SeeEdge(BusLevel);
        }
    }

    /// The next moment up to which the node must be advanced before its level can be told beyond it.
    Tick NextEvent() const noexcept { return std::min(Transmitter_.NextChange(), Receiver_.EndOfIdentifier()); }

    /// Time passes: the bus keeps the level last told until `To`, which is not beyond `NextEvent`.
    void AdvanceTo(Tick To)
    {
        if (Transmitter_.Collides(BusLevel_, Now_, To)) {
            Transmitter_.Stop();
        }
        const auto Heard = Receiver_.AdvanceTo(To, BusLevel_);
        if (Heard != FrameReceiver::Heard::Nothing) {
            Hear(Heard);
        }
        Transmitter_.AdvanceTo(To);
        Now_ = To;
    }

private:
    using Bytes = std::vector<std::uint8_t>;

    /// A frame that the node answers.
    struct AnsweredFrame {
        FrameDescription Description;
        Bytes Data;                // for a copying frame what was received, empty until then
        std::int32_t Requests = 0; // headers heard
    };

    void SeeEdge(int BusLevel);
    void Hear(FrameReceiver::Heard Heard);
    void HearIdentifier();
    void HearByte();
    void EndResponse();
    void Answer(AnsweredFrame& Frame);
    void Spoil(const AnswerFault& Fault);
    bool CopiesFrom(std::uint8_t Identifier) const noexcept;

    std::vector<AnsweredFrame> Frames_;
    std::vector<AnswerFault> Faults_;
    std::uint64_t Seed_;
    std::uint64_t RandomBytes_ = 0; // sent so far
    std::int64_t ClockErrorPPM_;
    std::int64_t ResponseSpaceMicrobits_;
    std::int64_t ByteSpaceMicrobits_;

    Tick Now_ = 0;
    int BusLevel_ = 1;
    FrameReceiver Receiver_;
    Transmitter Transmitter_;
    std::uint8_t ProtectedIdentifier_ = 0; // of the frame being received
    Bytes Response_;                       // what has been received of it
    Bytes Answer_;
};

} // namespace Pellumo
