/// @file
/// Numbers as the program prints them, the same under every locale.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace Tarvix::Tool {

/// "0x3D".
std::string HexByte(std::uint8_t Value);

/// "12 34": upper-case hexadecimal, with `Separator` between the bytes.
std::string HexBytes(std::span<const std::uint8_t> Bytes, const char* Separator = " ");

/// "0x8004C3D1"; small numbers as decimal digits.
std::string ErrorNumber(std::int32_t Number);

/// `Value` with `Decimals` digits after the point; what is rounded to 0 has no sign.
std::string Fixed(double Value, int Decimals);

} // namespace Tarvix::Tool
