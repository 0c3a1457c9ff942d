#include "tarvix/master/Checksums.h"

#include "tarvix/common/Raise.h"

#include <cstddef>

namespace Tarvix {

namespace {

std::uint8_t InvertedSum(unsigned Sum, std::int32_t DataLength, std::span<const std::uint8_t> Data)
{
    const std::size_t Count = DataLength > 0 ? static_cast<std::size_t>(DataLength) : 0;
    if (Count > Data.size()) {
        Raise(errGeneral::errIndexOutOfRange);
    }
    for (const std::uint8_t DataByte : Data.first(Count)) {
        Sum += DataByte;
        Sum = Sum > 0xFF ? Sum - 0xFF : Sum;
    }
    return static_cast<std::uint8_t>(~Sum);
}

} // namespace

std::uint8_t ClassicChecksum(std::int32_t DataLength, std::span<const std::uint8_t> Data)
{
    return InvertedSum(0, DataLength, Data);
}

std::uint8_t EnhancedChecksum(std::uint8_t IDbyte, std::int32_t DataLength, std::span<const std::uint8_t> Data)
{
    return InvertedSum(IDbyte, DataLength, Data);
}

} // namespace Tarvix
