#include "pellumo/simulation/Transmitter.h"

namespace Pellumo {

void Transmitter::Start(std::span<const std::uint8_t> Bytes, Tick Begin, const NodeClock& Clock)
{
    Stop();
    Bytes_.assign(Bytes.begin(), Bytes.end());
    Begin_ = Begin;
    Clock_ = Clock;
    NextChange_ = Begin;
}

void Transmitter::Stop() noexcept
{
    Bit_ = 0;
    NextBit_ = 0;
    Level_ = 1;
    NextChange_ = Never;
}

void Transmitter::Change() noexcept
{
    if (NextBit_ == Bits()) {
        Stop();
        return;
    }
    Bit_ = NextBit_;
    Level_ = BitAt(Bit_);
    do {
        ++NextBit_;
    } while (NextBit_ < Bits() && BitAt(NextBit_) == Level_);
    NextChange_ = Moment(2 * NextBit_);
}

bool Transmitter::SamplesBetween(Tick From, Tick To) const noexcept
{
    for (std::size_t k = Bit_; k < NextBit_; ++k) {
        const Tick Middle = Moment(2 * k + 1);
        if (Middle >= From && Middle < To) {
            return true;
        }
    }
    return false;
}

int Transmitter::BitAt(std::size_t Index) const noexcept
{
    const std::size_t Place = Index % 10;
    if (Place == 0 || Place == 9) {
        return Place == 0 ? 0 : 1;
    }
    return Bytes_[Index / 10] >> (Place - 1) & 1;
}

Tick Transmitter::Moment(std::size_t HalfBits) const noexcept
{
    return Begin_ + Clock_.Span(static_cast<std::int64_t>(HalfBits) * 500'000);
}

} // namespace Pellumo
