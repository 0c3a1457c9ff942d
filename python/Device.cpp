#include "pellumo/OpenDevice.h"
#include "python/Conversions.h"
#include "python/Module.h"
#include "python/PythonDevice.h"

#include <memory>
#include <string_view>
#include <vector>

namespace Tarvix::Python {

namespace {

using OthersRun = py::call_guard<py::gil_scoped_release>;
using namespace py::literals;

void SendSamples(FTDIMPSSE& Device, std::span<const std::uint8_t> Samples, std::int32_t ByteCount,
                 std::int32_t LSBFirst, std::int32_t WriteEdge)
{
    Device.SendSamples(Clocked(Samples, ByteCount), ByteCount, LSBFirst, WriteEdge);
}

py::bytes ExchangeSamples(FTDIMPSSE& Device, std::span<const std::uint8_t> Samples, std::int32_t ByteCount,
                          std::int32_t LSBFirst, std::int32_t WriteEdge, std::int32_t ReadEdge)
{
    const auto Sent = Clocked(Samples, ByteCount);
    std::vector<std::uint8_t> Levels(Sent.begin(), Sent.end());
    {
        const py::gil_scoped_release Unlocked;
        Device.ExchangeSamples(Levels, ByteCount, LSBFirst, WriteEdge, ReadEdge);
    }
    return BytesFrom(Levels);
}

constexpr const char* DeviceDescription =
    R"(A chip that clocks samples out to a LIN transceiver and samples the bus back.

OpenDevice opens one; a device of your own is a subclass with all eight methods (its __init__ calls
super().__init__()). What they raise reaches the caller of the master as it was raised. A device serves one master,
and does not call the master that it serves.

A sample is one bit of bytes: sample n is bit n % 8 of byte n // 8, least significant bit first; 1 is recessive (high),
0 dominant (low). One sample takes one period of the sample clock, and there are 8 samples to a bit of the bus.)";

constexpr const char* OpenDeviceDescription =
    R"(Opens a device, ready for clsLIN.Initialize.

sim:                                       the simulated bus with the built-in example nodes
sim:FILE.toml                              a simulated bus described in a file
ftdi:///1                                  the first chip found on USB, its first interface
ftdi://VENDOR:PRODUCT[:SERIAL]/INTERFACE   one chip; what is left out matches every chip

Raises Error with a number of errPellumo; the description tells what was tried and what you can do.)";

} // namespace

void BindDevice(py::module_& Module)
{
    py::class_<FTDIMPSSE, PythonDevice>(Module, "FTDIMPSSE", DeviceDescription)
        .def(py::init<>(), "To be called by subclasses.")
        .def("ConfigurePins", &FTDIMPSSE::ConfigurePins, "Levels"_a, "Directions"_a, OthersRun(),
             "Sets the pins of the engine's low byte: one bit a pin, 1 is high in Levels and an output in Directions. "
             "The master calls it once when the device is attached.")
        .def("SetOption", &FTDIMPSSE::SetOption, "Option"_a, OthersRun(),
             "Sets the engine's mode. The master passes 0, the plain mode, right after ConfigurePins.")
        .def("DivisorForFrequency", &FTDIMPSSE::DivisorForFrequency, "Frequency"_a, OthersRun(),
             "The divisor whose clock comes nearest to Frequency, in Hz; changes nothing.")
        .def("SetClockDivisor", &FTDIMPSSE::SetClockDivisor, "Divisor"_a, OthersRun(),
             "From now on there is one sample per period of the clock that Divisor gives.")
        .def("FrequencyForDivisor", &FTDIMPSSE::FrequencyForDivisor, "Divisor"_a, OthersRun(),
             "The sample clock in Hz that Divisor really gives; greater than 0.")
        .def("SendSamples", &SendSamples, "Samples"_a, "ByteCount"_a, "LSBFirst"_a, "WriteEdge"_a, OthersRun(),
             "Drives the first ByteCount * 8 samples on the bus. The master passes LSBFirst 1 (sample 0 of a byte goes "
             "first) and WriteEdge 0 (a sample is put out on the rising clock edge), and Samples of ByteCount bytes.")
        .def("ExchangeSamples", &ExchangeSamples, "Samples"_a, "ByteCount"_a, "LSBFirst"_a, "WriteEdge"_a, "ReadEdge"_a,
             "As SendSamples, and reads the bus level once per sample: returns ByteCount bytes, what was read at the "
             "same indexes. The master passes ReadEdge 0: a sample is read half a clock period after it was put out.")
        .def("Close", &FTDIMPSSE::Close, OthersRun(),
             "Ends the use of the device: everything queued has left the pins and the bus is recessive. "
             "clsLIN.Terminate calls it.");

    Module.def("OpenDevice", &Pellumo::OpenDevice, "URL"_a, OthersRun(), OpenDeviceDescription);
}

} // namespace Tarvix::Python
