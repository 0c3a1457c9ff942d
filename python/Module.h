/// @file
/// The chapters of the module; each adds its classes and functions.
#pragma once

#include <pybind11/pybind11.h>

namespace Tarvix::Python {

/// Makes the library's errors Python's `tarvix.Error`.
void BindErrors();
/// `eLINChecksumMode`, `eBit` and the error numbers.
void BindEnumerations(pybind11::module_& Module);
/// `FTDIMPSSE` and `OpenDevice`.
void BindDevice(pybind11::module_& Module);
/// `clsLIN` and `Process`; after the device and the log.
void BindMaster(pybind11::module_& Module);
/// `icLog`.
void BindLog(pybind11::module_& Module);
/// `clsLINScriptInterpreter`; after the master.
void BindInterpreter(pybind11::module_& Module);

} // namespace Tarvix::Python
