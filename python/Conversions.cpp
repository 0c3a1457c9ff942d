#include "python/Conversions.h"

#include <string>
#include <vector>

namespace Tarvix::Python {

namespace {

// Nested arrays are nested calls: Python's own limit keeps a list that contains itself from using up the stack.
class NestedCall {
public:
    NestedCall()
    {
        if (Py_EnterRecursiveCall(" while reading an array") != 0) {
            throw py::error_already_set();
        }
    }
    ~NestedCall() { Py_LeaveRecursiveCall(); }
    NestedCall(const NestedCall&) = delete;
    NestedCall& operator=(const NestedCall&) = delete;
};

std::span<const std::uint8_t> ViewOf(py::handle Bytes)
{
    const auto Text = Bytes.cast<std::string_view>();
    return {reinterpret_cast<const std::uint8_t*>(Text.data()), Text.size()}; // NOLINT(*-reinterpret-cast): its bytes
}

Variant WholeNumberFrom(py::handle Value)
{
    const auto Number = py::reinterpret_steal<py::object>(PyNumber_Index(Value.ptr()));
    if (!Number) {
        throw py::error_already_set();
    }
    int Overflow = 0;
    const long long Signed = PyLong_AsLongLongAndOverflow(Number.ptr(), &Overflow);
    if (Overflow == 0) {
        return Signed;
    }
    const unsigned long long Unsigned = PyLong_AsUnsignedLongLong(Number.ptr());
    if (PyErr_Occurred() != nullptr) {
        throw py::error_already_set();
    }
    return Unsigned;
}

Variant ArrayFrom(py::handle Value)
{
    const NestedCall Nested;
    Variant::Array Elements;
    for (const py::handle Element : Value) {
        Elements.push_back(VariantFrom(Element));
    }
    return Elements;
}

} // namespace

py::bytes BytesFrom(std::span<const std::uint8_t> Bytes)
{
    return {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()}; // NOLINT(*-reinterpret-cast): its bytes
}

Variant VariantFrom(py::handle Value)
{
    if (Value.is_none()) {
        return {};
    }
    if (PyIndex_Check(Value.ptr()) != 0 && !py::isinstance<py::bool_>(Value)) {
        return WholeNumberFrom(Value);
    }
    if (py::isinstance<py::float_>(Value)) {
        return Value.cast<double>();
    }
    if (py::isinstance<py::str>(Value)) {
        return std::string(py::reinterpret_borrow<py::str>(Value));
    }
    if (py::isinstance<py::bytes>(Value)) {
        return Variant::FromBytes(ViewOf(Value));
    }
    if (py::isinstance<py::sequence>(Value)) {
        return ArrayFrom(Value);
    }
    throw py::type_error(std::string(Py_TYPE(Value.ptr())->tp_name)
                             .append(" is neither None nor an int, float, str, bytes or sequence of these"));
}

py::bytes BytesFrom(const Variant& Value)
{
    std::vector<std::uint8_t> Bytes;
    for (const Variant& Element : Value.Elements()) {
        Bytes.push_back(Element.ToByte());
    }
    return BytesFrom(Bytes);
}

} // namespace Tarvix::Python

namespace pybind11::detail {

bool type_caster<std::span<const std::uint8_t>>::load(handle Source, bool /*Convert*/)
{
    Bytes_ = reinterpret_steal<object>(PyBytes_FromObject(Source.ptr()));
    if (Bytes_) {
        value = Tarvix::Python::ViewOf(Bytes_);
        return true;
    }
    if (PyErr_ExceptionMatches(PyExc_TypeError) == 0) {
        throw error_already_set();
    }
    PyErr_Clear();
    return false;
}

} // namespace pybind11::detail
