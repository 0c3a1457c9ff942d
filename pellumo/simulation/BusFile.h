/// @file
/// Reads the description of a simulated bus. docs/bus-file.md tells the format.
#pragma once

#include "pellumo/simulation/BusDescription.h"

#include <string>
#include <string_view>

namespace Pellumo {

/// Reads a bus file (TOML).
/// @throws Tarvix::Error  errBusFile, source "BusFile": the file cannot be read, is no TOML, or describes no bus; the
///                        description begins with the file's name and, but for an unreadable file, the line
BusDescription ReadBusFile(const std::string& Path);

/// The bus that `Text` describes.
/// @param Name            of the file, for messages
/// @throws Tarvix::Error  as `ReadBusFile`
BusDescription ParseBusFile(std::string_view Text, std::string_view Name);

} // namespace Pellumo
