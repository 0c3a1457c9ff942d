"""What the tests share: a master on the simulated bus, and a device and a log that record."""

import pytest
import tarvix


class RecordingDevice(tarvix.FTDIMPSSE):
    """Passes every call on to the simulated bus and records it. A method of the same name may be put in its place."""

    def __init__(self):
        super().__init__()
        self.calls = []
        self.bus = tarvix.OpenDevice("sim:")

    def _pass_on(self, name, *arguments):
        self.calls.append((name, *arguments))
        return getattr(self.bus, name)(*arguments)

    def ConfigurePins(self, Levels, Directions):
        return self._pass_on("ConfigurePins", Levels, Directions)

    def SetOption(self, Option):
        return self._pass_on("SetOption", Option)

    def DivisorForFrequency(self, Frequency):
        return self._pass_on("DivisorForFrequency", Frequency)

    def SetClockDivisor(self, Divisor):
        return self._pass_on("SetClockDivisor", Divisor)

    def FrequencyForDivisor(self, Divisor):
        return self._pass_on("FrequencyForDivisor", Divisor)

    def SendSamples(self, Samples, ByteCount, LSBFirst, WriteEdge):
        return self._pass_on("SendSamples", Samples, ByteCount, LSBFirst, WriteEdge)

    def ExchangeSamples(self, Samples, ByteCount, LSBFirst, WriteEdge, ReadEdge):
        return self._pass_on("ExchangeSamples", Samples, ByteCount, LSBFirst, WriteEdge, ReadEdge)

    def Close(self):
        return self._pass_on("Close")


class ListLog(tarvix.icLog):
    """Collects the lines."""

    def __init__(self):
        super().__init__()
        self.lines = []

    def LogEntry(self, LINScript):
        self.lines.append(LINScript)


@pytest.fixture
def device():
    return RecordingDevice()


@pytest.fixture
def log():
    return ListLog()


@pytest.fixture
def master():
    """A master on the simulated bus at 19200 bits per second."""
    with tarvix.clsLIN() as ready:
        ready.Initialize(tarvix.OpenDevice("sim:"))
        ready.BaudrateBd = 19200
        yield ready


@pytest.fixture
def interpreter(master):
    ready = tarvix.clsLINScriptInterpreter()
    ready.Initialize(master)
    return ready
