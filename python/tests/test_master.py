"""The master: properties, frames, values."""

import array

import pytest
import tarvix

DOOR = 0x7D  # protected identifier of a frame with the data 12 34


@pytest.mark.parametrize(
    "name, value, line",
    [
        ("BaudrateBd", 9615, "BAUDRATE 9615 BD;\r\n"),
        ("BaudrateTbit", 0.0001, "BAUDRATE 0.0001;\r\n"),
        ("BreakWidth", 14.125, "BREAK_WIDTH 14.125;\r\n"),
        ("SyncByte", 0xAA, "SYNC_BYTE (AA);\r\n"),
        ("ChecksumMode", tarvix.eLINChecksumMode.elcLIN13, "CHKSUM_MODE LIN1_3;\r\n"),
    ],
)
def test_properties_are_set_read_and_logged(master, log, name, value, line):
    master.Log = log
    setattr(master, name, value)
    assert getattr(master, name) == pytest.approx(value, rel=1e-3)
    assert log.lines == [line]


def test_misspelt_property_is_refused(master):
    with pytest.raises(AttributeError):
        master.BaudRate = 9600


def test_read_frame_is_readable_in_every_form(master):
    assert master.ReadFrame(IDbyte=DOOR, ExpectedLength=2) is True
    assert (master.ID, master.DataLength, master.Checksum) == (DOOR, 2, 0x3C)
    assert master.Data2 == b"\x12\x34"
    assert master.Data == b"\x12\x34\x3c" + bytes(6)
    assert master.CheckChksum(ExpectedChecksum=0x0C, ChecksumMask=0x0F)
    assert master.CheckData(ExpectedDataLength=2, ExpectedData=b"\x12\x3f", DataMask=b"\xff\xf0")
    assert not master.CheckData2(ExpectedDataLength=2, ExpectedData2=["18", 53.0], DataMask2=[255, 255])


def test_read_tells_silence_and_a_wrong_checksum(master):
    temperature = tarvix.clsLIN.ComputeIDParity(0x11)  # its checksum is classic
    with pytest.raises(tarvix.Error, match="Rx checksum error"):
        master.ReadFrame(temperature, 1)
    assert master.ReadFrame(temperature, 1, ChksumCheck=False)
    assert not master.ReadFrame(tarvix.clsLIN.ComputeIDParity(0x01), 2)


@pytest.mark.parametrize("data", [b"\1\2", bytearray(b"\1\2"), memoryview(b"\1\2"), array.array("B", [1, 2]), [1, 2]])
def test_data_to_write_may_be_anything_that_bytes_takes(master, data):
    master.WriteFrame(IDbyte=0x20, DataLength=2, TxData=data)
    assert (master.Data2, master.Checksum) == (b"\1\2", 0xDC)


@pytest.mark.parametrize("data, error", [("ab", TypeError), (2, TypeError), ([256, 0], ValueError), ([0, -1], ValueError)])
def test_data_that_is_no_bytes_is_refused(master, data, error):
    with pytest.raises(error):
        master.WriteFrame(0x20, 2, data)


@pytest.mark.parametrize(
    "data",
    [[18, 52], (18.4, "52"), b"\x12\x34", bytearray(b"\x12\x34"), range(18, 53, 34), [tarvix.eBit.eb1 + 17, " 5.2E1 "]],
)
def test_variants_are_numbers_in_whatever_form(master, data):
    master.WriteFrame2(IDbyte=0x20, DataLength=2, TxData2=data, Chksum="0")
    assert (master.Data2, master.Checksum) == (b"\x12\x34", 0)


@pytest.mark.parametrize(
    "data, number",
    [
        (None, tarvix.errGeneral.errTypeMismatch),
        ([None], tarvix.errGeneral.errTypeMismatch),
        ([[1]], tarvix.errGeneral.errTypeMismatch),
        ("1", tarvix.errGeneral.errTypeMismatch),
        ([-1], tarvix.errGeneral.errOverflow),
        ([2**64 - 1], tarvix.errGeneral.errOverflow),
        ([1e300], tarvix.errGeneral.errOverflow),
        ([], tarvix.errGeneral.errIndexOutOfRange),
    ],
)
def test_variants_that_are_no_array_of_bytes_raise_the_librarys_errors(master, data, number):
    with pytest.raises(tarvix.Error) as caught:
        master.WriteFrame2(0x20, 1, data)
    assert caught.value.number == number


def endless_list():
    inside_itself = []
    inside_itself.append(inside_itself)
    return inside_itself


@pytest.mark.parametrize(
    "data, error",
    [([True], TypeError), ({}, TypeError), ([2**64], OverflowError), (["\ud800"], UnicodeEncodeError),
     (endless_list(), RecursionError)],
)
def test_values_that_no_variant_holds_are_refused(master, data, error):
    with pytest.raises(error):
        master.WriteFrame2(0x20, 1, data)


def test_with_statement_terminates(device):
    with pytest.raises(KeyError), tarvix.clsLIN() as master:
        master.Initialize(device)
        raise KeyError
    assert device.calls[-1] == ("Close",)
    with pytest.raises(tarvix.Error, match="Not attached"):
        master.GenerateBreak()


def test_process_tells_the_version():
    process = tarvix.Process()
    assert tarvix.__version__ == f"{process.Major}.{process.Minor}.{process.Revision}"
    assert process.Major >= 1
