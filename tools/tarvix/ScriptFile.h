/// @file
/// Scripts as they come from files.
#pragma once

#include <string>
#include <string_view>

namespace Tarvix::Tool {

/// A script and the name under which messages speak of it.
struct ScriptFile {
    std::string Name;
    std::u16string Text;
};

/// Reads a script; "-" is the standard input.
/// @throws ProgramFailure  WrongUsage when it cannot be read
ScriptFile ReadScriptFile(const std::string& Path);

/// The text of a script file: UTF-16 when it begins with a byte-order mark of UTF-16, else UTF-8; the mark is no part
/// of the text. Each byte that is not UTF-8, and half a unit at the end of UTF-16, becomes U+FFFD.
std::u16string DecodeScript(std::string_view Bytes);

/// UTF-16 as UTF-8; unpaired surrogates become U+FFFD.
std::string ToUTF8(std::u16string_view Text);

} // namespace Tarvix::Tool
