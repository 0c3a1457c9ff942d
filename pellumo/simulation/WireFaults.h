/// @file
/// What goes wrong on the wire of a simulated bus.
#pragma once

#include "pellumo/simulation/BusDescription.h"
#include "pellumo/simulation/FrameReceiver.h"
#include "pellumo/simulation/Tick.h"

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace Pellumo {

/// The samples of one stream in time.
struct SampleGrid {
    Tick Start = 0;
    Tick SampleTicks = 1;
    std::int64_t FirstSample = 0; ///< index of the stream's first sample among all that were ever clocked

    /// The sample that is being driven at `Now`.
    std::int64_t SampleAt(Tick Now) const noexcept { return FirstSample + (Now - Start) / SampleTicks; }
    /// The first sample that begins at `Now` or later.
    std::int64_t SampleFrom(Tick Now) const noexcept { return SampleAt(Now + SampleTicks - 1); }
    /// The moment at which `Sample` begins.
    Tick Begin(std::int64_t Sample) const noexcept { return Start + (Sample - FirstSample) * SampleTicks; }
};

/// One fault of the wire: acts on some samples and on others not.
class WireDisturbance {
public:
    static constexpr std::int64_t NoSample = std::numeric_limits<std::int64_t>::max();

    /// @param Seed  of its own random sequence
    WireDisturbance(const WireFault& Fault, std::uint64_t Seed);

    const WireFault& Fault() const noexcept { return Fault_; }

    /// A frame with the identifier of the fault's place begins.
    void CountFrame() noexcept { ++Frames_; }
    /// True when the fault belongs into the frame that began last.
    bool BelongsHere() const noexcept;
    /// The fault's place is reached: its samples count from `Sample`. What it does and will do from earlier times goes
    /// on.
    /// @param Now  the sample being driven
    void Trigger(std::int64_t Sample, std::int64_t Now);

    bool ActsOn(std::int64_t Sample) const noexcept;
    /// The first sample after `Sample` on which it may act otherwise than on `Sample`; `NoSample` if there is none.
    std::int64_t NextChange(std::int64_t Sample) const noexcept;

private:
    struct Stretch {
        std::int64_t Begin;
        std::int64_t End; // the first sample after it
    };

    bool Covers(std::int64_t Sample) const noexcept;
    bool Inverts(std::int64_t Sample) const noexcept;

    WireFault Fault_;
    std::uint64_t Seed_;
    std::uint64_t Threshold_;        // of 53 random bits
    std::vector<Stretch> Stretches_; // in the order in which they begin
    std::int32_t Frames_ = 0;
};

/// All faults of the wire. They are placed by the wire as it would be without them, so that one fault never moves
/// another one.
class WireFaults {
public:
    WireFaults(std::span<const WireFault> Faults, std::uint64_t Seed);

    bool Empty() const noexcept { return Disturbances_.empty(); }

    /// A stream begins.
    void BeginStream(const SampleGrid& Grid) noexcept { Grid_ = Grid; }

    /// The level that commander and nodes drive together from the current moment on.
    void See(int Wire, Tick Now);
    /// What becomes of it on the bus.
    int OnBus() const noexcept;
    /// What the commander reads of the bus.
    int Read() const noexcept;

    /// The next moment at which one of these levels may change while the wire does not.
    Tick NextEvent() const noexcept;
    /// The wire keeps its level until `To`, which is not beyond `NextEvent`.
    void AdvanceTo(Tick To);

private:
    void BeginFrame();
    void BeginByte(Tick Now);

    std::vector<WireDisturbance> Disturbances_;
    SampleGrid Grid_;
    std::int64_t Sample_ = 0; // being driven
    int Wire_ = 1;
    FrameReceiver Receiver_;
    bool InResponse_ = false;
    std::uint8_t Identifier_ = 0; // of the frame that began last
    std::int32_t Byte_ = 0;       // the next one of its response
};

} // namespace Pellumo
