/// @file
/// The operation log: what a host implements to record what a master does.
#pragma once

#include "tarvix/common/Export.h"

#include <string_view>

namespace Tarvix {

/// Receives one line of the LIN script language for every master operation that changed the configuration or the bus.
/// The lines, run again as a script, repeat the operations.
class TARVIX_API icLog {
public:
    virtual ~icLog();

    /// Called on the caller's thread inside the master operation, after the operation's own work has succeeded.
    /// Whatever it raises reaches the caller of that operation.
    /// @param LINScript  one whole line, its ";" CR LF included; always ASCII; valid during the call
    virtual void LogEntry(std::string_view LINScript) = 0;

protected:
    icLog() = default;
    icLog(const icLog&) = default;
    icLog(icLog&&) = default;
    icLog& operator=(const icLog&) = default;
    icLog& operator=(icLog&&) = default;
};

} // namespace Tarvix
