/// @file
/// UTF-8 as UTF-16, the form in which scripts are scanned and their positions counted.
#pragma once

#include <string>
#include <string_view>

namespace Tarvix {

/// `Text` in UTF-16, in memory that fits it exactly. Bytes that are not UTF-8 become U+FFFD, one for every maximal
/// subpart of a character as the Unicode Standard recommends (chapter 3.9, "U+FFFD Substitution of Maximal Subparts"):
/// a truncated character gives one, every other stray byte one of its own. A byte-order mark is a character like
/// others.
std::u16string UTF8ToUTF16(std::string_view Text);

} // namespace Tarvix
