/// @file
/// Errors in tests: caught whole, compared whole.
#pragma once

#include "tarvix/common/Error.h"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>

namespace Tarvix::Testing {

/// Number, source and description of an error.
struct Failure {
    std::uint32_t Number = 0;
    std::string Source;
    std::string Description;

    bool operator==(const Failure&) const = default;
    friend std::ostream& operator<<(std::ostream& Stream, const Failure& Value)
    {
        return Stream << "0x" << std::hex << Value.Number << std::dec << ' ' << Value.Source << ": "
                      << Value.Description;
    }
};

/// What `Action` raised as an `Error`; all empty when it raised nothing.
template <typename Callable>
Failure FailureOf(Callable&& Action)
{
    try {
        Action();
    } catch (const Error& Raised) {
        return {static_cast<std::uint32_t>(Raised.Number()), Raised.Source(), Raised.Description()};
    }
    return {};
}

inline const Failure NoFailure{};
inline const Failure InvalidArgument{5, "Tarvix", "Invalid argument"};
inline const Failure Overflow{6, "Tarvix", "Overflow"};
inline const Failure IndexOutOfRange{9, "Tarvix", "Index out of range"};
inline const Failure DivisionByZero{11, "Tarvix", "Division by zero"};
inline const Failure TypeMismatch{13, "Tarvix", "Type mismatch"};
inline const Failure NotAttached{91, "Tarvix", "Not attached"};
inline const Failure NoMoreData{0x8004C419, "clsOversamplingBuffer", "Cannot sample input signal, no more data"};
inline const Failure Framing{0x8004C3F1, "clsLINViaFTDIMPSSE", "Framing error"};
inline const Failure TxRxMismatch{0x8004C3F2, "clsLINViaFTDIMPSSE", "Transmission corrupted, Tx <> Rx"};
inline const Failure InvalidDataBytes{0x8004C3B5, "clsLIN", "Invalid number of data bytes"};
inline const Failure InvalidParameter{0x8004C3B5, "clsLIN", "Invalid parameter"};
inline const Failure NoData{0x8004C3B6, "clsLIN", "No data available"};
inline const Failure DataLengthMismatch{0x8004C3B7, "clsLIN", "Data length mismatch"};
inline const Failure RxChecksum{0x8004C3B8, "clsLIN", "Rx checksum error"};

/// The errResponseLength of `Bytes` received.
inline Failure ResponseLength(int Bytes)
{
    return {0x8004C3B9, "clsLIN",
            std::string("Unexpected length of response (").append(std::to_string(Bytes)).append(" bytes)")};
}

} // namespace Tarvix::Testing
