#include "tarvix/script/clsLINScriptInterpreter.h"
#include "tools/tarvix/BusSession.h"
#include "tools/tarvix/Commands.h"
#include "tools/tarvix/ScriptErrorReport.h"
#include "tools/tarvix/ScriptFile.h"

#include <vector>

namespace Tarvix::Tool {

namespace {

/// How much of the scripts has been executed.
struct Progress {
    std::size_t Before = 0; ///< code units of the scripts that are done
    std::size_t Total = 0;

    double Share(std::int32_t CodePos) const
    {
        return static_cast<double>(Before + static_cast<std::size_t>(CodePos)) / static_cast<double>(Total + 1);
    }
};

ExitStatus RunScripts(BusSession& Session, const std::vector<ScriptFile>& Scripts)
{
    Progress Done;
    for (const ScriptFile& Script : Scripts) {
        Done.Total += Script.Text.size();
    }
    clsLINScriptInterpreter Interpreter;
    Interpreter.Initialize(Session.Master());
    Interpreter.ExecutionProgress = [&Session, &Done](std::int32_t CodePos) {
        Session.Frames().Settle();
        Session.Output().Progress(Done.Share(CodePos));
    };
    for (const ScriptFile& Script : Scripts) {
        try {
            Interpreter.ExecuteScript(std::u16string_view(Script.Text));
        } catch (const Error& Failure) {
            Session.Frames().Fail(Failure);
            Session.Output().Complain(ScriptErrorReport(Script, Interpreter.CodePos(), Failure));
            return SomethingFailed;
        }
        Done.Before += Script.Text.size();
    }
    return AllWell;
}

} // namespace

int Execute(const RunArguments& Arguments)
{
    std::vector<ScriptFile> Scripts;
    for (const std::string& Path : Arguments.Scripts) {
        Scripts.push_back(ReadScriptFile(Path));
    }
    return WithBus(Arguments.Bus, false, [&Scripts](BusSession& Session) { return RunScripts(Session, Scripts); });
}

} // namespace Tarvix::Tool
