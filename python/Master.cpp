#include "python/Master.h"

#include "python/Conversions.h"
#include "python/Module.h"

#include <utility>

namespace Tarvix::Python {

namespace {

template <typename T>
py::object ObjectOf(T* Value)
{
    return py::cast(Value, py::return_value_policy::reference); // the object that is there already
}

} // namespace

// The device is held before its set-up, which calls it, and stays attached when that fails.
void Master::Initialize(FTDIMPSSE& Device)
{
    const py::gil_scoped_acquire Locked;
    const py::object Earlier = std::exchange(Device_, ObjectOf(&Device));
    const py::gil_scoped_release Unlocked;
    clsLIN::Initialize(Device);
}

void Master::Log(icLog* Value)
{
    clsLIN::Log(Value);
    const py::gil_scoped_acquire Locked;
    Log_ = ObjectOf(Value);
}

void Master::Terminate()
{
    clsLIN::Terminate();
    const py::gil_scoped_acquire Locked;
    LetGo();
}

namespace {

using namespace py::literals;
using MasterClass = py::class_<Master>;

constexpr const char* MasterDescription =
    R"(The commander (master) of one LIN bus.

with clsLIN() as Master:
    Master.Initialize(OpenDevice("sim:"))
    Master.BaudrateBd = 19200
    if Master.ReadFrame(clsLIN.ComputeIDParity(0x3D), 2):
        print(Master.Data2.hex(" "))

A new one has a break of 13 bit times, sync byte 0x55, the enhanced checksum, no log, no frame data and no bit rate: set
one before the first bus operation. What needs the device before Initialize, or anything of the bus after Terminate,
raises Error with errGeneral.errNotAttached.

With a log attached, every operation that changes the configuration or the bus also delivers one script line to it,
after its own work has succeeded. What the device and the log raise reaches the caller as it was raised.

Other threads run while an operation does; one that uses the same master waits until it is done.)";

void BindConfiguration(MasterClass& Class)
{
    Class
        .def_property("Log", &Master::LogObject, Doing<Master>(&Master::Log),
                      "The attached icLog object, or None: no log. Setting it writes no line.")
        .def_property("BaudrateTbit", Reading<Master>(&clsLIN::BaudrateTbit), Doing<Master>(&clsLIN::BaudrateTbit),
                      "Seconds per bit, as the device really achieves them; 0 before a bit rate was set. "
                      "Setting 0 raises errDivisionByZero.")
        .def_property("BaudrateBd", Reading<Master>(&clsLIN::BaudrateBd), Doing<Master>(&clsLIN::BaudrateBd),
                      "Bits per second, as the device really achieves them, rounded. "
                      "Reading it before a bit rate was set, or setting 0, raises errDivisionByZero.")
        .def_property("BreakWidth", Reading<Master>(&clsLIN::BreakWidth), Doing<Master>(&clsLIN::BreakWidth),
                      "Break width in bit times, rounded to eighths. What is not above 0 raises errParameter, and the "
                      "old width stays.")
        .def_property("SyncByte", Reading<Master>(&clsLIN::SyncByte), Doing<Master>(&clsLIN::SyncByte),
                      "The sync field that follows the break of a frame. Slaves expect 0x55; any other value is for "
                      "testing them.")
        .def_property("ChecksumMode", Reading<Master>(&clsLIN::ChecksumMode), Doing<Master>(&clsLIN::ChecksumMode),
                      "The checksum model, an eLINChecksumMode. Anything else raises errParameter, and the old one "
                      "stays.");
}

py::bytes Data(Master& Self)
{
    return BytesFrom(Reading<Master>(&clsLIN::Data)(Self));
}

void BindLastFrame(MasterClass& Class)
{
    Class
        .def_property_readonly("ID", Reading<Master>(&clsLIN::ID),
                               "Identifier byte of the last frame operation, as it went on the bus; readable after a "
                               "read without an answer, too. Otherwise raises errNoData.")
        .def_property_readonly("DataLength", Reading<Master>(&clsLIN::DataLength),
                               "Data bytes of the last frame, the checksum not counted. Raises errNoData without one.")
        .def_property_readonly("Data", &Data,
                               "The frame buffer, 9 bytes: DataLength data bytes, the checksum, and whatever earlier "
                               "frames left behind that. Raises errNoData without a frame.")
        .def_property_readonly("Checksum", Reading<Master>(&clsLIN::Checksum),
                               "Checksum of the last frame as it was on the bus: its last byte. Raises errNoData "
                               "without a frame.")
        .def_property_readonly("Data2", Reading<Master>(&clsLIN::Data2),
                               "The data bytes of the last frame and nothing else. Raises errNoData without a frame.")
        .def("CheckChksum", Reading<Master>(&clsLIN::CheckChksum), "ExpectedChecksum"_a, "ChecksumMask"_a,
             "True when the last frame's checksum equals the expected one in every bit that is 1 in the mask. Raises "
             "errNoData without a frame.")
        .def("CheckData", Reading<Master>(&clsLIN::CheckData), "ExpectedDataLength"_a, "ExpectedData"_a, "DataMask"_a,
             "True when each data byte of the last frame equals the expected one in every bit that is 1 in its mask "
             "byte. Raises errNoData without a frame, errDataLength when the last frame has another length, "
             "errIndexOutOfRange when data or mask are shorter than the frame.")
        .def("CheckData2", Reading<Master>(&clsLIN::CheckData2), "ExpectedDataLength"_a, "ExpectedData2"_a,
             "DataMask2"_a,
             "As CheckData, with sequences of numbers 0 to 255; a number may be an int, a float or text. Raises "
             "errTypeMismatch, errIndexOutOfRange or errOverflow for other values before anything else.");
}

void BindBusOperations(MasterClass& Class)
{
    Class
        .def("Wait", Doing<Master>(&clsLIN::Wait), "Tbits"_a,
             "Keeps the bus recessive for so many bit times. A negative count raises errInvalidArgument.")
        .def("GenerateBreak", Doing<Master>(&clsLIN::GenerateBreak),
             "Puts a break of the configured width and its delimiter on the bus.")
        .def("WriteFrame", Doing<Master>(&clsLIN::WriteFrame), "IDbyte"_a, "DataLength"_a, "TxData"_a,
             "Chksum"_a = py::none(),
             "Sends a frame of 1 to 8 data bytes and proves by reading back that the bus carried it. IDbyte goes on "
             "the bus as it is: ComputeIDParity makes a protected identifier. Chksum is sent in place of the computed "
             "checksum. Raises errParameter, errIndexOutOfRange, errTypeMismatch or errOverflow before anything is "
             "sent; afterwards, with the source \"clsLINViaFTDIMPSSE\" or \"clsOversamplingBuffer\", when the bus did "
             "not carry what was sent.")
        .def("WriteFrame2", Doing<Master>(&clsLIN::WriteFrame2), "IDbyte"_a, "DataLength"_a, "TxData2"_a,
             "Chksum"_a = py::none(),
             "As WriteFrame, with a sequence of numbers 0 to 255; a number may be an int, a float or text.")
        .def("ReadFrame", Doing<Master>(&clsLIN::ReadFrame), "IDbyte"_a, "ExpectedLength"_a, "ChksumCheck"_a = true,
             "Sends a header and reads the answer of a slave: True when one came, False when none did. Its bytes are "
             "readable, also when the operation raises errResponseLength or, with ChksumCheck, errChksum; after a "
             "failure of the exchange itself there is no frame data.");
}

void Exit(Master& Self, const py::object& /*Type*/, const py::object& /*Value*/, const py::object& /*Traceback*/)
{
    Doing<Master> (&Master::Terminate)(Self);
}

void BindLifetime(MasterClass& Class)
{
    Class.def(py::init<>(), "A master without a device.")
        .def("Initialize", Doing<Master>(&Master::Initialize), "Device"_a,
             "Attaches the device, sets up its pins and mode, and keeps it alive until Terminate. May be called again "
             "with another device.")
        .def("Terminate", Doing<Master>(&Master::Terminate),
             "Ends the use of the bus: closes the device, drops it and the log. The configuration and the last frame "
             "stay readable. A second call does nothing. When closing fails, device and log stay attached, so that it "
             "can be called again.")
        .def(
            "__enter__", [](py::object Self) { return Self; }, "The master itself.")
        .def("__exit__", &Exit, "Type"_a, "Value"_a, "Traceback"_a, "Calls Terminate.");
}

} // namespace

void BindMaster(py::module_& Module)
{
    MasterClass Class(Module, "clsLIN", MasterDescription, Collectable<Master>());
    BindLifetime(Class);
    BindConfiguration(Class);
    BindLastFrame(Class);
    BindBusOperations(Class);
    Class.def_static("ComputeIDParity", &clsLIN::ComputeIDParity, "ID"_a,
                     "The protected identifier of ID: bits 0 to 5 kept, the parity bits P0 and P1 in bits 6 and 7.");
}

} // namespace Tarvix::Python
