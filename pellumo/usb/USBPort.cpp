#include "pellumo/usb/USBPort.h"

#include "pellumo/errPellumo.h"
#include "pellumo/mpsse/RaiseForDevice.h"
#include "pellumo/usb/USBErrors.h"

#include <algorithm>
#include <span>
#include <utility>

namespace Pellumo {

namespace {

constexpr std::string_view Source = "USBPort";

// How long the chip may take to answer one request (ms).
constexpr int AnswerLimit = 1000;

// The chip ends a read with what it has, be it nothing, when this time is over; the longest that it can be told (ms).
// An answer that is complete earlier is flushed by the commands themselves, so nobody waits for it.
constexpr unsigned char LatencyTimer = 255;

// A question to the chip that is not part of the USB standard.
constexpr std::uint8_t ChipQuestion =
    unsigned{LIBUSB_ENDPOINT_IN} | unsigned{LIBUSB_REQUEST_TYPE_VENDOR} | unsigned{LIBUSB_RECIPIENT_DEVICE};

} // namespace

USBPort::USBPort(FTDIContext Context, USBChip Chip, int Interface)
    : Context_(std::move(Context)), Chip_(std::move(Chip)), Name_(Chip_.URL(Interface)), Interface_(Interface)
{
    Context_->usb_read_timeout = AnswerLimit;
    Context_->usb_write_timeout = AnswerLimit;
    ftdi_set_interface(Context_.get(), static_cast<ftdi_interface>(Interface));
    FindEndpoints();
    Open();
    Claim();
    try {
        SetUp();
    } catch (...) {
        Close(); // the engine may be on already, and the destructor does not run
        throw;
    }
}

USBPort::~USBPort()
{
    Close();
}

void USBPort::FindEndpoints()
{
    libusb_config_descriptor* Answer = nullptr;
    if (const int Code = libusb_get_active_config_descriptor(Chip_.Device.get(), &Answer); Code < 0) {
        RaiseUSB(Code, Source, Name_, "reading the chip's description");
    }
    const ConfigDescriptor Config(Answer);
    const auto Index = static_cast<std::size_t>(Interface_ - 1);
    const std::span Interfaces(Config->interface, Config->bNumInterfaces);
    if (Index < Interfaces.size() && Interfaces[Index].num_altsetting > 0) {
        const libusb_interface_descriptor& Port = *Interfaces[Index].altsetting;
        for (const libusb_endpoint_descriptor& Endpoint : std::span(Port.endpoint, Port.bNumEndpoints)) {
            if ((Endpoint.bEndpointAddress & LIBUSB_ENDPOINT_DIR_MASK) == LIBUSB_ENDPOINT_IN) {
                InEndpoint_ = Endpoint.bEndpointAddress;
                PacketSize_ = Endpoint.wMaxPacketSize;
            } else {
                OutEndpoint_ = Endpoint.bEndpointAddress;
            }
        }
    }
    if (PacketSize_ <= StatusBytes || OutEndpoint_ == 0) {
        RaiseForDevice(
            errPellumo::errWrongChip, Source, Name_,
            "the device does not have the endpoints of an MPSSE chip. Check the address with `tarvix devices`");
    }
}

void USBPort::Open()
{
    libusb_device_handle* Handle = nullptr;
    if (const int Code = libusb_open(Chip_.Device.get(), &Handle); Code < 0) {
        RaiseUSB(Code, Source, Name_, "opening the chip");
    }
    ftdi_set_usbdev(Context_.get(), Handle);
}

void USBPort::Claim()
{
    // Systems on which no kernel driver can hold the port answer that this is not supported, and need it not.
    libusb_set_auto_detach_kernel_driver(Handle(), 1);
    const int Code = libusb_claim_interface(Handle(), Interface_ - 1);
    if (Code == LIBUSB_SUCCESS) {
        return;
    }
    if (libusb_kernel_driver_active(Handle(), Interface_ - 1) == 1) {
        RaiseForDevice(
            errPellumo::errDriver, Source, Name_,
            "a kernel driver holds the chip and does not let go. Unload it (`sudo rmmod ftdi_sio`) and try again");
    }
    RaiseUSB(Code, Source, Name_, "claiming the interface");
}

// The maker's order of steps (application note AN_135, "MPSSE Basics").
void USBPort::SetUp()
{
    ftdi_context* const FTDI = Context_.get();
    Require(ftdi_usb_reset(FTDI), "resetting the chip");
    Require(ftdi_set_event_char(FTDI, 0, 0), "switching the event character off");
    Require(ftdi_set_error_char(FTDI, 0, 0), "switching the error character off");
    Require(ftdi_set_latency_timer(FTDI, LatencyTimer), "setting the latency timer");
    Require(ftdi_setflowctrl(FTDI, SIO_RTS_CTS_HS), "setting the flow control");
    EnterMPSSEMode();
}

void USBPort::EnterMPSSEMode()
{
    Require(ftdi_set_bitmode(Context_.get(), 0, BITMODE_RESET), "resetting the mode");
    Require(ftdi_set_bitmode(Context_.get(), 0, BITMODE_MPSSE), "entering MPSSE mode");
    Purge();
}

// Emptied first as well: an engine that has just been reset would take the rest of some samples for commands.
void USBPort::Restart()
{
    Purge();
    EnterMPSSEMode();
}

void USBPort::Purge()
{
    Require(ftdi_tcioflush(Context_.get()), "emptying the buffers");
}

// libftdi answers -1 whatever the cause of a failure is.
void USBPort::Require(int Answer, std::string_view Action)
{
    if (Answer < 0) {
        RaiseUSB(CauseOfFailure(), Source, Name_, Action);
    }
}

// A request that changes nothing tells a chip that is gone or mute from one that answers, but refused the one before.
int USBPort::CauseOfFailure()
{
    unsigned char Latency = 0;
    const int Code =
        libusb_control_transfer(Handle(), ChipQuestion, SIO_GET_LATENCY_TIMER_REQUEST, 0,
                                static_cast<std::uint16_t>(Context_->index), &Latency, sizeof(Latency), AnswerLimit);
    return Code < 0 ? Code : LIBUSB_ERROR_PIPE;
}

void USBPort::Close() noexcept
{
    if (IsOpen()) {
        ftdi_set_bitmode(Context_.get(), 0, BITMODE_RESET);
        ftdi_usb_close(Context_.get());
    }
}

} // namespace Pellumo
