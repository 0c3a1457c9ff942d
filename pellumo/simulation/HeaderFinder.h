/// @file
/// Finds the start of LIN frames in the edges of the bus.
#pragma once

#include "pellumo/simulation/Tick.h"

#include <array>
#include <cstddef>

namespace Pellumo {

/// Recognises a break followed by a sync field, at any bit rate, from nothing but the moments at which the bus level
/// changed:
///
///     falling  rising falling ...                            rising
///     ____              _____   ___   ___   ___   ___   _______
///         \____________/     \_/   \_/   \_/   \_/   \_/
///         break         del.  s  0  1  2  3  4  5  6  7  stop
///                            |<------ 8 bit times ----->|
///
/// The five falling edges of a sync field 0x55 lie two bit times apart, so the first and the fifth measure the bit time
/// (LIN 2.2A, 2.3.1.2). Only then is it known how many bit times the dominant phase before the sync field lasted: it is
/// a break when there were at least 11 of them, more than any data byte has even from a node with a slow clock. Each of
/// the nine phases of the sync field must last one bit time, give or take half of one; anything else is not 0x55.
class HeaderFinder {
public:
    /// Notes an edge of the bus. Edges alternate, and the first one is a falling edge.
    /// @param Level  the level after the edge, 0 or 1
    /// @return true when this rising edge is the one into the stop bit of the sync field after a break
    bool Edge(int Level, Tick Now) noexcept;

    /// Eight bit times as measured in the sync field that was found last.
    Tick EightBits() const noexcept { return EightBits_; }

private:
    bool EndsSyncField() noexcept;
    /// The moment of the k-th edge before the last one.
    Tick Before(std::size_t k) const noexcept { return Edges_[(Last_ - k) % Edges_.size()]; }

    std::array<Tick, 16> Edges_{};
    std::size_t Last_ = 0;
    Tick EightBits_ = 0;
};

} // namespace Pellumo
