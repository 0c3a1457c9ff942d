"""LIN commander (master) over an MPSSE engine, or on a simulated bus.

    import tarvix

    with tarvix.clsLIN() as Master:
        Master.Initialize(tarvix.OpenDevice("sim:"))
        Master.BaudrateBd = 19200
        if Master.ReadFrame(tarvix.clsLIN.ComputeIDParity(0x3D), 2):
            print(Master.Data2.hex(" "))  # 12 34

Classes, operations and properties bear the names that they have in C++.
"""

from tarvix._errors import Error
from tarvix._tarvix import (
    FTDIMPSSE,
    OpenDevice,
    Process,
    clsLIN,
    clsLINScriptInterpreter,
    eBit,
    eLINChecksumMode,
    errGeneral,
    errLIN,
    errLINScriptInterpreter,
    errPellumo,
    icLog,
)

__all__ = [
    "Error",
    "FTDIMPSSE",
    "OpenDevice",
    "Process",
    "clsLIN",
    "clsLINScriptInterpreter",
    "eBit",
    "eLINChecksumMode",
    "errGeneral",
    "errLIN",
    "errLINScriptInterpreter",
    "errPellumo",
    "icLog",
]

_process = Process()
__version__ = f"{_process.Major}.{_process.Minor}.{_process.Revision}"
