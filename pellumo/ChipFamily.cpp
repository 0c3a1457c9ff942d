#include "pellumo/ChipFamily.h"

#include <array>

namespace Pellumo {

namespace {

constexpr std::array<ChipFacts, 4> Facts = {{
    {"FT2232D", 0x0500, 0x6010, 2, 1, false, 128},
    {"FT2232H", 0x0700, 0x6010, 2, 2, true, 4096},
    {"FT4232H", 0x0800, 0x6011, 4, 2, true, 2048},
    {"FT232H", 0x0900, 0x6014, 1, 1, true, 1024},
}};

} // namespace

const ChipFacts& FactsOf(ChipFamily Family) noexcept
{
    return Facts[static_cast<std::size_t>(Family)];
}

} // namespace Pellumo
