/// @file
/// Pieces of text for the picture, the same under every locale.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Pellumo {

/// `Text` as the content of an element or attribute. Control characters, which XML cannot hold, become blanks.
std::string EscapeXML(std::string_view Text);

/// A number of tenths in decimal: 64 is "6.4", 60 is "6".
std::string Tenths(std::int64_t Value);

/// Samples as bit times: 104 is "13", 100 is "12.5".
std::string BitTimes(std::int64_t Samples);

/// `Value` with so many digits after the point.
std::string Decimal(double Value, int Digits);

/// A byte as "3D".
std::string TwoDigits(std::uint8_t Byte);

} // namespace Pellumo
