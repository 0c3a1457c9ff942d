/// @file
/// The values that stand on the command line.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Tarvix::Tool {

/// An argument that cannot be used; the text is a sentence that tells why and what is expected.
class ArgumentError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A frame identifier: hexadecimal, with or without "0x", up to 3F.
/// @throws ArgumentError  one that looks like a protected identifier is told which frame identifier it protects
std::uint8_t ParseIdentifier(std::string_view Text);

/// A byte: one or two hexadecimal digits, with or without "0x".
/// @throws ArgumentError
std::uint8_t ParseByte(std::string_view Text);

/// A number of data bytes, 1 to 8.
/// @throws ArgumentError
std::int32_t ParseDataLength(std::string_view Text);

/// Bits per second, a whole number from 1 on.
/// @throws ArgumentError
std::int32_t ParseBitRate(std::string_view Text);

/// A break width in bit times: a decimal number of at least 1/8 (one sample) and at most 1000.
/// @throws ArgumentError
float ParseBreakWidth(std::string_view Text);

} // namespace Tarvix::Tool
