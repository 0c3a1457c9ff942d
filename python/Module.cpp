#include "python/Module.h"

#include "tarvix/master/Process.h"

namespace {

namespace py = pybind11;

void BindProcess(py::module_& Module)
{
    using Tarvix::Process;
    py::class_<Process>(Module, "Process", "Tells which version of the library is loaded.")
        .def(py::init<>(), "The library that is loaded.")
        .def_property_readonly("Major", &Process::Major,
                               "Changes when programs written for the earlier version no longer work.")
        .def_property_readonly("Minor", &Process::Minor, "Changes when something is added.")
        .def_property_readonly("Revision", &Process::Revision, "Changes when something is mended.");
}

} // namespace

PYBIND11_MODULE(_tarvix, Module)
{
    using namespace Tarvix::Python;
    // What is bound names the module in which users find it.
    const py::object Name = Module.attr("__name__");
    Module.attr("__name__") = "tarvix";
    BindErrors();
    BindEnumerations(Module);
    BindProcess(Module);
    BindDevice(Module);
    BindLog(Module);
    BindMaster(Module);
    BindInterpreter(Module);
    Module.attr("__name__") = Name;
}
