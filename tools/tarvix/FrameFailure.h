/// @file
/// What failures of frames mean to the user.
#pragma once

#include "tarvix/common/Error.h"
#include "tools/tarvix/FrameReport.h"

#include <string>
#include <string_view>

namespace Tarvix::Tool {

/// The failure of a read that nobody answered, with the number that scripts report, too.
Error NoResponse();

/// True when `Failure`, raised after `Frame` was on the bus, tells of that frame and not of a later command.
bool TellsOf(const Error& Failure, const FrameReport& Frame);

/// What happened, in words: the error's description; silence is told as what it is.
std::string Describe(const Error& Failure);

/// What the user can do about a failure: one sentence, or none.
std::string_view AdviceFor(const Error& Failure);

/// Description, number and source: "Rx checksum error (0x8004C3B8, clsLIN)."
std::string Headline(const Error& Failure);

} // namespace Tarvix::Tool
