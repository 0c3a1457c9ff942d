#include "tarvix/script/clsLINScriptInterpreter.h"

#include "tarvix/script/InterpreterErrors.h"
#include "tarvix/script/LINScript.h"
#include "tarvix/script/UnicodeText.h"
#include "tarvix/script/clsLINScriptLexer.h"

#include <utility>

namespace Tarvix {

// Holds the interpreter for one run: the one lexer cannot serve a second script before the first has ended.
class clsLINScriptInterpreter::SingleRun {
public:
    explicit SingleRun(clsLINScriptInterpreter& Interpreter) : Interpreter_(Interpreter)
    {
        if (Interpreter_.Running_) {
            Raise(errGeneral::errInvalidArgument);
        }
        Interpreter_.Progress_ = Interpreter_.ExecutionProgress;
        Interpreter_.Running_ = true;
    }
    ~SingleRun()
    {
        Interpreter_.Progress_ = nullptr; // what the handler holds is the host's again
        Interpreter_.Running_ = false;
    }
    SingleRun(const SingleRun&) = delete;
    SingleRun& operator=(const SingleRun&) = delete;

private:
    clsLINScriptInterpreter& Interpreter_;
};

clsLINScriptInterpreter::clsLINScriptInterpreter() : Lexer_(std::make_unique<clsLINScriptLexer>()) {}

clsLINScriptInterpreter::~clsLINScriptInterpreter() = default;

void clsLINScriptInterpreter::ExecuteScript(std::u16string_view Script)
{
    const SingleRun Run(*this);
    Lexer_->ScanInput(Script);
    ExecuteInput();
}

void clsLINScriptInterpreter::ExecuteScript(std::string_view Script)
{
    const SingleRun Run(*this);
    Lexer_ = std::make_unique<clsLINScriptLexer>(); // the earlier script's memory goes before this one takes its own
    Lexer_->TakeInput(UTF8ToUTF16(Script));
    ExecuteInput();
}

std::int32_t clsLINScriptInterpreter::CodePos() const noexcept
{
    return Lexer_->ScanPos();
}

void clsLINScriptInterpreter::ExecuteInput()
{
    RaiseProgress();
    while (!Lexer_->EndOfInput()) {
        const ScriptToken Token = NextToken();
        if (Lexer_->EndOfInput()) {
            break; // nothing more, or a last word that nothing closes: neither is a command
        }
        if (IsEndOfCommand(Token)) {
            RaiseScript(errLINScriptInterpreter::errEmptyCommand, "Empty commands are not allowed");
        }
        ExecuteCommand(ExpectKeyword(Token));
    }
    RaiseProgress();
}

void clsLINScriptInterpreter::RaiseProgress() const
{
    if (Progress_) {
        Progress_(Lexer_->ScanPos());
    }
}

void clsLINScriptInterpreter::ExecuteCommand(std::int32_t Keyword)
{
    switch (Keyword) {
    case ekwBaudrate: return ExecuteBaudrate();
    case ekwWait: return ExecuteWait();
    case ekwBreak: return ExecuteBreak();
    case ekwBreakWidth: return ExecuteBreakWidth();
    case ekwSyncByte: return ExecuteSyncByte();
    case ekwWriteFrame: return ExecuteWriteFrame();
    case ekwReadFrame: return ExecuteReadFrame();
    case ekwChksumMode: return ExecuteChecksumMode();
    default: RaiseInvalid(ettKeyword); // the name of a parameter
    }
}

clsLIN& clsLINScriptInterpreter::LIN() const
{
    if (LIN_ == nullptr) {
        Raise(errGeneral::errNotAttached);
    }
    return *LIN_;
}

clsLINScriptInterpreter::ScriptToken clsLINScriptInterpreter::NextToken()
{
    for (;;) {
        ScriptToken Token{};
        Token.TokenType = Lexer_->GetToken(Token.TokenValue);
        switch (Token.TokenType) {
        case ettComment: break;
        case ettEndOfLine: RaiseProgress(); break;
        case ettOpenByteStream: RaiseScript(errLINScriptInterpreter::errLexical, "Syntax error in script");
        default: return Token;
        }
    }
}

bool clsLINScriptInterpreter::IsEndOfCommand(const ScriptToken& Token) noexcept
{
    return Token.TokenType == ettEndOfCommand;
}

void clsLINScriptInterpreter::RequireEndOfCommand(const ScriptToken& Token)
{
    if (!IsEndOfCommand(Token)) {
        RaiseScript(errLINScriptInterpreter::errCommandSyntax, "Error in command, end of command expected");
    }
}

void clsLINScriptInterpreter::RequireKeyword(const ScriptToken& Token, std::int32_t Keyword) const
{
    if (ExpectKeyword(Token) != Keyword) {
        RaiseScript(errLINScriptInterpreter::errCommandSyntax, "Error in command");
    }
}

} // namespace Tarvix
