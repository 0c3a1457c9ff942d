/// @file
/// Python values as the library's arguments, and back. Every binding of a function that takes or returns bytes or a
/// `Variant` includes this header.
#pragma once

#include "tarvix/common/Variant.h"

#include <pybind11/pybind11.h>
#include <pybind11/stl.h> // IWYU pragma: export

#include <cstdint>
#include <span>

namespace Tarvix::Python {

namespace py = pybind11;

/// A copy as Python's `bytes`.
py::bytes BytesFrom(std::span<const std::uint8_t> Bytes);

/// The variant that Python's None, int, float, str, bytes, or a sequence of such values stands for.
/// @throws py::type_error         for any other value, bool among them
/// @throws py::error_already_set  OverflowError for an int of more than 64 bits, RecursionError for a list in itself
Variant VariantFrom(py::handle Value);

/// The bytes of an array of bytes, the only variant that the library hands out.
py::bytes BytesFrom(const Variant& Value);

} // namespace Tarvix::Python

namespace pybind11::detail {

/// Whatever Python's `bytes()` takes: a bytes-like object or numbers 0 to 255.
template <>
class type_caster<std::span<const std::uint8_t>> {
public:
    PYBIND11_TYPE_CASTER(std::span<const std::uint8_t>, const_name("bytes"));

    bool load(handle Source, bool /*Convert*/);
    static handle cast(std::span<const std::uint8_t> Bytes, return_value_policy /*Policy*/, handle /*Parent*/)
    {
        return Tarvix::Python::BytesFrom(Bytes).release();
    }

private:
    object Bytes_; // what `value` looks at
};

template <>
class type_caster<Tarvix::Variant> {
public:
    PYBIND11_TYPE_CASTER(Tarvix::Variant, const_name("object"));

    bool load(handle Source, bool /*Convert*/)
    {
        value = Tarvix::Python::VariantFrom(Source);
        return true;
    }
    static handle cast(const Tarvix::Variant& Value, return_value_policy /*Policy*/, handle /*Parent*/)
    {
        return Tarvix::Python::BytesFrom(Value).release();
    }
};

} // namespace pybind11::detail
