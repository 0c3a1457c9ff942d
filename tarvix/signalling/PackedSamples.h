/// @file
/// Packed samples as 64-bit words: in a word, too, the lower bit is the earlier sample.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Tarvix {

/// The eight bytes at `Bytes`, the first one lowest. Compilers make one load of it.
inline std::uint64_t LoadWord(const std::uint8_t* Bytes) noexcept
{
    std::uint64_t Word = 0;
    for (std::size_t k = 0; k < 8; ++k) {
        Word |= std::uint64_t{Bytes[k]} << (8 * k);
    }
    return Word;
}

/// The reverse of `LoadWord`.
inline void StoreWord(std::uint8_t* Bytes, std::uint64_t Word) noexcept
{
    for (std::size_t k = 0; k < 8; ++k) {
        Bytes[k] = static_cast<std::uint8_t>(Word >> (8 * k));
    }
}

/// Byte k of the result is 0xFF where bit k of `DataByte` is 1, else 0x00: the byte at eight samples a bit.
constexpr std::uint64_t SpreadBits(std::uint8_t DataByte) noexcept
{
    const std::uint64_t OneBitPerByte = DataByte * 0x0101010101010101U & 0x8040201008040201U;
    // Adding 0x7F carries any bit of a byte into its highest one, and never into the next byte.
    const std::uint64_t Ones = (OneBitPerByte + 0x7F7F7F7F7F7F7F7FU) >> 7 & 0x0101010101010101U;
    return Ones * 0xFF;
}

/// Bit k of the result is bit 0 of byte k of `Word`.
constexpr std::uint8_t GatherBits(std::uint64_t Word) noexcept
{
    // The multiplier moves bit 8k to bit 56 + k; no two products meet in one bit.
    return static_cast<std::uint8_t>((Word & 0x0101010101010101U) * 0x0102040810204080U >> 56);
}

} // namespace Tarvix
