/// @file
/// A frame as the program reports it.
#pragma once

#include "pellumo/recording/AnswerTiming.h"
#include "tarvix/common/Error.h"
#include "tools/tarvix/AnswerChecksum.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Tarvix::Tool {

/// Who supplied the response.
enum class FrameOperation : std::uint8_t {
    Write, ///< the commander
    Read   ///< a slave
};

/// One frame of the bus and what became of it.
struct FrameReport {
    double Seconds = 0.0; ///< bus time at which its break begins
    FrameOperation Operation = FrameOperation::Read;
    std::uint8_t ProtectedIdentifier = 0; ///< the identifier byte as sent
    std::vector<std::uint8_t> Data;       ///< as sent by a write, as received by a read
    std::optional<std::uint8_t> Checksum; ///< the last byte of the response; nothing when it did not come to its end
    std::optional<Error> Failure;         ///< why the operation failed; nothing: it did not
    std::optional<Pellumo::AnswerTiming> Timing;  ///< of the answer that came, be it right or wrong
    std::optional<ChecksumVerdict> ChecksumModel; ///< scans: what the answer's checksum is
    const char* Remark = "";                      ///< scans: what the user should know about this answer

    /// The identifier without its parity bits.
    std::uint8_t Identifier() const noexcept { return ProtectedIdentifier & 0x3FU; }
    /// Whether any byte of a response was seen.
    bool HasResponse() const noexcept { return Checksum.has_value() || !Data.empty(); }
};

} // namespace Tarvix::Tool
