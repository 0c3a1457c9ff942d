/// @file
/// Tells an answer's checksum model from the answer.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace Tarvix::Tool {

/// Which model gives the checksum that came. No answer fits both: the enhanced sum differs from the classic one unless
/// the identifier byte is 0x00 or 0xFF, and no identifier with its parity bits is.
enum class ChecksumVerdict : std::uint8_t { Classic, Enhanced, Neither };

/// Judges an answer.
/// @param ProtectedIdentifier  the identifier byte as sent
/// @param Data                 the answer without its last byte; an empty one has no checksum: Neither
/// @param Checksum             its last byte
ChecksumVerdict JudgeChecksum(std::uint8_t ProtectedIdentifier, std::span<const std::uint8_t> Data,
                              std::uint8_t Checksum);

/// "classic", "enhanced" or "neither".
std::string_view NameOf(ChecksumVerdict Verdict);

} // namespace Tarvix::Tool
