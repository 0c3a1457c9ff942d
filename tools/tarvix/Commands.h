/// @file
/// What each command of the program does.
///
/// Every operation returns the exit status.
/// @throws ProgramFailure  when the program cannot go on
#pragma once

#include "pellumo/DeviceList.h"
#include "tools/tarvix/CommandLine.h"

#include <span>
#include <string>

namespace Tarvix::Tool {

/// Executes scripts, one after the other, on one bus; the first failure ends the run.
int Execute(const RunArguments& Arguments);

/// Sends a frame.
int Execute(const WriteArguments& Arguments);

/// Reads a frame.
int Execute(const ReadArguments& Arguments);

/// Asks every identifier and prints who answers.
int Execute(const ScanArguments& Arguments);

/// Lists the chips found on USB.
int Execute(const DevicesArguments& Arguments);

/// Prints protected identifiers.
int Execute(const IDArguments& Arguments);

/// Prints help, the version, or what is wrong with the usage.
int Execute(const PrintAndExit& Arguments);

/// The table of chips; what stands in a chip's way is a line of its own below it.
std::string DeviceTable(std::span<const Pellumo::FoundDevice> Devices);

} // namespace Tarvix::Tool
