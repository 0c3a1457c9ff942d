/// @file
/// The words of the LIN script language: token types and keywords.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace Tarvix {

/// What a token is.
enum eTokenType : std::int32_t {
    ettNothing = 0,   ///< the end of the script
    ettKeyword,       ///< a word of the keyword table, in any case
    ettInteger,       ///< a number without point and exponent
    ettReal,          ///< a number with a point, an exponent or both
    ettByteStream,    ///< "(" to ")" on one line
    ettConstant,      ///< any other word
    ettEndOfCommand,  ///< ";"
    ettComment,       ///< "//" to the end of the line
    ettEndOfLine,     ///< LF or CR LF
    ettUnknown,       ///< anything else, up to the next white space
    ettOpenByteStream ///< "(" without ")" on its line
};

/// The name of a token type in messages: "integer number", ";"; "unknown construct" for `ettUnknown`,
/// `ettOpenByteStream` and every number that is no token type.
std::string TokenTypeName(std::int32_t TokenType);

/// Keyword codes: indices into `KeywordTable`.
enum eKeyword : std::int32_t {
    ekwNone = -1, ///< no keyword
    ekwBaudrate,
    ekwWait,
    ekwBreak,
    ekwBreakWidth,
    ekwSyncByte,
    ekwWriteFrame,
    ekwReadFrame,
    ekwBd,
    ekwID,
    ekwLen,
    ekwTx,
    ekwRx,
    ekwChksum,
    ekwRxMask,
    ekwChksumMask,
    ekwChksumMode
};

/// The keywords in the order of their codes, as they are written.
inline constexpr std::array<std::string_view, 16> KeywordTable = {
    "BAUDRATE", "WAIT", "BREAK", "BREAK_WIDTH", "SYNC_BYTE", "WRITE_FRAME", "READ_FRAME", "BD",
    "ID",       "LEN",  "TX",    "RX",          "CHKSUM",    "RXMASK",      "CHKSUMMASK", "CHKSUM_MODE"};

/// The code of the keyword `Word`, the case of ASCII letters ignored; `ekwNone` when it is none.
eKeyword FindKeyword(std::u16string_view Word) noexcept;

} // namespace Tarvix
