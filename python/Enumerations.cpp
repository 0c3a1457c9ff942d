#include "pellumo/errPellumo.h"
#include "python/Module.h"
#include "tarvix/common/Error.h"
#include "tarvix/common/eLINChecksumMode.h"
#include "tarvix/signalling/eBit.h"

#include <cstdint>
#include <initializer_list>
#include <string>

namespace Tarvix::Python {

namespace py = pybind11;

namespace {

struct Member {
    template <typename Enum>
    Member(const char* TheName, Enum TheValue, const char* TheMeaning)
        : Name(TheName), Value(static_cast<std::int32_t>(TheValue)), Meaning(TheMeaning)
    {
    }

    const char* Name;
    std::int32_t Value;
    const char* Meaning;
};

// A subclass of Python's IntEnum: its members are the numbers that errors and properties have.
void AddEnumeration(py::module_& Module, const char* Name, std::string Description,
                    std::initializer_list<Member> Members)
{
    py::dict Values;
    Description.append("\n");
    for (const Member& One : Members) {
        Values[One.Name] = One.Value;
        Description.append("\n").append(One.Name).append(": ").append(One.Meaning);
    }
    const py::object IntEnum = py::module_::import("enum").attr("IntEnum");
    py::object Enumeration = IntEnum(Name, Values, py::arg("module") = Module.attr("__name__"));
    Enumeration.attr("__doc__") = Description;
    Module.attr(Name) = Enumeration;
}

void AddBusEnumerations(py::module_& Module)
{
    AddEnumeration(Module, "eLINChecksumMode", "Which bytes a frame's checksum covers.",
                   {{"elcLIN13", elcLIN13, "classic: the data bytes alone (LIN 1.3)"},
                    {"elcLIN20", elcLIN20, "enhanced: the protected identifier and the data bytes (LIN 2.0)"}});
    AddEnumeration(Module, "eBit", "A bus level, as a sample or as a bit.",
                   {{"eb0", eb0, "dominant, low"}, {"eb1", eb1, "recessive, high"}});
}

void AddMasterErrors(py::module_& Module)
{
    using enum errLIN;
    AddEnumeration(Module, "errLIN", "Numbers of the errors raised by clsLIN.",
                   {{"_errLIN", _errLIN, "base of the block, never raised"},
                    {"errParameter", errParameter, "invalid parameter, invalid number of data bytes"},
                    {"errNoData", errNoData, "no data available"},
                    {"errDataLength", errDataLength, "data length mismatch"},
                    {"errChksum", errChksum, "wrong checksum in a slave's answer"},
                    {"errResponseLength", errResponseLength, "unexpected length of a slave's answer"}});
}

void AddInterpreterErrors(py::module_& Module)
{
    using enum errLINScriptInterpreter;
    AddEnumeration(Module, "errLINScriptInterpreter", "Numbers of the errors raised by clsLINScriptInterpreter.",
                   {{"_errLINScriptInterpreter", _errLINScriptInterpreter, "base of the block, never raised"},
                    {"errLexical", errLexical, "syntax error"},
                    {"errEmptyCommand", errEmptyCommand, "a command without a word"},
                    {"errTokenType", errTokenType, "a token of another type than expected"},
                    {"errTokenValue", errTokenValue, "no such keyword or symbolic constant"},
                    {"errByte", errByte, "not one byte"},
                    {"errCommandSyntax", errCommandSyntax, "a command's parts do not fit together"},
                    {"errDataLength", errDataLength, "as many bytes as LEN says are not there"},
                    {"errRxDataCheck", errRxDataCheck, "the answer is not the one that the script expects"},
                    {"errNoResponse", errNoResponse, "no slave answered"}});
}

void AddGeneralErrors(py::module_& Module)
{
    using enum errGeneral;
    AddEnumeration(Module, "errGeneral", "Numbers of the errors that every class raises, with the source \"Tarvix\".",
                   {{"errInvalidArgument", errInvalidArgument, "invalid argument"},
                    {"errOverflow", errOverflow, "a value does not fit its target type"},
                    {"errIndexOutOfRange", errIndexOutOfRange, "an array lacks an element that is read"},
                    {"errDivisionByZero", errDivisionByZero, "division by zero"},
                    {"errTypeMismatch", errTypeMismatch, "not a number, or no array, where one is needed"},
                    {"errNotAttached", errNotAttached, "a device or a master is needed and none is attached"}});
}

void AddDeviceErrors(py::module_& Module)
{
    using enum Pellumo::errPellumo;
    AddEnumeration(Module, "errPellumo", "Numbers of the errors raised by opened devices and by OpenDevice.",
                   {{"_errPellumo", _errPellumo, "base of the block, never raised"},
                    {"errURL", errURL, "the text names no device"},
                    {"errNotFound", errNotFound, "no such chip on USB, or no such interface on it"},
                    {"errPermission", errPermission, "the user may not open the chip"},
                    {"errBusy", errBusy, "another program holds the chip"},
                    {"errDriver", errDriver, "a kernel driver holds the chip and cannot be detached"},
                    {"errWrongChip", errWrongChip, "the chip has no MPSSE engine, or not on that interface"},
                    {"errNoEngine", errNoEngine, "the MPSSE engine does not answer as one"},
                    {"errUnplugged", errUnplugged, "the chip went away"},
                    {"errStalled", errStalled, "the chip refused a transfer"},
                    {"errTimeout", errTimeout, "the chip did not finish in the time that the clocked bits take"},
                    {"errShortAnswer", errShortAnswer, "the chip answered with fewer bytes than were clocked"},
                    {"errUSB", errUSB, "any other failure of the USB system"},
                    {"errUnsupported", errUnsupported, "a clocking mode that the device does not have"},
                    {"errFrequency", errFrequency, "no divisor gives the frequency"},
                    {"errDivisor", errDivisor, "a divisor outside the chip's range"},
                    {"errClosed", errClosed, "the device has been closed"},
                    {"errBusFile", errBusFile, "the bus file is unreadable or its contents are wrong"},
                    {"errNoUSBSupport", errNoUSBSupport, "the library was built without USB"}});
}

} // namespace

void BindEnumerations(py::module_& Module)
{
    AddBusEnumerations(Module);
    AddMasterErrors(Module);
    AddInterpreterErrors(Module);
    AddGeneralErrors(Module);
    AddDeviceErrors(Module);
}

} // namespace Tarvix::Python
