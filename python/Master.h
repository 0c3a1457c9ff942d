/// @file
/// The master as a Python object.
#pragma once

#include "python/Guarded.h"
#include "tarvix/master/clsLIN.h"

namespace Tarvix::Python {

/// A master that keeps its device and its log alive.
class Master final : public clsLIN, public Guarded {
public:
    /// Each is to be called within a `Turn`.
    void Initialize(FTDIMPSSE& Device);
    void Log(icLog* Value);
    void Terminate();

    /// The attached log as a Python object, or None.
    py::object LogObject() const { return Log_; }

private:
    std::array<py::object*, 2> Held() noexcept override { return {&Device_, &Log_}; }

    py::object Device_ = py::none();
    py::object Log_ = py::none();
};

} // namespace Tarvix::Python
