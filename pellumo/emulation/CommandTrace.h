/// @file
/// MPSSE commands as people read them.
#pragma once

#include "pellumo/mpsse/CommandDecoder.h"

#include <string>

namespace Pellumo {

/// One line without an end of line: the opcode and its arguments in hexadecimal, then in words, as in
///
///     80 03 0B  set low pins 0x03, directions 0x0B
///     18 0D 00 ..  clock 14 bytes out, LSB first, out on the rising edge
///
/// where ".." stands for the bytes to shift.
std::string TextOf(const Command& Head);

} // namespace Pellumo
