#include "pellumo/simulation/Transmitter.h"

#include <algorithm>

namespace Pellumo {

void Transmitter::Start(std::span<const std::uint8_t> Bytes, Tick Begin, const NodeClock& Clock, std::int64_t ByteSpace)
{
    Stop();
    Bytes_.assign(Bytes.begin(), Bytes.end());
    Begin_ = Begin;
    Clock_ = Clock;
    ByteSpace_ = ByteSpace;
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
    const std::size_t Place = Index % BitsPerByte;
    if (Place == 0 || Place == 9) {
        return Place == 0 ? 0 : 1;
    }
    return Bytes_[Index / BitsPerByte] >> (Place - 1) & 1;
}

Tick Transmitter::Moment(std::size_t HalfBits) const noexcept
{
    const std::size_t Pauses = std::min(HalfBits / (2 * BitsPerByte), Bytes_.size() - 1);
    return Begin_ +
           Clock_.Span(static_cast<std::int64_t>(HalfBits) * 500'000 + static_cast<std::int64_t>(Pauses) * ByteSpace_);
}

} // namespace Pellumo
