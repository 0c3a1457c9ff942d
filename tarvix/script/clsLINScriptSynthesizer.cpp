#include "tarvix/script/clsLINScriptSynthesizer.h"

#include "tarvix/common/eLINChecksumMode.h"

#include <array>
#include <vector>

namespace Tarvix {

std::string clsLINScriptSynthesizer::ScriptBaudrateTbit(float Value) const
{
    return Command({Keyword(ekwBaudrate), Lexer_.CodeFromNumberReal(Value)});
}

std::string clsLINScriptSynthesizer::ScriptBaudrateBaudrateBd(std::int32_t Value) const
{
    return Command({Keyword(ekwBaudrate), Lexer_.CodeFromNumberInteger(Value), Keyword(ekwBd)});
}

std::string clsLINScriptSynthesizer::ScriptBreakWidth(float Value) const
{
    return Command({Keyword(ekwBreakWidth), Lexer_.CodeFromNumberReal(Value)});
}

std::string clsLINScriptSynthesizer::ScriptSyncByte(std::uint8_t Value) const
{
    return Command({Keyword(ekwSyncByte), Byte(Value)});
}

std::string clsLINScriptSynthesizer::ScriptChecksumMode(std::int32_t Value) const
{
    return Command({Keyword(ekwChksumMode), Lexer_.CodeFromConstant(Value == elcLIN13 ? "LIN1_3" : "LIN2_0")});
}

std::string clsLINScriptSynthesizer::ScriptWait(std::int32_t Tbits) const
{
    return Command({Keyword(ekwWait), Lexer_.CodeFromNumberInteger(Tbits)});
}

std::string clsLINScriptSynthesizer::ScriptGenerateBreak() const
{
    return Command({Keyword(ekwBreak)});
}

std::string clsLINScriptSynthesizer::ScriptWriteFrame(std::uint8_t IDbyte, std::int32_t DataLength,
                                                      std::span<const std::uint8_t> TxData,
                                                      const std::optional<Variant>& Chksum) const
{
    std::vector<std::string> Tokens = FrameHeader(ekwWriteFrame, IDbyte, DataLength);
    Tokens.push_back(Keyword(ekwTx));
    Tokens.push_back(Lexer_.CodeFromByteStreamHex(TxData, DataLength, true));
    if (Chksum) {
        Tokens.push_back(Keyword(ekwChksum));
        Tokens.push_back(Byte(Chksum->ToByte()));
    }
    return Lexer_.CodeMakeCommand(Tokens);
}

std::string clsLINScriptSynthesizer::ScriptReadFrame(std::uint8_t IDbyte, std::int32_t DataLength) const
{
    return Lexer_.CodeMakeCommand(FrameHeader(ekwReadFrame, IDbyte, DataLength));
}

std::string clsLINScriptSynthesizer::Command(std::initializer_list<std::string> Tokens) const
{
    return Lexer_.CodeMakeCommand(std::span(Tokens.begin(), Tokens.size()));
}

std::string clsLINScriptSynthesizer::Keyword(eKeyword Code) const
{
    return Lexer_.CodeFromKeyword(Code);
}

std::string clsLINScriptSynthesizer::Byte(std::uint8_t Value) const
{
    return Lexer_.CodeFromByteStreamHex(std::array{Value}, 1, true);
}

std::vector<std::string> clsLINScriptSynthesizer::FrameHeader(eKeyword Command, std::uint8_t IDbyte,
                                                              std::int32_t DataLength) const
{
    return {Keyword(Command), Keyword(ekwID), Byte(IDbyte), Keyword(ekwLen), Lexer_.CodeFromNumberInteger(DataLength)};
}

} // namespace Tarvix
