/// @file
/// One port of an MPSSE chip as USB sees it: an emulated engine between two small buffers.
#pragma once

#include "pellumo/ChipFamily.h"
#include "pellumo/emulation/EmulatedChip.h"
#include "pellumo/emulation/Pins.h"
#include "pellumo/mpsse/CommandDecoder.h"
#include "tests/support/VirtualTime.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

namespace Pellumo::Testing {

/// Passes everything on and adds up how long it takes.
class TimedPins final : public Pins {
public:
    explicit TimedPins(Pins& Wires) : Wires_(Wires) {}

    void Clock(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In, std::int64_t SampleTicks) override;
    void SetLevel(int Level) override { Wires_.SetLevel(Level); }

    Ticks Elapsed() const noexcept { return Elapsed_; }

private:
    Pins& Wires_;
    Ticks Elapsed_{};
};

/// Takes commands as long as its buffer has room, executes them byte by byte for as long as they last on the wire,
/// stops while its answer buffer is full, and hands its answers out in packets that begin with two status bytes. A
/// packet leaves when it is full, when a command flushes it, and when the latency timer runs out.
class FakeChipPort {
public:
    /// @param Wires  held, not owned
    FakeChipPort(ChipFamily Family, std::size_t PacketSize, Pins& Wires);

    /// The next answers that come are lost, this many of them.
    std::size_t AnswersToLose = 0;
    /// The next packets hold nothing but status, this many of them, as if the latency timer had run out just before.
    std::size_t StatusPackets = 0;

    void SwitchEngine(bool On);
    void LatencyTimer(Ticks Value) noexcept { Latency_ = Value; }
    void PurgeCommands() noexcept { Commands_.clear(); }
    void PurgeAnswers() noexcept;

    /// Takes as many of `Bytes` as there is room for; returns how many.
    std::size_t TakeCommands(std::span<const std::uint8_t> Bytes);
    /// The host begins to ask for packets.
    void BeginRead(Ticks Now) noexcept;
    /// What the chip answers to the host's asking; nothing: not yet.
    std::optional<std::vector<std::uint8_t>> NextPacket(Ticks Now);
    /// Does what is due at `Now`; true if there was anything.
    bool Run(Ticks Now);
    /// When there will be something to do: nothing while the port waits for the host.
    std::optional<Ticks> NextStep(Ticks Now) const noexcept;
    /// When a read that goes on at `Now` ends for want of answers.
    Ticks LatencyEnd() const noexcept { return LatencyStart_ + Latency_; }

private:
    void Execute(std::uint8_t Byte);
    bool CollectAnswers();

    std::size_t PacketSize_;
    std::size_t BufferBytes_;
    TimedPins Wires_;
    EmulatedChip Chip_;
    CommandDecoder Decoder_;
    bool On_ = false;

    std::deque<std::uint8_t> Commands_;
    std::deque<std::uint8_t> Answers_;
    Ticks BusyUntil_{};
    bool FlushWhenDone_ = false;
    bool Flush_ = false;
    Ticks Latency_{};
    Ticks LatencyStart_{};
};

} // namespace Pellumo::Testing
