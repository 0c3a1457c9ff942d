#include "python/Module.h"
#include "tarvix/common/Error.h"

#include <exception>
#include <utility>

namespace Tarvix::Python {

namespace py = pybind11;

namespace {

void RaiseInPython(const Error& Failure)
{
    const py::object Type = py::module_::import("tarvix._errors").attr("Error");
    PyErr_SetObject(Type.ptr(), Type(Failure.Number(), Failure.Source(), Failure.Description()).ptr());
}

} // namespace

void BindErrors()
{
    py::register_local_exception_translator([](std::exception_ptr Thrown) {
        try {
            std::rethrow_exception(std::move(Thrown));
        } catch (const Error& Failure) {
            RaiseInPython(Failure);
        }
    });
}

} // namespace Tarvix::Python
