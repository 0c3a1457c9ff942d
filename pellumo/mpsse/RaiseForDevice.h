/// @file
/// How the devices raise their failures.
#pragma once

#include "tarvix/common/Raise.h"

#include <string>
#include <string_view>

namespace Pellumo {

/// Raises `Number` in the name of the class `Source`; the description begins with the device.
/// @param Device  the device as its URL names it; "sim:" brings its colon along
/// @param What    what is wrong and what the user can do
template <typename Enum>
[[noreturn]] void RaiseForDevice(Enum Number, std::string_view Source, std::string_view Device, std::string_view What)
{
    Tarvix::Raise(Number, Source, std::string(Device).append(Device.ends_with(':') ? " " : ": ").append(What));
}

} // namespace Pellumo
