/// @file
/// What libusb's error codes mean to the user.
#pragma once

#include "pellumo/errPellumo.h"

#include <string>
#include <string_view>

namespace Pellumo {

/// A failure, and what the user can do about it.
struct USBFailure {
    errPellumo Number;
    std::string Text; ///< follows "... failed: "
};

/// What libusb's error code `Code` (negative) stands for.
USBFailure Explain(int Code);

/// Raises what libusb's error code stands for.
/// @param Source  class in whose name it is raised
/// @param Device  the device as its URL names it
/// @param Action  what was tried, for example "claiming the interface"
[[noreturn]] void RaiseUSB(int Code, std::string_view Source, std::string_view Device, std::string_view Action);

} // namespace Pellumo
