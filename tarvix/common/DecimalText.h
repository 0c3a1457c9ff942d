/// @file
/// Decimal numbers as text, the same under every locale.
#pragma once

#include <string_view>

namespace Tarvix {

/// True when `Text` is an unsigned decimal number: digits with an optional "." and an optional exponent ("e" or "E",
/// optional sign, digits), at least one digit before the exponent.
bool IsDecimalNumber(std::string_view Text) noexcept;

/// The 64-bit float nearest to the unsigned decimal number `Text`; one too small for any becomes 0.
/// @throws Error  errTypeMismatch when `IsDecimalNumber` does not accept it, errOverflow beyond the 64-bit float range
double DecimalToReal(std::string_view Text);

} // namespace Tarvix
