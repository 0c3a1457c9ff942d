/// @file
/// Texts with placeholders.
#pragma once

#include "tarvix/common/Variant.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace Tarvix {

/// `Template` with every "%1" replaced by the first value's text, then every "%2" by the second's, and so on; text that
/// one value brings in is searched again by the later ones. A placeholder without a value stays as it is.
/// @throws Error  errTypeMismatch for a value that is an array
std::string FormatText(std::string_view Template, std::initializer_list<Variant> Values);

} // namespace Tarvix
