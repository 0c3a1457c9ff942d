#include "tarvix/master/VariantBytes.h"

#include "tarvix/common/Raise.h"

#include <algorithm>
#include <cstddef>

namespace Tarvix {

namespace {

std::size_t CountOf(std::int32_t Length) noexcept
{
    return static_cast<std::size_t>(std::max(Length, 0));
}

} // namespace

std::vector<std::uint8_t> VariantToBytes(const Variant& Value, std::int32_t Length)
{
    std::vector<std::uint8_t> Bytes;
    const std::size_t Count = CountOf(Length);
    if (Count == 0) {
        return Bytes;
    }
    const Variant::Array& Elements = Value.Elements();
    Bytes.reserve(std::min(Count, Elements.size()));
    for (std::size_t i = 0; i < Count; ++i) {
        if (i >= Elements.size()) {
            Raise(errGeneral::errIndexOutOfRange);
        }
        Bytes.push_back(Elements[i].ToByte());
    }
    return Bytes;
}

Variant BytesToVariant(std::span<const std::uint8_t> Bytes, std::int32_t Length)
{
    const std::size_t Count = CountOf(Length);
    if (Count > Bytes.size()) {
        Raise(errGeneral::errIndexOutOfRange);
    }
    return Variant::FromBytes(Bytes.first(Count));
}

} // namespace Tarvix
