#include "pellumo/common/FrameBytes.h"

#include <bit>

namespace Pellumo {

std::uint8_t ProtectedIdentifier(std::uint8_t Identifier) noexcept
{
    constexpr unsigned CoveredByP0 = 0b01'0111; // identifier bits 0, 1, 2 and 4
    constexpr unsigned CoveredByP1 = 0b11'1010; // identifier bits 1, 3, 4 and 5, inverted
    const auto P0 = static_cast<unsigned>(std::popcount(Identifier & CoveredByP0)) & 1;
    const auto P1 = ~static_cast<unsigned>(std::popcount(Identifier & CoveredByP1)) & 1;
    return static_cast<std::uint8_t>(P1 << 7 | P0 << 6 | (Identifier & 0x3FU));
}

std::uint8_t Checksum(std::uint8_t Start, std::span<const std::uint8_t> Data) noexcept
{
    unsigned Sum = Start;
    for (const std::uint8_t Byte : Data) {
        Sum += Byte;
        Sum = (Sum & 0xFF) + (Sum >> 8);
    }
    return static_cast<std::uint8_t>(~Sum);
}

} // namespace Pellumo
