/// @file
/// How the interpreter raises its own errors.
#pragma once

#include "tarvix/common/Raise.h"

#include <cstdint>
#include <string_view>

namespace Tarvix {

/// Raises `Number` in the interpreter's name.
[[noreturn]] void RaiseScript(errLINScriptInterpreter Number, std::string_view Description);
/// errTokenType "Expected ..." with the display name of `TokenType`.
[[noreturn]] void RaiseExpected(std::int32_t TokenType);
/// errTokenValue "Invalid ..." with the display name of `TokenType`.
[[noreturn]] void RaiseInvalid(std::int32_t TokenType);

} // namespace Tarvix
