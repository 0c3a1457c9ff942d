"""What Python implements: devices, logs and progress handlers."""

import ctypes

import pytest
import tarvix

SCRIPT = "// \N{MUSICAL SYMBOL G CLEF}\r\nBAUDRATE 19200 BD;\nREAD_FRAME ID (7D) LEN 2 RX (12 34);"


class Odd(BaseException):
    """No Exception, as KeyboardInterrupt is none."""


def raiser(failure):
    def raise_it(*_):
        raise failure

    return raise_it


def test_device_in_python_sees_every_call_and_drives_the_bus(device):
    master = tarvix.clsLIN()
    master.Initialize(Device=device)
    master.BaudrateBd = 19200
    master.BreakWidth = 15
    master.GenerateBreak()
    assert master.ReadFrame(0x7D, 2) and master.Data2 == b"\x12\x34"
    master.Terminate()
    assert [call[0] for call in device.calls] == [
        "ConfigurePins", "SetOption", "DivisorForFrequency", "SetClockDivisor", "FrequencyForDivisor", "SendSamples",
        "ExchangeSamples", "Close",
    ]  # fmt: skip
    assert device.calls[:2] == [("ConfigurePins", 0x03, 0x0B), ("SetOption", 0)]
    assert device.calls[5] == ("SendSamples", bytes(15) + b"\xff", 16, 1, 0)
    assert len(device.calls[6][1]) == device.calls[6][2]


OPERATIONS = {
    "ConfigurePins": lambda master, device: master.Initialize(device),
    "DivisorForFrequency": lambda master, _: setattr(master, "BaudrateBd", 9600),
    "FrequencyForDivisor": lambda master, _: setattr(master, "BaudrateTbit", 1e-4),
    "SendSamples": lambda master, _: master.Wait(8),
    "ExchangeSamples": lambda master, _: master.ReadFrame(0x7D, 2),
    "Close": lambda master, _: master.Terminate(),
}


@pytest.mark.parametrize("name", OPERATIONS)
@pytest.mark.parametrize("failure", [tarvix.Error(7, "Me", "My own"), ZeroDivisionError(), Odd()], ids=repr)
def test_what_a_device_raises_arrives_unchanged(device, name, failure):
    master = tarvix.clsLIN()
    master.Initialize(device)
    master.BaudrateBd = 19200
    setattr(device, name, raiser(failure))
    with pytest.raises(type(failure)) as caught:
        OPERATIONS[name](master, device)
    assert caught.value is failure


@pytest.mark.parametrize(
    "name, answer, error",
    [
        ("DivisorForFrequency", "195", TypeError),
        ("DivisorForFrequency", 2**31, TypeError),
        ("FrequencyForDivisor", None, TypeError),
        ("ExchangeSamples", None, TypeError),
        ("ExchangeSamples", b"", ValueError),
        ("ExchangeSamples", bytes(1000), ValueError),
    ],
)
def test_answers_that_make_no_sense_are_refused(device, name, answer, error):
    master = tarvix.clsLIN()
    master.Initialize(device)
    master.BaudrateBd = 19200
    setattr(device, name, lambda *_: answer)
    with pytest.raises(error, match=name):
        OPERATIONS[name](master, device)


def test_missing_methods_are_named():
    class Incomplete(tarvix.FTDIMPSSE):
        pass

    with pytest.raises(NotImplementedError, match="ConfigurePins"):
        tarvix.clsLIN().Initialize(Incomplete())
    with pytest.raises(NotImplementedError, match="LogEntry"):
        tarvix.icLog().LogEntry("BREAK;")


@pytest.mark.parametrize("count", [-1, 3])
def test_opened_device_refuses_a_count_beyond_its_samples(count):
    device = tarvix.OpenDevice("sim:")
    with pytest.raises(ValueError):
        device.SendSamples(Samples=b"\xff\xff", ByteCount=count, LSBFirst=1, WriteEdge=0)
    with pytest.raises(ValueError):
        device.ExchangeSamples(b"\xff\xff", count, 1, 0, ReadEdge=0)


