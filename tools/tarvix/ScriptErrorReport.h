/// @file
/// Shows where a script failed.
#pragma once

#include "tarvix/common/Error.h"
#include "tools/tarvix/ScriptFile.h"

#include <cstdint>
#include <string>

namespace Tarvix::Tool {

/// The failure with its place in the script, the line with a caret under the last character that had been read, and
/// what to do next:
///
///     door.lin:3:30: Error in command, end of command expected (0x8004C3CE, clsLINScriptInterpreter).
///         READ_FRAME ID (3D) LEN 2 RXMASK (FF FF);
///                                       ^
///     Check the order of the parameters, and that every command ends with ";".
///
/// Of a very long line the part around the caret is shown.
/// @param CodePos  1-based position of the next UTF-16 unit that would have been read
std::string ScriptErrorReport(const ScriptFile& Script, std::int32_t CodePos, const Error& Failure);

} // namespace Tarvix::Tool
