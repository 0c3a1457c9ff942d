/// @file
/// How a C++ object reaches the methods of the Python subclass that stands behind it.
#pragma once

#include <pybind11/pybind11.h>

namespace Tarvix::Python {

namespace py = pybind11;

/// The method of that name of `Object`'s Python subclass.
/// @throws py::error_already_set  NotImplementedError when the subclass has none
template <typename Base>
py::function MethodOf(const Base& Object, const char* Name)
{
    py::function Found = py::get_override(&Object, Name);
    if (!Found) {
        PyErr_Format(PyExc_NotImplementedError, "the subclass has no method %s", Name);
        throw py::error_already_set();
    }
    return Found;
}

} // namespace Tarvix::Python
