#include "pellumo/common/SampleRuns.h"

#include <algorithm>
#include <bit>

namespace Pellumo {

namespace {

/// The bits of a byte from `Bit` upward.
std::uint8_t UpwardFrom(std::size_t Bit) noexcept
{
    return static_cast<std::uint8_t>(0xFFU << Bit);
}

void SetBits(std::uint8_t& Byte, std::uint8_t Mask, std::uint8_t Levels) noexcept
{
    Byte = static_cast<std::uint8_t>((Byte & ~Mask) | (Levels & Mask));
}

} // namespace

int SampleAt(std::span<const std::uint8_t> Samples, std::size_t Index) noexcept
{
    return Samples[Index / 8] >> Index % 8 & 1;
}

std::size_t EndOfRun(std::span<const std::uint8_t> Samples, std::size_t Index) noexcept
{
    const unsigned Same = SampleAt(Samples, Index) != 0 ? 0xFF : 0x00;
    std::size_t Byte = Index / 8;
    unsigned Different = (Samples[Byte] ^ Same) & UpwardFrom(Index % 8);
    while (Different == 0) {
        ++Byte;
        if (Byte == Samples.size()) {
            return Byte * 8;
        }
        Different = Samples[Byte] ^ Same;
    }
    return Byte * 8 + static_cast<std::size_t>(std::countr_zero(Different));
}

void FillSamples(std::span<std::uint8_t> Samples, std::size_t First, std::size_t End, int Level) noexcept
{
    if (First >= End) {
        return;
    }
    const std::uint8_t Levels = Level != 0 ? 0xFF : 0x00;
    const std::uint8_t FromFirst = UpwardFrom(First % 8);
    const auto BelowEnd = static_cast<std::uint8_t>(~UpwardFrom(End % 8));
    if (First / 8 == End / 8) {
        SetBits(Samples[First / 8], FromFirst & BelowEnd, Levels);
        return;
    }
    SetBits(Samples[First / 8], FromFirst, Levels);
    std::ranges::fill(Samples.subspan(First / 8 + 1, End / 8 - First / 8 - 1), Levels);
    if (End % 8 != 0) {
        SetBits(Samples[End / 8], BelowEnd, Levels);
    }
}

} // namespace Pellumo
