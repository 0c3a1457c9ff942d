/// @file
/// What the user asked for.
#pragma once

#include "tarvix/common/eLINChecksumMode.h"
#include "tools/tarvix/ExitStatus.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Tarvix::Tool {

/// How frames are printed.
enum class OutputFormat : std::uint8_t { Table, JSON, Candump };

/// The options of every command that uses the bus. Empty paths: no such file.
struct BusOptions {
    std::string Device = "sim:";
    std::int32_t BitRate = 19200;    ///< bits per second
    std::optional<float> BreakWidth; ///< bit times
    std::optional<eLINChecksumMode> ChecksumModel;
    std::string VCDFile;
    std::string SVGFile;
    std::string RecordFile;
    OutputFormat Format = OutputFormat::Table;
    bool Timing = false; ///< print what the samples tell about each answer
    bool Quiet = false;  ///< no notices and no progress bar
};

/// `run SCRIPT...`; "-" is the standard input.
struct RunArguments {
    BusOptions Bus;
    std::vector<std::string> Scripts;
};

/// `write ID BYTE...`
struct WriteArguments {
    BusOptions Bus;
    std::uint8_t Identifier = 0; ///< 0x00..0x3F
    std::vector<std::uint8_t> Data;
};

/// `read ID LENGTH`
struct ReadArguments {
    BusOptions Bus;
    std::uint8_t Identifier = 0; ///< 0x00..0x3F
    std::int32_t Length = 0;     ///< data bytes
};

/// `scan`
struct ScanArguments {
    BusOptions Bus;
};

/// `devices`
struct DevicesArguments {};

/// `id ID...`
struct IDArguments {
    std::vector<std::uint8_t> Identifiers; ///< 0x00..0x3F
};

/// Nothing is to be done but to print: help and version on the standard output, or what is wrong with the usage on the
/// standard error output.
struct PrintAndExit {
    ExitStatus Status = AllWell;
    std::string Text;
};

using Command = std::variant<PrintAndExit, RunArguments, WriteArguments, ReadArguments, ScanArguments, DevicesArguments,
                             IDArguments>;

/// Takes the command line apart. Nothing is opened; of files it is looked at which names lead to the same one.
/// @param Arguments  without the program's name
Command ParseCommandLine(std::vector<std::string> Arguments);

} // namespace Tarvix::Tool
