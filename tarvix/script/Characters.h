/// @file
/// The character classes that the scanner and the conversions share.
#pragma once

namespace Tarvix {

/// The blank and every control character of ASCII, NUL included.
constexpr bool IsWhiteSpace(char16_t Unit) noexcept
{
    return Unit <= u' ';
}

/// A decimal digit of ASCII.
constexpr bool IsDigit(char16_t Unit) noexcept
{
    return Unit >= u'0' && Unit <= u'9';
}

} // namespace Tarvix
