/// @file
/// The two ways in which the library raises a failure.
#pragma once

#include "tarvix/common/Error.h"

#include <string_view>

namespace Tarvix {

/// Raises `Number` in the name of the class `Source`.
template <typename Enum>
[[noreturn]] void Raise(Enum Number, std::string_view Source, std::string_view Description)
{
    throw Error(static_cast<std::int32_t>(Number), std::string(Source), std::string(Description));
}

/// Raises a general error with its fixed description and the source "Tarvix".
[[noreturn]] void Raise(errGeneral Number);

} // namespace Tarvix
