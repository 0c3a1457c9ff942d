/// @file
/// Writes the operations of a master as lines of the LIN script language.
#pragma once

#include "tarvix/common/Variant.h"
#include "tarvix/script/clsLINScriptLexer.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Tarvix {

/// One function for each logged operation. Each returns one command line, its ";" CR LF included, which a script
/// interpreter reads as the same operation with the same arguments, reals to 7 significant digits, provided that no
/// number is negative.
class clsLINScriptSynthesizer {
public:
    /// "BAUDRATE 5.208333E-05;"
    /// @param Value   bit time in seconds
    /// @throws Error  errOverflow for NaN and the infinities
    std::string ScriptBaudrateTbit(float Value) const;
    /// "BAUDRATE 9600 BD;"
    /// @param Value  bits per second
    std::string ScriptBaudrateBaudrateBd(std::int32_t Value) const;
    /// "BREAK_WIDTH 13.5;"
    /// @param Value   bit times
    /// @throws Error  errOverflow for NaN and the infinities
    std::string ScriptBreakWidth(float Value) const;
    /// "SYNC_BYTE (55);"
    std::string ScriptSyncByte(std::uint8_t Value) const;
    /// "CHKSUM_MODE LIN1_3;" or "CHKSUM_MODE LIN2_0;"
    /// @param Value  an `eLINChecksumMode`
    std::string ScriptChecksumMode(std::int32_t Value) const;
    /// "WAIT 10;"
    /// @param Tbits  bit times
    std::string ScriptWait(std::int32_t Tbits) const;
    /// "BREAK;"
    std::string ScriptGenerateBreak() const;
    /// "WRITE_FRAME ID (3C) LEN 2 TX (01 02) CHKSUM (A5);", without CHKSUM when `Chksum` is absent.
    /// @throws Error  errIndexOutOfRange when `TxData` has fewer than `DataLength` bytes; errTypeMismatch when `Chksum`
    ///                is not numeric, errOverflow when it is not in 0 to 255
    std::string ScriptWriteFrame(std::uint8_t IDbyte, std::int32_t DataLength, std::span<const std::uint8_t> TxData,
                                 const std::optional<Variant>& Chksum) const;
    /// "READ_FRAME ID (7D) LEN 8;"
    std::string ScriptReadFrame(std::uint8_t IDbyte, std::int32_t DataLength) const;

private:
    std::string Command(std::initializer_list<std::string> Tokens) const;
    std::string Keyword(eKeyword Code) const;
    std::string Byte(std::uint8_t Value) const;
    std::vector<std::string> FrameHeader(eKeyword Command, std::uint8_t IDbyte, std::int32_t DataLength) const;

    clsLINScriptLexer Lexer_;
};

} // namespace Tarvix
