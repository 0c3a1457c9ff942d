#include "pellumo/simulation/HeaderFinder.h"

namespace Pellumo {

namespace {

constexpr Tick BreakBits = 11;
constexpr Tick LongestEightBits = Tick{8} * 60'000'000; // one bit a second

// Edges before the rising edge into the sync field's stop bit.
constexpr std::size_t FifthFalling = 1;
constexpr std::size_t FirstFalling = 9;
constexpr std::size_t BreakEnd = 10;
constexpr std::size_t BreakStart = 11;

} // namespace

bool HeaderFinder::Edge(int Level, Tick Now) noexcept
{
    ++Last_;
    Edges_[Last_ % Edges_.size()] = Now;
    return Level == 1 && EndsSyncField();
}

bool HeaderFinder::EndsSyncField() noexcept
{
    const Tick Measured = Before(FifthFalling) - Before(FirstFalling);
    const Tick Break = Before(BreakEnd) - Before(BreakStart);
    if (Measured <= 0 || Measured > LongestEightBits || 8 * Break < BreakBits * Measured) {
        return false;
    }
    for (std::size_t k = 0; k < FirstFalling; ++k) {
        const Tick Phase = Before(k) - Before(k + 1);
        if (16 * Phase < Measured || 16 * Phase > 3 * Measured) {
            return false;
        }
    }
    EightBits_ = Measured;
    return true;
}

} // namespace Pellumo
