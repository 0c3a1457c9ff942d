/// @file
/// Fuzzes a whole session: the input up to its first zero byte is a script, the rest disturbs what the master reads
/// back. The script ends well or with an error, at a place within its text, and leaves interpreter and master usable.
#include "tarvix/master/clsLIN.h"
#include "tarvix/script/UnicodeText.h"
#include "tarvix/script/clsLINScriptInterpreter.h"
#include "tarvix/script/icLog.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "fuzz/Fuzzing.h"
#include "fuzz/StreamDevice.h"

namespace {

using Tarvix::clsLIN;
using Tarvix::clsLINScriptInterpreter;
using Tarvix::Fuzzing::Demand;
using Tarvix::Fuzzing::StreamDevice;
using Tarvix::Fuzzing::Succeeds;

/// Ends sessions whose breaks would take all the time that there is.
struct TooLong {};
constexpr float LongestBreak = 1000.0F; // bit times

class LineLog final : public Tarvix::icLog {
public:
    explicit LineLog(const clsLIN& Master) noexcept : Master_(Master) {}
    void LogEntry(std::string_view LINScript) override
    {
        Demand(LINScript.ends_with(";\r\n") && LINScript.find('\n') == LINScript.size() - 1);
        if (Master_.BreakWidth() > LongestBreak) {
            throw TooLong{};
        }
    }

private:
    const clsLIN& Master_;
};

void RunDisturbed(clsLINScriptInterpreter& Interpreter, std::u16string_view Script)
{
    std::int32_t Reached = 0;
    Interpreter.ExecutionProgress = [&](std::int32_t CodePos) {
        Demand(CodePos >= Reached);
        Reached = CodePos;
    };
    const bool Done = Succeeds([&] { Interpreter.ExecuteScript(Script); });
    const auto End = static_cast<std::int32_t>(Script.size()) + 1;
    Demand(Done ? Reached == End : Interpreter.CodePos() >= Reached && Interpreter.CodePos() <= End);
}

void DemandUsable(clsLINScriptInterpreter& Interpreter, clsLIN& Master, StreamDevice& Device)
{
    Device.Bus = nullptr;
    Interpreter.ExecutionProgress = nullptr;
    Interpreter.ExecuteScript(std::string_view("BREAK_WIDTH 13; WRITE_FRAME ID (20) LEN 2 TX (01 02);"));
    Demand(Master.ID() == 0x20 && Master.DataLength() == 2 && Master.Data()[1] == 0x02);
    Master.Terminate();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    const auto* const ScriptEnd = std::find(Data, Data + Size, 0);
    const std::span<const std::uint8_t> Disturbance(ScriptEnd, Data + Size);
    const std::u16string Script = Tarvix::UTF8ToUTF16(std::string(Data, ScriptEnd));

    StreamDevice Device;
    Device.Bus = [&](std::span<std::uint8_t> Stream) { Tarvix::Fuzzing::Disturb(Stream, Disturbance); };
    clsLIN Master;
    LineLog Log(Master);
    Master.Log(&Log);
    Master.Initialize(Device);
    clsLINScriptInterpreter Interpreter;
    Interpreter.Initialize(Master);
    try {
        RunDisturbed(Interpreter, Script);
    } catch (const TooLong&) {
        Master.BreakWidth(LongestBreak);
    }
    DemandUsable(Interpreter, Master, Device);
    return 0;
}
