/// @file
/// What flex generates from FlexScanner.l.
#pragma once

#include <cstddef>

struct yy_buffer_state;

/// The text of the last token, parentheses and "//" included.
extern char* LINScripttext;
/// Its length in bytes.
extern int LINScriptleng;

/// Scans the next token; an `eTokenType`.
int LINScriptlex();

/// Starts scanning `Base` in place; its last two bytes of `Size` must be 0.
yy_buffer_state* LINScript_scan_buffer(char* Base, std::size_t Size);
/// Ends it.
void LINScript_delete_buffer(yy_buffer_state* Buffer);
