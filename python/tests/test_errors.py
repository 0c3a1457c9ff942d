"""`Error` and the enumerations."""

import copy
import os
import pickle
import re
from pathlib import Path

import pytest
import tarvix

SOURCES = Path(os.environ["TARVIX_SOURCE_DIR"])


def test_error_has_number_source_and_description(master):
    with pytest.raises(tarvix.Error) as caught:
        master.BreakWidth = 0
    error = caught.value
    assert (error.number, error.source, error.description) == (tarvix.errLIN.errParameter, "clsLIN", "Invalid parameter")
    assert str(error) == error.description
    assert error.number == 0x8004C3B5 - 2**32


@pytest.mark.parametrize("duplicate", [copy.copy, lambda error: pickle.loads(pickle.dumps(error))])
def test_error_can_be_copied_and_sent_to_another_process(duplicate):
    error = duplicate(tarvix.Error(5, "source", "description"))
    assert (type(error), error.args) == (tarvix.Error, (5, "source", "description"))


@pytest.mark.parametrize(
    "header",
    ["tarvix/common/Error.h", "tarvix/common/eLINChecksumMode.h", "tarvix/signalling/eBit.h", "pellumo/errPellumo.h"],
)
def test_enumerations_are_those_of_the_headers(header):
    enumerations = re.findall(r"\nenum (?:class )?(\w+) : \S+ \{(.*?)\n\}", (SOURCES / header).read_text(), re.DOTALL)
    assert enumerations
    for name, body in enumerations:
        value, members = 0, {}
        for member, start in re.findall(r"^ +(\w+)(?: = [^\n,]*?(0x[0-9A-F]+|\d+)\)?)?(?=,| )", body, re.MULTILINE):
            value = int(start, 0) if start else value + 1
            members[member] = value if value < 2**31 else value - 2**32
        assert {member.name: member.value for member in getattr(tarvix, name)} == members


def test_bus_file_that_is_not_there_is_named(tmp_path):
    with pytest.raises(tarvix.Error, match="none.toml") as caught:
        tarvix.OpenDevice(URL=f"sim:{tmp_path}/none.toml")
    assert caught.value.number == tarvix.errPellumo.errBusFile
