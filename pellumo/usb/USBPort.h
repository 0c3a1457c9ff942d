/// @file
/// One port of a chip on USB, opened and in MPSSE mode.
#pragma once

#include "pellumo/usb/Handles.h"
#include "pellumo/usb/USBChips.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace Pellumo {

/// Every packet from the chip begins with this many bytes of modem and line status.
constexpr std::size_t StatusBytes = 2;

/// Opens and claims through libusb, which tells why it fails; the requests of the chip are libftdi's.
class USBPort {
public:
    /// @param Context    taken over: the port closes it
    /// @param Chip       listed by `Context`
    /// @param Interface  numbered from 1, one that `Chip` has
    /// @throws Tarvix::Error  as `OpenUSBTransport`; the port is given back then
    USBPort(FTDIContext Context, USBChip Chip, int Interface);
    USBPort(USBPort&&) = default;
    USBPort& operator=(USBPort&&) = delete;
    /// Closes.
    ~USBPort();

    /// Empties the chip's buffers in both directions.
    /// @throws Tarvix::Error  errUnplugged, errStalled, errTimeout, errUSB
    void Purge();

    /// Resets the engine and empties the buffers around it.
    /// @throws Tarvix::Error  errUnplugged, errStalled, errTimeout, errUSB
    void Restart();

    /// Takes the chip out of MPSSE mode, if it still listens, and gives the port back to the system. A second call does
    /// nothing.
    void Close() noexcept;
    bool IsOpen() const noexcept { return Context_ && Context_->usb_dev != nullptr; }

    libusb_context* Library() const noexcept { return Context_->usb_ctx; }
    libusb_device_handle* Handle() const noexcept { return Context_->usb_dev; }
    unsigned char InEndpoint() const noexcept { return InEndpoint_; }
    unsigned char OutEndpoint() const noexcept { return OutEndpoint_; }
    /// Bytes in a full packet from the chip, the two status bytes at its head included.
    std::size_t PacketSize() const noexcept { return PacketSize_; }
    /// The port's URL.
    const std::string& Name() const noexcept { return Name_; }

private:
    void FindEndpoints();
    void Open();
    void Claim();
    void SetUp();
    void EnterMPSSEMode();
    void Require(int Answer, std::string_view Action);
    int CauseOfFailure();

    FTDIContext Context_;
    USBChip Chip_;
    std::string Name_;
    int Interface_;
    unsigned char InEndpoint_ = 0;
    unsigned char OutEndpoint_ = 0;
    std::size_t PacketSize_ = 0;
};

} // namespace Pellumo
