/// @file
/// Files that would overwrite one another.
#pragma once

#include "tools/tarvix/CommandLine.h"

#include <optional>
#include <span>
#include <string>

namespace Tarvix::Tool {

/// An option that names a file which has another use already.
struct FileClash {
    std::string Option;  ///< "--svg"
    std::string Problem; ///< in whole sentences, what to do included
};

/// The first output file that is also a script, the bus file, the standard output or another output; whatever path
/// leads to it.
/// @param Scripts  paths; "-" is the standard input
std::optional<FileClash> FindFileClash(const BusOptions& Bus, std::span<const std::string> Scripts = {});

} // namespace Tarvix::Tool
