/// @file
/// Error numbers of the internal classes. They reach the host, but belong to no public enumeration.
#pragma once

#include <cstdint>

namespace Tarvix {

/// Errors raised by `clsLINScriptLexer`.
enum class errLINScriptLexer : std::int32_t {
    errTokenConversion = static_cast<std::int32_t>(0x8004C3DD), ///< "Error in token value conversion"
    errSecondaryLexical ///< "Error in secondary lexical analysis, ...": a malformed byte literal
};

/// Errors raised by `clsLINViaFTDIMPSSE`.
enum class errLINViaFTDIMPSSE : std::int32_t {
    errFraming = static_cast<std::int32_t>(0x8004C3F1), ///< "Framing error"
    errTxRxMismatch                                     ///< "Transmission corrupted, Tx <> Rx"
};

/// Errors raised by `clsOversamplingBuffer`.
enum class errOversamplingBuffer : std::int32_t {
    errNoMoreData = static_cast<std::int32_t>(0x8004C419) ///< "Cannot sample input signal, no more data"
};

} // namespace Tarvix
