/// @file
/// How a node puts bytes on the bus.
#pragma once

#include "pellumo/simulation/Tick.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Pellumo {

/// The clock with which a node times what it sends: the bit time that it measured, but for an error.
class NodeClock {
public:
    /// @param EightBits        eight bit times as measured in the sync field
    /// @param PartsPerMillion  how much too fast the node's clock runs
    NodeClock(Tick EightBits, std::int64_t PartsPerMillion) noexcept
        : EightBits_(EightBits), EightTrueBits_(8 * (1'000'000 + PartsPerMillion))
    {
    }

    /// So many millionths of a bit time, to the nearest tick. Reckoning always from the start of a transmission keeps
    /// roundings from adding up.
    Tick Span(std::int64_t Microbits) const noexcept
    {
        return (Microbits * EightBits_ + EightTrueBits_ / 2) / EightTrueBits_;
    }

private:
    Tick EightBits_;
    std::int64_t EightTrueBits_;
};

/// Sends bytes one after the other, each framed by a start and a stop bit.
class Transmitter {
public:
    /// Starts a transmission, at once or later; an earlier one is dropped.
    /// @param Begin      the falling edge of the first start bit
    /// @param ByteSpace  pause after each byte but the last, in millionths of a bit time
    void Start(std::span<const std::uint8_t> Bytes, Tick Begin, const NodeClock& Clock, std::int64_t ByteSpace);

    /// Lets go of the bus.
    void Stop() noexcept;

    /// What the node drives now.
    int Level() const noexcept { return Level_; }

    /// The moment at which `Level` may change next.
    Tick NextChange() const noexcept { return NextChange_; }

    /// Carries out every change up to `Now`, this moment included.
    void AdvanceTo(Tick Now) noexcept
    {
        while (NextChange_ <= Now) {
            Change();
        }
    }

    /// True when the middle of a bit being sent lies in [From, To) and the bus has another level than the node drives.
    bool Collides(int BusLevel, Tick From, Tick To) const noexcept
    {
        return BusLevel != Level_ && Bit_ != NextBit_ && SamplesBetween(From, To);
    }

private:
    static constexpr std::size_t BitsPerByte = 10;

    void Change() noexcept;
    bool SamplesBetween(Tick From, Tick To) const noexcept;
    std::size_t Bits() const noexcept { return Bytes_.size() * BitsPerByte; }
    int BitAt(std::size_t Index) const noexcept;
    Tick Moment(std::size_t HalfBits) const noexcept;

    std::vector<std::uint8_t> Bytes_;
    Tick Begin_ = 0;
    NodeClock Clock_{0, 0};
    std::int64_t ByteSpace_ = 0;
    // The bits [Bit_, NextBit_) are the run of equal bits being sent; none before the transmission begins.
    std::size_t Bit_ = 0;
    std::size_t NextBit_ = 0;
    int Level_ = 1;
    Tick NextChange_ = Never;
};

} // namespace Pellumo
