#include "python/Master.h"
#include "python/Module.h"
#include "tarvix/script/clsLINScriptInterpreter.h"

#include <pybind11/stl.h>

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace Tarvix::Python {

namespace {

using namespace py::literals;

/// An interpreter that keeps its master and its progress handler alive.
class Interpreter final : public clsLINScriptInterpreter, public Guarded {
public:
    /// Each is to be called within a `Turn`.
    void Initialize(Master& LIN);
    void Terminate();

    /// Takes its turns by itself.
    void ExecuteScript(std::u16string_view Script);

    /// The progress handler, or None.
    py::object Handler() const { return Handler_; }
    void SetHandler(std::optional<py::function> Value);

private:
    std::array<py::object*, 2> Held() noexcept override { return {&LIN_, &Handler_}; }
    bool ExecutesWithItsMaster(std::u16string_view Script);

    py::object LIN_ = py::none();
    py::object Handler_ = py::none();
};

// A script ends on Ctrl-C, too, though no Python code runs in between.
void ReportProgress(const py::object& Handler, std::int32_t CodePos)
{
    const py::gil_scoped_acquire Locked;
    if (PyErr_CheckSignals() != 0) {
        throw py::error_already_set();
    }
    if (!Handler.is_none()) {
        Handler(CodePos);
    }
}

void Interpreter::Initialize(Master& LIN)
{
    clsLINScriptInterpreter::Initialize(LIN);
    const py::gil_scoped_acquire Locked;
    LIN_ = py::cast(&LIN, py::return_value_policy::reference); // the object that is there already
}

void Interpreter::Terminate()
{
    clsLINScriptInterpreter::Terminate();
    const py::gil_scoped_acquire Locked;
    LIN_ = py::none();
}

void Interpreter::SetHandler(std::optional<py::function> Value)
{
    Handler_ = Value ? py::object(std::move(*Value)) : py::none();
}

void Interpreter::ExecuteScript(std::u16string_view Script)
{
    while (!ExecutesWithItsMaster(Script)) {
        // another thread has attached another master meanwhile
    }
}

// The run keeps the master and the handler with which it starts, and has both the master and the interpreter alone.
bool Interpreter::ExecutesWithItsMaster(std::u16string_view Script)
{
    const py::object LIN = LIN_;
    auto* const Attached = LIN.is_none() ? nullptr : LIN.cast<Master*>();
    const py::gil_scoped_release Unlocked;
    const Lock MasterAlone = Attached != nullptr ? Attached->Alone() : Lock();
    const Lock Mine = Alone();

    const py::gil_scoped_acquire Locked;
    if (!LIN.is(LIN_)) {
        return false;
    }
    const py::object Handler = Handler_;
    const py::gil_scoped_release UnlockedAgain;
    ExecutionProgress = [&Handler](std::int32_t CodePos) { ReportProgress(Handler, CodePos); };
    clsLINScriptInterpreter::ExecuteScript(Script);
    return true;
}

// A log written in Python.
class PythonLog final : public icLog {
public:
    void LogEntry(std::string_view LINScript) override
    {
        const py::gil_scoped_acquire Locked;
        py::cast(static_cast<icLog*>(this), py::return_value_policy::reference).attr("LogEntry")(LINScript);
    }
};

void RefuseEntry(const icLog& /*Self*/, const py::str& /*LINScript*/)
{
    PyErr_SetString(PyExc_NotImplementedError, "the log has no method LogEntry");
    throw py::error_already_set();
}

} // namespace

void BindLog(py::module_& Module)
{
    py::class_<icLog, PythonLog>(
        Module, "icLog",
        "The operation log of a master: a subclass's LogEntry receives one line of the LIN script language for every "
        "operation that changed the configuration or the bus. The lines, run again as a script, repeat the operations.")
        .def(py::init<>(), "To be called by subclasses.")
        .def("LogEntry", &RefuseEntry, "LINScript"_a,
             "Called inside the operation, after its own work has succeeded, with one whole line, its \";\" and CR LF "
             "included. What it raises reaches the caller of the operation.");
}

void BindInterpreter(py::module_& Module)
{
    py::class_<Interpreter>(
        Module, "clsLINScriptInterpreter",
        "Reads and executes a script in one pass: each command acts on the master as soon as its \";\" has been read. "
        "The first error stops the run and is raised unchanged, be it of the interpreter, of the master, of the device "
        "or of a handler; what ran before stays done.",
        Collectable<Interpreter>())
        .def(py::init<>(), "An interpreter without a master.")
        .def_property("ExecutionProgress", &Interpreter::Handler, &Interpreter::SetHandler,
                      "The progress handler, or None. It is called with a position in the script: with 1 at the start, "
                      "with the position after every line end that is passed, and with the position after the text "
                      "when the last command is done, but not after an error. Positions begin with 1 and count UTF-16 "
                      "code units. What it raises stops the script. A run reports to the handler that is set when it "
                      "starts.")
        .def_property_readonly(
            "CodePos", Reading<Interpreter>(&Interpreter::CodePos),
            "The position of the next UTF-16 code unit to be read, from 1: after a failed run, where "
            "the interpreter stood. 0 before the first run.")
        .def("Initialize", Doing<Interpreter>(&Interpreter::Initialize), "LIN"_a,
             "Attaches the master and keeps it alive; replaces an earlier one.")
        .def(
            "ExecuteScript", &Interpreter::ExecuteScript, "Script"_a,
            "Runs a script. Raises Error with a number of errLINScriptInterpreter, errNotAttached at a command without "
            "a master, errInvalidArgument when called from the progress handler of the same interpreter, and "
            "everything that the master raises.")
        .def("Terminate", Doing<Interpreter>(&Interpreter::Terminate), "Detaches the master, without calling it.");
}

} // namespace Tarvix::Python