def test_log_gets_the_script_and_may_read_the_master(master, interpreter, log):
    master.Log = log
    interpreter.ExecuteScript(SCRIPT)
    assert log.lines == ["BAUDRATE 19200 BD;\r\n", "READ_FRAME ID (7D) LEN 2;\r\n"]

    log.LogEntry = lambda line: log.lines.append((line, master.Data2))
    master.WriteFrame(0x20, 1, b"\5")
    assert log.lines[2:] == [("WRITE_FRAME ID (20) LEN 1 TX (05);\r\n", b"\5")]


def test_log_may_use_the_master(master, log):
    def wait_after_breaks(line):
        log.lines.append(line)
        if line == "BREAK;\r\n":
            master.Wait(2)

    log.LogEntry = wait_after_breaks
    master.Log = log
    master.GenerateBreak()
    assert log.lines == ["BREAK;\r\n", "WAIT 2;\r\n"]


def test_what_a_log_raises_arrives_unchanged_through_a_script(master, interpreter, log):
    failure = Odd()
    log.LogEntry = raiser(failure)
    master.Log = log
    with pytest.raises(Odd) as caught:
        interpreter.ExecuteScript(SCRIPT)
    assert caught.value is failure


def test_progress_counts_utf_16_units(interpreter):
    positions = []
    interpreter.ExecutionProgress = positions.append
    interpreter.ExecuteScript(Script=SCRIPT)
    assert positions == [1, 8, 27, 63]
    assert interpreter.CodePos == 63


def test_progress_handler_is_kept_as_it_is_and_must_be_callable(interpreter):
    interpreter.ExecutionProgress = print
    assert interpreter.ExecutionProgress is print
    with pytest.raises(TypeError):
        interpreter.ExecutionProgress = 5
    interpreter.ExecutionProgress = None
    assert interpreter.ExecutionProgress is None


def test_run_reports_to_the_handler_that_it_began_with(interpreter):
    positions = []

    def first(position):
        positions.append(position)
        interpreter.ExecutionProgress = None

    interpreter.ExecutionProgress = first
    interpreter.ExecuteScript("BREAK_WIDTH 13;\n")
    assert positions == [1, 17, 17]


def test_script_within_the_handler_is_refused(interpreter):
    interpreter.ExecutionProgress = lambda _: interpreter.ExecuteScript("BREAK;")
    with pytest.raises(tarvix.Error) as caught:
        interpreter.ExecuteScript(SCRIPT)
    assert caught.value.number == tarvix.errGeneral.errInvalidArgument


def test_interrupt_ends_a_script_between_its_lines(master, interpreter):
    # The handler is no Python code, so that the interrupt is pending while the library goes on.
    interpreter.ExecutionProgress = ctypes.pythonapi.PyErr_SetInterrupt
    with pytest.raises(KeyboardInterrupt):
        interpreter.ExecuteScript("BREAK_WIDTH 14;\nBREAK_WIDTH 15;\n")
    assert master.BreakWidth == 14


@pytest.mark.parametrize(
    "script, number, position",
    [
        ("BREAK;\nFOO;", tarvix.errLINScriptInterpreter.errTokenType, 11),
        ("BREAK;;\n", tarvix.errLINScriptInterpreter.errEmptyCommand, 8),
        ("READ_FRAME ID (C1) LEN 2;", tarvix.errLINScriptInterpreter.errNoResponse, 26),
    ],
)
def test_script_errors_tell_where_the_interpreter_stood(interpreter, script, number, position):
    with pytest.raises(tarvix.Error) as caught:
        interpreter.ExecuteScript(script)
    assert (caught.value.number, caught.value.source) == (number, "clsLINScriptInterpreter")
    assert interpreter.CodePos == position
