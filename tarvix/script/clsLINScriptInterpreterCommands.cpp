#include "tarvix/common/CheckedArithmetic.h"
#include "tarvix/common/FloatingPoint.h"
#include "tarvix/master/clsLIN.h"
#include "tarvix/script/InterpreterErrors.h"
#include "tarvix/script/LINScript.h"
#include "tarvix/script/clsLINScriptInterpreter.h"
#include "tarvix/script/clsLINScriptLexer.h"

#include <algorithm>
#include <cstddef>
#include <optional>

// Every command is read to its ";" before its values are used and the master is called.

namespace Tarvix {

namespace {

// Only the letters of ASCII have an upper case here.
bool InUpperCaseIs(std::u16string_view Text, std::u16string_view Expected) noexcept
{
    return std::ranges::equal(Text, Expected, [](char16_t Unit, char16_t Upper) {
        return Unit == Upper || (Unit >= u'a' && Unit <= u'z' && Unit - u'a' + u'A' == Upper);
    });
}

eLINChecksumMode ChecksumModeOf(std::u16string_view Constant)
{
    if (InUpperCaseIs(Constant, u"LIN1_3")) {
        return elcLIN13;
    }
    if (InUpperCaseIs(Constant, u"LIN2_0")) {
        return elcLIN20;
    }
    RaiseInvalid(ettConstant);
}

} // namespace

// -- parameter readers

std::int32_t clsLINScriptInterpreter::ExpectKeyword(const ScriptToken& Token) const
{
    if (Token.TokenType != ettKeyword) {
        RaiseExpected(ettKeyword);
    }
    return Lexer_->TokenToKeyword(Token.TokenValue);
}

std::int32_t clsLINScriptInterpreter::ExpectInteger(const ScriptToken& Token) const
{
    if (Token.TokenType != ettInteger) {
        RaiseExpected(ettInteger);
    }
    return Lexer_->TokenToNumberInteger(Token.TokenValue);
}

float clsLINScriptInterpreter::ExpectReal(const ScriptToken& Token) const
{
    if (Token.TokenType != ettInteger && Token.TokenType != ettReal) {
        RaiseExpected(ettReal);
    }
    return NarrowToFloat(Lexer_->TokenToNumberReal(Token.TokenValue));
}

std::uint8_t clsLINScriptInterpreter::ExpectByte(const ScriptToken& Token) const
{
    if (Token.TokenType == ettInteger) {
        return CheckedNarrow<std::uint8_t>(Lexer_->TokenToNumberInteger(Token.TokenValue));
    }
    if (Token.TokenType == ettByteStream) {
        const ByteStream Stream = ExpectByteStream(Token);
        if (Stream.Count == 1) {
            return Stream.Bytes.front();
        }
    }
    RaiseScript(errLINScriptInterpreter::errByte, "Invalid byte definition");
}

std::u16string_view clsLINScriptInterpreter::ExpectConstant(const ScriptToken& Token)
{
    if (Token.TokenType != ettConstant) {
        RaiseExpected(ettConstant);
    }
    return Token.TokenValue;
}

clsLINScriptInterpreter::ByteStream clsLINScriptInterpreter::ExpectByteStream(const ScriptToken& Token) const
{
    if (Token.TokenType != ettByteStream) {
        RaiseExpected(ettByteStream);
    }
    ByteStream Stream;
    Lexer_->TokenToByteStream(Token.TokenValue, Stream.Count, Stream.Bytes);
    return Stream;
}

// -- what several commands have in common

clsLINScriptInterpreter::ScriptToken clsLINScriptInterpreter::ReadOnlyParameter()
{
    const ScriptToken First = NextToken();
    RequireEndOfCommand(NextToken());
    return First;
}

clsLINScriptInterpreter::FrameHead clsLINScriptInterpreter::ReadFrameHead()
{
    FrameHead Head{};
    RequireKeyword(NextToken(), ekwID);
    Head.ID = ExpectByte(NextToken());
    RequireKeyword(NextToken(), ekwLen);
    Head.Length = CheckedNarrow<std::uint8_t>(ExpectInteger(NextToken()));
    return Head;
}

clsLINScriptInterpreter::ByteStream clsLINScriptInterpreter::ReadDataBytes(std::int32_t Length)
{
    ByteStream Stream = ExpectByteStream(NextToken());
    if (Stream.Count != Length) {
        RaiseScript(errLINScriptInterpreter::errDataLength, "Invalid data length");
    }
    return Stream;
}

// -- commands

void clsLINScriptInterpreter::ExecuteBaudrate()
{
    const ScriptToken First = NextToken();
    const ScriptToken Second = NextToken();
    if (IsEndOfCommand(Second)) {
        const float SecondsPerBit = ExpectReal(First);
        LIN().BaudrateTbit(SecondsPerBit);
        return;
    }
    RequireKeyword(Second, ekwBd);
    RequireEndOfCommand(NextToken());
    const std::int32_t BitsPerSecond = ExpectInteger(First);
    LIN().BaudrateBd(BitsPerSecond);
}

void clsLINScriptInterpreter::ExecuteWait()
{
    const auto Tbits = CheckedNarrow<std::int16_t>(ExpectInteger(ReadOnlyParameter()));
    LIN().Wait(Tbits);
}

void clsLINScriptInterpreter::ExecuteBreak()
{
    RequireEndOfCommand(NextToken());
    LIN().GenerateBreak();
}

void clsLINScriptInterpreter::ExecuteBreakWidth()
{
    const float Tbits = ExpectReal(ReadOnlyParameter());
    LIN().BreakWidth(Tbits);
}

void clsLINScriptInterpreter::ExecuteSyncByte()
{
    const std::uint8_t Value = ExpectByte(ReadOnlyParameter());
    LIN().SyncByte(Value);
}

void clsLINScriptInterpreter::ExecuteChecksumMode()
{
    const eLINChecksumMode Mode = ChecksumModeOf(ExpectConstant(ReadOnlyParameter()));
    LIN().ChecksumMode(Mode);
}

void clsLINScriptInterpreter::ExecuteWriteFrame()
{
    const FrameHead Head = ReadFrameHead();
    ScriptToken Token = NextToken();
    ByteStream Data;
    if (Head.Length != 0) {
        RequireKeyword(Token, ekwTx);
        Data = ReadDataBytes(Head.Length);
        Token = NextToken();
    }
    std::optional<Variant> Checksum;
    if (!IsEndOfCommand(Token)) {
        RequireKeyword(Token, ekwChksum);
        Checksum = ExpectByte(NextToken());
        RequireEndOfCommand(NextToken());
    }
    LIN().WriteFrame(Head.ID, Head.Length, Data.Bytes, Checksum);
}

void clsLINScriptInterpreter::ExecuteReadFrame()
{
    const FrameHead Head = ReadFrameHead();
    const auto NamesParameter = [this](const ScriptToken& Token, std::int32_t Keyword) {
        return !IsEndOfCommand(Token) && ExpectKeyword(Token) == Keyword;
    };

    ScriptToken Token = NextToken();
    ByteStream RxData;
    ByteStream RxMask;
    if (NamesParameter(Token, ekwRx)) {
        RxData = ReadDataBytes(Head.Length);
        Token = NextToken();
        if (NamesParameter(Token, ekwRxMask)) {
            RxMask = ReadDataBytes(Head.Length);
            Token = NextToken();
        }
    }
    std::optional<std::uint8_t> Checksum;
    std::uint8_t ChecksumMask = 0xFF;
    if (NamesParameter(Token, ekwChksum)) {
        Checksum = ExpectByte(NextToken());
        Token = NextToken();
        if (NamesParameter(Token, ekwChksumMask)) {
            ChecksumMask = ExpectByte(NextToken());
            Token = NextToken();
        }
    }
    RequireEndOfCommand(Token);

    clsLIN& Master = LIN();
    // A checksum that the script names takes the place of the master's own test.
    if (!Master.ReadFrame(Head.ID, Head.Length, !Checksum)) {
        RaiseScript(errLINScriptInterpreter::errNoResponse, "No response");
    }
    if (RxData.Count >= 1 && RxMask.Count == 0) {
        RxMask.Bytes.assign(static_cast<std::size_t>(RxData.Count), 0xFF);
    }
    const bool DataMatches = RxData.Count < 1 || Master.CheckData(RxData.Count, RxData.Bytes, RxMask.Bytes);
    if (!DataMatches || (Checksum && !Master.CheckChksum(*Checksum, ChecksumMask))) {
        RaiseScript(errLINScriptInterpreter::errRxDataCheck, "Rx data check error");
    }
}

} // namespace Tarvix
