/// @file
/// The lexer of the LIN script language: it cuts a script into tokens, converts the texts of tokens into values, and
/// writes values as script text.
///
/// Scanning. `ScanInput` takes the script; every `GetToken` starts afresh at the scan position and gives one token. Any
/// text is some sequence of tokens: what fits no rule becomes a token of type `ettUnknown` or `ettOpenByteStream`. The
/// token's text is a view into the lexer's own copy of the script, so a token costs no memory, and the whole scan costs
/// time linear in the length of the script. Positions are 1-based and count UTF-16 code units.
///
/// Conversion and writing are pure functions of their arguments: they neither read nor change the state of the scan.
/// They are safe on any text, not only on what `GetToken` delivers.
#pragma once

#include "tarvix/script/LINScript.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Tarvix {

/// Lexer of the LIN script language. Not safe for use by two threads at once.
class clsLINScriptLexer {
public:
    // Scanning

    /// Makes a copy of `InputString` the input and goes back to position 1.
    /// @throws Error  errOverflow for a text of more than 2^31 - 2 code units; the earlier input and position stay
    void ScanInput(std::u16string_view InputString);
    /// As `ScanInput`, but takes the text over instead of copying it. After a failure `InputString` is unchanged.
    void TakeInput(std::u16string&& InputString);

    /// The position of the next code unit to scan; 0 before any input.
    std::int32_t ScanPos() const noexcept { return ScanPos_; }
    /// True when the position is past the last code unit; false before any input.
    bool EndOfInput() const noexcept { return static_cast<std::size_t>(ScanPos_) > Input_.size(); }

    /// Scans the next token and moves past it.
    ///
    /// @param TokenValue  the token's text: of a byte stream what stands between the parentheses, of a comment what
    ///                    follows the "//", of any other token all of it; valid until the next input
    /// @return            an `eTokenType`; `ettNothing` at the end of the input
    /// @throws Error      errInvalidArgument before any input
    std::int32_t GetToken(std::u16string_view& TokenValue);

    // From token texts to values

    /// The code of a keyword, an `eKeyword`, whatever the case of its letters.
    /// @throws Error  errTokenConversion when it is none
    std::int32_t TokenToKeyword(std::u16string_view TokenValue) const;
    /// The value of decimal digits.
    /// @throws Error  errOverflow above 2^31 - 1, errTypeMismatch when it is anything but digits
    std::int32_t TokenToNumberInteger(std::u16string_view TokenValue) const;
    /// The 64-bit float nearest to an unsigned decimal number with "." and exponent; 0 when it is too small for any.
    /// @throws Error  errOverflow beyond the 64-bit float range, errTypeMismatch when it is no such number
    double TokenToNumberReal(std::u16string_view TokenValue) const;
    /// The bytes that the literals of a byte stream denote. After a failure the output holds the bytes before the
    /// literal that failed.
    ///
    /// @param TokenValue    literals separated by white space: hexadecimal digits, or digits after one of the prefixes
    ///                      'h 'b 'o 'd (hexadecimal, binary, octal, decimal); "_" among the digits is ignored
    /// @param ResultLength  number of bytes
    /// @param Result        as many bytes as `TokenValue` has code units; the first `ResultLength` are the result, the
    ///                      others 0. Its memory is used again.
    /// @throws Error        errIndexOutOfRange for an empty text (`ResultLength` is 0, `Result` unchanged);
    ///                      errSecondaryLexical for a malformed literal or one above 255;
    ///                      errOverflow for a literal above 2^31 - 1
    void TokenToByteStream(std::u16string_view TokenValue, std::int32_t& ResultLength,
                           std::vector<std::uint8_t>& Result) const;
    /// The name of a symbolic constant: the text as it is.
    std::u16string TokenToCodeConstant(std::u16string_view TokenValue) const;

    // From values to script text

    /// One command line: the texts joined by single blanks, then ";" CR LF. An empty text at the front adds nothing;
    /// behind a text that is not empty it leaves its blank.
    std::string CodeMakeCommand(std::span<const std::string> TokenStrings) const;
    /// The keyword with the code `Keyword`.
    /// @throws Error  errIndexOutOfRange when it is no `eKeyword`
    std::string CodeFromKeyword(std::int32_t Keyword) const;
    /// The number in decimal digits. The language has no sign: a negative number does not read back.
    std::string CodeFromNumberInteger(std::int32_t Value) const;
    /// The number rounded half-even to 7 significant digits, without trailing zeros: from 0.0001 to 9999999 in plain
    /// notation, otherwise as "5.208333E-05". A negative number gets a "-", and does not read back.
    /// @throws Error  errOverflow for NaN and the infinities
    std::string CodeFromNumberReal(float Value) const;
    /// A symbolic constant: the text as it is.
    std::string CodeFromConstant(std::string_view Value) const;
    /// A comment, "// " and the text; no line break.
    std::string CodeFromComment(std::string_view Value) const;
    /// The first `DataLength` bytes of `Data` as a byte stream, "(01 02 A5)".
    /// @param Spaces  without effect: unseparated digits would read back as one literal
    /// @throws Error  errIndexOutOfRange when `Data` has fewer bytes
    std::string CodeFromByteStreamHex(std::span<const std::uint8_t> Data, std::int32_t DataLength, bool Spaces) const;

private:
    std::size_t Scanned() const noexcept { return static_cast<std::size_t>(ScanPos_) - 1; }

    std::u16string Input_;
    std::int32_t ScanPos_ = 0;
};

} // namespace Tarvix
