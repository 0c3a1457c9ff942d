/// @file
/// A LIN bus with slave nodes, in virtual time.
#pragma once

#include "pellumo/emulation/Pins.h"
#include "pellumo/simulation/BusDescription.h"
#include "pellumo/simulation/SlaveNode.h"
#include "pellumo/simulation/Tick.h"
#include "pellumo/simulation/WireFaults.h"

#include <cstdint>
#include <span>
#include <vector>

namespace Pellumo {

/// The wire between the commander's pins and the nodes. Its level is the AND of what everybody drives: dominant (0)
/// wins. Sample n of a stream is driven from n to n + 1 sample periods after the stream's start and read in the middle
/// of that time. Streams follow each other without a gap, and how a stream is cut into calls makes no difference.
///
/// Time goes from one change of level to the next, not from sample to sample: a long silence costs next to nothing.
class SimulatedBus : public Pins {
public:
    explicit SimulatedBus(const BusDescription& Description);

    void Clock(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In, std::int64_t SampleTicks) override;

    /// Changes nothing: no time passes while the pin is held, so nobody on the bus can see it.
    void SetLevel(int Level) override;

private:
    struct Levels {
        int OnBus; ///< that the nodes see
        int Read;  ///< that the commander reads
    };

    Levels LevelsWith(int Commander);
    Tick NextEvent(int OnBus);
    void AdvanceTo(Tick To);

    std::vector<SlaveNode> Nodes_;
    WireFaults Faults_;
    Tick Now_ = 0;
    std::int64_t Samples_ = 0; // clocked so far
};

} // namespace Pellumo
