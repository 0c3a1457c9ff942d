#include "pellumo/usb/USBTransport.h"

#include "pellumo/errPellumo.h"
#include "pellumo/mpsse/RaiseForDevice.h"
#include "pellumo/usb/OpenUSBTransport.h"
#include "pellumo/usb/USBErrors.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Pellumo {

namespace {

constexpr std::string_view Source = "USBTransport";

// The most that one transfer carries: the memory of the kernel's USB system is limited (16 MB for all programs).
constexpr std::size_t LongestTransfer = 65536;

constexpr auto LongestLimit = std::chrono::hours(24);

std::string Milliseconds(std::chrono::nanoseconds Time)
{
    return std::to_string(std::chrono::ceil<std::chrono::milliseconds>(Time).count()).append(" ms");
}

// The deadline is over: says how far the chip got.
[[noreturn]] void RaiseTooLate(std::string_view Device, std::size_t Answered, std::size_t Asked, std::size_t Untaken,
                               std::chrono::nanoseconds Limit)
{
    const std::string Within = std::string(" within ").append(Milliseconds(Limit)).append(". ");
    if (Answered > 0 && Answered < Asked) {
        RaiseForDevice(errPellumo::errShortAnswer, Source, Device,
                       std::string("the chip answered with ")
                           .append(std::to_string(Answered))
                           .append(" of ")
                           .append(std::to_string(Asked))
                           .append(" bytes")
                           .append(Within)
                           .append("Open it again; if it happens again, check the cable and the hub"));
    }
    std::string Lack = "the chip did not answer";
    if (Untaken > 0) {
        Lack = std::string("the chip did not take the last ").append(std::to_string(Untaken)).append(" command bytes");
    }
    RaiseForDevice(errPellumo::errTimeout, Source, Device,
                   Lack.append(Within).append("Plug the chip in again and open it again"));
}

} // namespace

void USBTransport::Transfer(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In,
                            std::chrono::nanoseconds Limit)
{
    RequireOpen();
    const std::size_t Asked = In.size();
    const int Code = Exchange(Out, In, Clock::now() + std::min<std::chrono::nanoseconds>(Limit, LongestLimit));
    // Everything may have arrived in the very moment in which the time ran out.
    if (Out.empty() && In.empty()) {
        return;
    }
    if (Code == LIBUSB_ERROR_TIMEOUT) {
        RaiseTooLate(Name(), Asked - In.size(), Asked, Out.size(), Limit);
    }
    if (Code == LIBUSB_ERROR_PIPE) {
        RecoverFromStall();
    }
    RaiseUSB(Code, Source, Name(), "the transfer");
}

// Cuts what was moved from the fronts of `Out` and `In`. Returns the first failure; nothing is in flight any more then.
int USBTransport::Exchange(std::span<const std::uint8_t>& Out, std::span<std::uint8_t>& In, Clock::time_point Deadline)
{
    int Code = LIBUSB_SUCCESS;
    const auto Keep = [&Code](int Other) { Code = Code == LIBUSB_SUCCESS ? Other : Code; };
    for (;;) {
        if (Code == LIBUSB_SUCCESS && !In.empty() && !Read_.InFlight()) {
            Keep(SubmitRead(In.size(), Deadline));
        }
        if (Code == LIBUSB_SUCCESS && !Out.empty() && !Write_.InFlight()) {
            Keep(SubmitWrite(Out, Deadline));
        }
        if (Code != LIBUSB_SUCCESS) {
            Read_.Cancel();
            Write_.Cancel();
        }
        const bool Reading = Read_.InFlight();
        const bool Writing = Write_.InFlight();
        if (!Reading && !Writing) {
            return Code;
        }
        if (const int Event = libusb_handle_events(Port_.Library()); Event != LIBUSB_ERROR_INTERRUPTED) {
            Keep(Event);
        }
        if (Reading && !Read_.InFlight()) {
            Keep(TakeAnswer(In));
            Keep(Read_.Code());
        }
        if (Writing && !Write_.InFlight()) {
            Out = Out.subspan(Write_.Count());
            Keep(Write_.Code());
        }
    }
}

int USBTransport::SubmitWrite(std::span<const std::uint8_t> Out, Clock::time_point Deadline)
{
    const auto Part = Out.first(std::min(Out.size(), LongestTransfer));
    // libusb has one buffer type for both directions; it only reads what goes out.
    auto* const Data = const_cast<std::uint8_t*>(Part.data()); // NOLINT(cppcoreguidelines-pro-type-const-cast)
    return Submit(Write_, Port_.OutEndpoint(), {Data, Part.size()}, Deadline);
}

int USBTransport::SubmitRead(std::size_t Wanted, Clock::time_point Deadline)
{
    const std::size_t Payload = Port_.PacketSize() - StatusBytes;
    const std::size_t MostPackets = LongestTransfer / Port_.PacketSize();
    Packets_.resize(std::min((Wanted + Payload - 1) / Payload, MostPackets) * Port_.PacketSize());
    return Submit(Read_, Port_.InEndpoint(), Packets_, Deadline);
}

int USBTransport::Submit(BulkTransfer& Transfer, unsigned char Endpoint, std::span<std::uint8_t> Data,
                         Clock::time_point Deadline)
{
    const auto Left = std::chrono::ceil<std::chrono::milliseconds>(Deadline - Clock::now());
    return Left.count() > 0 ? Transfer.Submit(Port_.Handle(), Endpoint, Data, Left) : LIBUSB_ERROR_TIMEOUT;
}

// Moves what the finished read brought to the front of `In` and cuts that off. When it is more than was asked for, the
// chip is out of step: the bytes in front may be of an earlier answer.
int USBTransport::TakeAnswer(std::span<std::uint8_t>& In) noexcept
{
    std::span<const std::uint8_t> Received = std::span(Packets_).first(Read_.Count());
    while (Received.size() > StatusBytes) {
        const auto Packet = Received.first(std::min(Received.size(), Port_.PacketSize()));
        const auto Payload = Packet.subspan(StatusBytes);
        if (Payload.size() > In.size()) {
            return LIBUSB_ERROR_OVERFLOW;
        }
        std::copy(Payload.begin(), Payload.end(), In.begin());
        In = In.subspan(Payload.size());
        Received = Received.subspan(Packet.size());
    }
    return LIBUSB_SUCCESS;
}

// Either endpoint may be the one that stalled; clearing one that did not does no harm.
void USBTransport::RecoverFromStall()
{
    libusb_clear_halt(Port_.Handle(), Port_.OutEndpoint());
    libusb_clear_halt(Port_.Handle(), Port_.InEndpoint());
}

void USBTransport::Purge()
{
    RequireOpen();
    Port_.Purge();
}

void USBTransport::Restart()
{
    RequireOpen();
    Port_.Restart();
}

void USBTransport::Close()
{
    Port_.Close();
}

void USBTransport::RequireOpen() const
{
    if (!Port_.IsOpen()) {
        RaiseForDevice(errPellumo::errClosed, Source, Name(), "the chip has been closed. Open it again");
    }
}

OpenedUSBTransport OpenUSBTransport(const ChipAddress& Address)
{
    FTDIContext Context = StartUSB();
    USBChip Chip = FindChip(*Context, Address);
    const ChipFamily Family = *Chip.Family;
    USBPort Port(std::move(Context), std::move(Chip), Address.Interface);
    return {std::make_unique<USBTransport>(std::move(Port)), Family};
}

} // namespace Pellumo
