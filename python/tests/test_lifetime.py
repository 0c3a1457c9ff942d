"""Who keeps whom alive, and threads."""

import gc
import sys
import threading
import weakref

import pytest
import tarvix
from conftest import ListLog, RecordingDevice

SCRIPT = "BAUDRATE 19200 BD;\n" + "READ_FRAME ID (7D) LEN 2 RX (12 34);\n" * 200


def test_master_keeps_its_device_and_log_until_it_is_terminated():
    master = tarvix.clsLIN()
    master.Initialize(RecordingDevice())
    master.Log = ListLog()
    log = weakref.ref(master.Log)
    master.BaudrateBd = 19200
    assert master.ReadFrame(0x7D, 2)
    assert log().lines[-1] == "READ_FRAME ID (7D) LEN 2;\r\n"
    master.Terminate()
    assert log() is None and master.Log is None


def test_interpreter_keeps_its_master_until_it_is_terminated():
    interpreter, master = tarvix.clsLINScriptInterpreter(), tarvix.clsLIN()
    kept = weakref.ref(master)
    interpreter.Initialize(LIN=master)
    del master
    interpreter.ExecuteScript("BREAK_WIDTH 14;")
    assert kept().BreakWidth == 14
    interpreter.Terminate()
    assert kept() is None


def test_script_keeps_the_master_with_which_it_began():
    interpreter, others = tarvix.clsLINScriptInterpreter(), [tarvix.clsLIN(), tarvix.clsLIN()]
    began_with = weakref.ref(others[0])
    alive = []

    def exchange_master(_):
        interpreter.Initialize(others[-1])
        alive.append(began_with() is not None)

    interpreter.Initialize(others.pop(0))
    interpreter.ExecutionProgress = exchange_master
    interpreter.ExecuteScript("BREAK_WIDTH 14;")
    assert alive == [True, True] and began_with() is None and others[0].BreakWidth == 14


def test_what_is_replaced_is_let_go():
    master, interpreter = tarvix.clsLIN(), tarvix.clsLINScriptInterpreter()
    device, log, handler = RecordingDevice(), ListLog(), lambda _: None
    replaced = [weakref.ref(device), weakref.ref(log), weakref.ref(handler)]
    master.Initialize(device)
    master.Log = log
    interpreter.ExecutionProgress = handler
    del device, log, handler
    assert None not in [reference() for reference in replaced]

    master.Initialize(tarvix.OpenDevice("sim:"))
    master.Log = None
    interpreter.ExecutionProgress = None
    assert [reference() for reference in replaced] == [None] * 3


def test_device_whose_set_up_fails_stays_attached():
    device = RecordingDevice()
    device.SetOption = lambda _: 1 // 0
    master = tarvix.clsLIN()
    with pytest.raises(ZeroDivisionError):
        master.Initialize(device)
    kept = weakref.ref(device)
    del device
    assert kept() is not None
    master.Terminate()
    assert kept() is None


def test_cycles_are_collected():
    class Everything(ListLog):
        def __init__(self):
            super().__init__()
            self.master, self.interpreter = tarvix.clsLIN(), tarvix.clsLINScriptInterpreter()
            self.master.Initialize(tarvix.OpenDevice("sim:"))
            self.master.Log = self
            self.interpreter.Initialize(self.master)
            self.interpreter.ExecutionProgress = self.LogEntry

    gone = weakref.ref(Everything())
    gc.collect()
    assert gone() is None


def test_two_threads_run_two_masters():
    def run(log, done):
        with tarvix.clsLIN() as master:
            master.Initialize(RecordingDevice())
            master.Log = log
            interpreter = tarvix.clsLINScriptInterpreter()
            interpreter.Initialize(master)
            interpreter.ExecuteScript(SCRIPT)
        done.append(threading.current_thread())

    logs, done = [ListLog(), ListLog()], []
    threads = [threading.Thread(target=run, args=(log, done)) for log in logs]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(done) == 2 and logs[0].lines == logs[1].lines and len(logs[0].lines) == 201


@pytest.fixture
def no_forced_switches():
    """A thread runs until it waits for something."""
    interval = sys.getswitchinterval()
    sys.setswitchinterval(1e6)
    yield
    sys.setswitchinterval(interval)


def run_script(master):
    interpreter = tarvix.clsLINScriptInterpreter()
    interpreter.Initialize(master)
    interpreter.ExecuteScript("BREAK_WIDTH 14;")


def test_log_may_use_an_interpreter_that_waits_for_the_master(master, interpreter, no_forced_switches):
    """The other thread is in its log, in the master's turn, when this one begins a script."""
    inside, script_begins, positions = threading.Event(), threading.Event(), []

    class AskingLog(tarvix.icLog):
        def LogEntry(self, LINScript):
            inside.set()
            script_begins.wait()
            positions.append(interpreter.CodePos)

    master.Log = AskingLog()
    thread = threading.Thread(target=master.GenerateBreak)
    thread.start()
    inside.wait()
    script_begins.set()
    interpreter.ExecuteScript("BREAK_WIDTH 14;")
    thread.join()
    assert positions == [0, 16]


@pytest.mark.parametrize("use", [lambda master: master.BreakWidth, tarvix.clsLIN.GenerateBreak, run_script])
def test_thread_that_waits_for_its_turn_lets_the_others_run(no_forced_switches, use):
    """This thread waits for a master whose device waits for a third thread, which can run only now."""
    device, inside, third_may, device_may = RecordingDevice(), *(threading.Event() for _ in range(3))
    master = tarvix.clsLIN()
    master.Initialize(device)
    master.BaudrateBd = 19200
    order = []

    def send(*_):
        if not order:
            order.append("inside")
            inside.set()
            device_may.wait()
            order.append("done")

    def third():
        third_may.wait()
        device_may.set()

    device.SendSamples = send
    threads = [threading.Thread(target=master.Wait, args=(1,)), threading.Thread(target=third)]
    for thread in threads:
        thread.start()
    inside.wait()
    third_may.set()
    use(master)
    assert order == ["inside", "done"]
    for thread in threads:
        thread.join()
