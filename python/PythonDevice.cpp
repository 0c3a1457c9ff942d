#include "python/PythonDevice.h"

#include "python/Conversions.h"

#include <algorithm>
#include <string>

namespace Tarvix::Python {

void PythonDevice::ConfigurePins(std::uint8_t Levels, std::uint8_t Directions)
{
    const py::gil_scoped_acquire Locked;
    Method("ConfigurePins")(Levels, Directions);
}

void PythonDevice::SetOption(std::int32_t Option)
{
    const py::gil_scoped_acquire Locked;
    Method("SetOption")(Option);
}

std::int32_t PythonDevice::DivisorForFrequency(double Frequency)
{
    const py::gil_scoped_acquire Locked;
    return Ask<std::int32_t>("DivisorForFrequency", py::float_(Frequency));
}

void PythonDevice::SetClockDivisor(std::int32_t Divisor)
{
    const py::gil_scoped_acquire Locked;
    Method("SetClockDivisor")(Divisor);
}

double PythonDevice::FrequencyForDivisor(std::int32_t Divisor)
{
    const py::gil_scoped_acquire Locked;
    return Ask<double>("FrequencyForDivisor", py::int_(Divisor));
}

void PythonDevice::SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                               std::int32_t WriteEdge)
{
    const py::gil_scoped_acquire Locked;
    Method("SendSamples")(BytesFrom(Clocked(Samples, ByteCount)), ByteCount, LSBFirst, WriteEdge);
}

void PythonDevice::ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                                   std::int32_t WriteEdge, std::int32_t ReadEdge)
{
    const py::gil_scoped_acquire Locked;
    const std::span<std::uint8_t> Target = Clocked(Samples, ByteCount);
    const py::object Answer = Method("ExchangeSamples")(BytesFrom(Target), ByteCount, LSBFirst, WriteEdge, ReadEdge);
    py::detail::make_caster<std::span<const std::uint8_t>> Read;
    if (!Read.load(Answer, true)) {
        throw py::type_error("ExchangeSamples must return bytes");
    }
    const std::span<const std::uint8_t> Levels = Read;
    if (Levels.size() != Target.size()) {
        throw py::value_error("ExchangeSamples must return as many bytes as it was given");
    }
    std::ranges::copy(Levels, Target.begin());
}

void PythonDevice::Close()
{
    const py::gil_scoped_acquire Locked;
    Method("Close")();
}

py::function PythonDevice::Method(const char* Name) const
{
    py::function Found = py::get_override(static_cast<const FTDIMPSSE*>(this), Name);
    if (!Found) {
        PyErr_SetString(PyExc_NotImplementedError, std::string("the device has no method ").append(Name).c_str());
        throw py::error_already_set();
    }
    return Found;
}

template <typename Result>
Result PythonDevice::Ask(const char* Name, const py::object& Value) const
{
    const py::object Answer = Method(Name)(Value);
    try {
        return Answer.cast<Result>();
    } catch (const py::cast_error&) {
        throw py::type_error(std::string(Name).append(" must return a number"));
    }
}

} // namespace Tarvix::Python
