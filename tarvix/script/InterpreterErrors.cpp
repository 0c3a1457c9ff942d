#include "tarvix/script/InterpreterErrors.h"

#include "tarvix/common/Formating.h"
#include "tarvix/script/LINScript.h"

namespace Tarvix {

void RaiseScript(errLINScriptInterpreter Number, std::string_view Description)
{
    Raise(Number, "clsLINScriptInterpreter", Description);
}

void RaiseExpected(std::int32_t TokenType)
{
    RaiseScript(errLINScriptInterpreter::errTokenType, FormatText("Expected %1", {TokenTypeName(TokenType)}));
}

void RaiseInvalid(std::int32_t TokenType)
{
    RaiseScript(errLINScriptInterpreter::errTokenValue, FormatText("Invalid %1", {TokenTypeName(TokenType)}));
}

} // namespace Tarvix
