/// @file
/// What hangs on the data pins of an emulated chip.
#pragma once

#include <cstdint>
#include <span>

namespace Pellumo {

/// The wires beyond the chip. Time is virtual and passes only while samples are clocked.
class Pins {
public:
    virtual ~Pins();

    /// Drives the samples of `Out`, bit 0 of each byte first, and reads the level back once per sample.
    /// @param In           empty (nobody reads), or as long as `Out`: receives the levels at the same indexes
    /// @param SampleTicks  duration of one sample in ticks of 1/60 MHz, at least 1
    virtual void Clock(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In, std::int64_t SampleTicks) = 0;

    /// The data pin is set without a clock (1 high, 0 low); it stays so until samples are clocked. No time passes.
    virtual void SetLevel(int Level) = 0;

protected:
    Pins() = default;
    Pins(const Pins&) = default;
    Pins(Pins&&) = default;
    Pins& operator=(const Pins&) = default;
    Pins& operator=(Pins&&) = default;
};

} // namespace Pellumo
