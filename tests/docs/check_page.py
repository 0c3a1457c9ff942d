#!/usr/bin/env python3
"""Runs every code block of a page: check_page.py SETTINGS PAGE."""

import json
import sys
from pathlib import Path

from markdown import read_page
from not_run import NOT_RUN
from runners import RUNNERS, Workshop


def check_blocks(page, name, workshop):
    excused = [first_line for each, first_line, _ in NOT_RUN if each == name]
    met = []
    for block in page.blocks:
        if block.file:
            workshop.save(block.file, block.text)
    for block in page.blocks:
        if block.first_line in excused:
            met.append(block.first_line)
        elif block.language not in RUNNERS:
            yield f'{block.line}: nothing is known that runs a block of "{block.language}"'
        elif fault := RUNNERS[block.language](workshop, block):
            yield f"{block.line}: {fault}"
    if sorted(met) != sorted(excused):
        yield f"the blocks that are not run are {met}, but {excused} by the table of not_run.py"
    print(f"{name}: {len(page.blocks)} blocks, {len(met)} of them not run")


def check_error_rows(page, workshop):
    for line, number, text, script in page.error_rows():
        result = workshop.call("tarvix", "run", "-", "-q", text=f"{script}\n")
        if result.returncode != 1 or text not in result.stdout or f" ({number}, " not in result.stdout:
            yield f"{line}: `{script}` gives\n{result.stdout}"


def main():
    settings = json.loads(Path(sys.argv[1]).read_text())
    name = sys.argv[2]
    page = read_page(Path(settings["source"]) / name)
    workshop = Workshop(settings)
    try:
        faults = [*page.faults, *check_blocks(page, name, workshop), *check_error_rows(page, workshop)]
    finally:
        workshop.close()
    for fault in faults:
        print(f"{name}:{fault}\n")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
