/// @file
/// The one exception type of the library and the error numbers that hosts can tell apart.
///
/// Every failure is raised as an `Error`: a number, the name of the class that raised it, and an English description.
/// What a device, a log object or a progress handler of the host raises is never wrapped: it arrives as it was thrown.
#pragma once

#include "tarvix/common/Export.h"

#include <cstdint>
#include <exception>
#include <string>

namespace Tarvix {

/// A raised failure.
class TARVIX_API Error : public std::exception {
public:
    /// @param Number       one of the enumerations below, or a number of the raiser's own
    /// @param Source       name of the raising class
    /// @param Description  English text for people
    Error(std::int32_t Number, std::string Source, std::string Description);

    /// The error number; most are above 0x80000000 and thus negative.
    std::int32_t Number() const noexcept { return Number_; }
    /// The name of the class that raised the error, for example "clsLIN".
    const std::string& Source() const noexcept { return Source_; }
    /// What went wrong, in English.
    const std::string& Description() const noexcept { return Description_; }
    /// The description.
    const char* what() const noexcept override;

    /// True when the number equals `Member`, a member of one of the error enumerations.
    template <typename Enum>
    bool Is(Enum Member) const noexcept
    {
        return Number_ == static_cast<std::int32_t>(Member);
    }

private:
    std::int32_t Number_;
    std::string Source_;
    std::string Description_;
};

/// Errors raised by `clsLIN`.
enum class errLIN : std::int32_t {
    _errLIN = static_cast<std::int32_t>(0x8004C3B4), ///< base of the block, never raised
    errParameter,                                    ///< "Invalid parameter", "Invalid number of data bytes"
    errNoData,                                       ///< "No data available"
    errDataLength,                                   ///< "Data length mismatch"
    errChksum,                                       ///< "Rx checksum error"
    errResponseLength                                ///< "Unexpected length of response (n bytes)"
};

/// Errors raised by `clsLINScriptInterpreter`.
enum class errLINScriptInterpreter : std::int32_t {
    _errLINScriptInterpreter = static_cast<std::int32_t>(0x8004C3C8), ///< base of the block, never raised
    errLexical,                                                       ///< "Syntax error in script"
    errEmptyCommand,                                                  ///< "Empty commands are not allowed"
    errTokenType,     ///< "Expected keyword" and its like: a token of another type stands there
    errTokenValue,    ///< "Invalid keyword", "Invalid symbolic constant"
    errByte,          ///< "Invalid byte definition"
    errCommandSyntax, ///< "Error in command", "Error in command, end of command expected"
    errDataLength,    ///< "Invalid data length"
    errRxDataCheck,   ///< "Rx data check error"
    errNoResponse     ///< "No response"
};

/// Errors of arithmetic, conversion and missing parts, raised by every class with the source "Tarvix".
enum class errGeneral : std::int32_t {
    errInvalidArgument = 5, ///< "Invalid argument"
    errOverflow = 6,        ///< "Overflow": a value does not fit its target type
    errIndexOutOfRange = 9, ///< "Index out of range": an array lacks an element that is read
    errDivisionByZero = 11, ///< "Division by zero"
    errTypeMismatch = 13,   ///< "Type mismatch": not a number where one is needed, or no array where one is read
    errNotAttached = 91     ///< "Not attached": the operation needs a device, an engine or a master, and none is there
};

} // namespace Tarvix
