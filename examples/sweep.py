#!/usr/bin/env python3
"""Which nodes still answer when the break gets shorter?

usage: sweep.py [DEVICE]

Asks one frame of every node of the example bus with breaks of 13 down to 9 bit times. DEVICE is a device URL; without
one the bus is simulated.
"""

import sys

import tarvix

NODES = {"door": (0x3D, 2), "temperature": (0x11, 1), "wiper": (0x05, 4), "seat": (0x30, 8)}  # identifier, length
BREAK_WIDTHS = [13, 12, 11.5, 11, 10.5, 10, 9]  # bit times


def answer(master: tarvix.clsLIN, identifier: int, length: int) -> str:
    """What a node answers: its data, nothing, or what is wrong with it."""
    try:
        if master.ReadFrame(tarvix.clsLIN.ComputeIDParity(identifier), length, ChksumCheck=False):
            return master.Data2.hex(" ")
        return "-"
    except tarvix.Error as error:
        return error.description


def main(url: str = "sim:") -> None:
    print(f"{'break':>5}  " + "".join(f"{name:<25}" for name in NODES).rstrip())
    with tarvix.clsLIN() as master:
        master.Initialize(tarvix.OpenDevice(url))
        master.BaudrateBd = 19200
        for width in BREAK_WIDTHS:
            master.BreakWidth = width
            answers = "".join(f"{answer(master, *frame):<25}" for frame in NODES.values())
            print(f"{width:5}  {answers.rstrip()}")


if __name__ == "__main__":
    main(*sys.argv[1:])
