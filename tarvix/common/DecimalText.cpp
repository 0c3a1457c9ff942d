#include "tarvix/common/DecimalText.h"

#include "tarvix/common/FloatingPoint.h"
#include "tarvix/common/Raise.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace Tarvix {

namespace {

std::size_t SkipDigits(std::string_view& Text) noexcept
{
    std::size_t Count = 0;
    while (Count < Text.size() && Text[Count] >= '0' && Text[Count] <= '9') {
        ++Count;
    }
    Text.remove_prefix(Count);
    return Count;
}

bool SkipExponent(std::string_view& Text) noexcept
{
    Text.remove_prefix(1);
    if (Text.starts_with('+') || Text.starts_with('-')) {
        Text.remove_prefix(1);
    }
    return SkipDigits(Text) > 0;
}

std::int64_t Exponent(std::string_view Text) noexcept
{
    if (Text.starts_with('+')) {
        Text.remove_prefix(1);
    }
    constexpr std::int64_t Limit = std::numeric_limits<std::int64_t>::max() / 2;
    std::int64_t Value = Text.starts_with('-') ? -Limit : Limit; // stays when there are too many digits
    std::from_chars(Text.data(), Text.data() + Text.size(), Value);
    return std::clamp(Value, -Limit, Limit);
}

bool IsBelowOne(std::string_view Number) noexcept
{
    const std::size_t Letter = std::min(Number.find_first_of("eE"), Number.size());
    const std::string_view Mantissa = Number.substr(0, Letter);
    const auto Point = static_cast<std::int64_t>(std::min(Mantissa.find('.'), Mantissa.size()));
    const auto First = static_cast<std::int64_t>(Mantissa.find_first_of("123456789"));
    const std::int64_t DigitsBeforePoint = First < Point ? Point - First : Point - First + 1;
    const std::int64_t Shift = Letter < Number.size() ? Exponent(Number.substr(Letter + 1)) : 0;
    return DigitsBeforePoint + Shift <= 0;
}

} // namespace

bool IsDecimalNumber(std::string_view Text) noexcept
{
    std::size_t Digits = SkipDigits(Text);
    if (Text.starts_with('.')) {
        Text.remove_prefix(1);
        Digits += SkipDigits(Text);
    }
    if (Digits > 0 && (Text.starts_with('e') || Text.starts_with('E'))) {
        return SkipExponent(Text) && Text.empty();
    }
    return Digits > 0 && Text.empty();
}

double DecimalToReal(std::string_view Text)
{
    if (!IsDecimalNumber(Text)) {
        Raise(errGeneral::errTypeMismatch);
    }
    const DefaultFloatingPoint Guard;
    double Value = 0.0;
    const auto Result = std::from_chars(Text.data(), Text.data() + Text.size(), Value);
    // Too large and too small for a 64-bit float are reported alike.
    if (Result.ec == std::errc::result_out_of_range && !IsBelowOne(Text)) {
        Raise(errGeneral::errOverflow);
    }
    return Value;
}

} // namespace Tarvix
