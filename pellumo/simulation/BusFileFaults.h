/// @file
/// The part of the bus file that tells what goes wrong on the bus.
#pragma once

#include "pellumo/simulation/BusDescription.h"

#include <cstdint>
#include <string_view>

namespace Pellumo {

class CheckedTable;

/// Adds the fault of a `[[fault]]` table to `Bus`, whose slaves are known already.
/// @throws Tarvix::Error  errBusFile
void ReadFault(const CheckedTable& Table, BusDescription& Bus);

/// A frame identifier, 0x00..0x3F.
/// @throws Tarvix::Error  errBusFile
std::uint8_t ReadIdentifier(const CheckedTable& Table, std::string_view Key);

/// The bit times under "response_space" or "byte_space".
/// @param Otherwise       without that key
/// @throws Tarvix::Error  errBusFile
double ReadSpace(const CheckedTable& Table, std::string_view Key, double Otherwise);

} // namespace Pellumo
