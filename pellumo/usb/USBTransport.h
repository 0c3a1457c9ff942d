/// @file
/// The byte pipe to a chip on USB.
#pragma once

#include "pellumo/mpsse/Transport.h"
#include "pellumo/usb/BulkTransfer.h"
#include "pellumo/usb/USBPort.h"

#include <chrono>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace Pellumo {

/// Moves commands and answers by libusb's asynchronous transfers, one in each direction at a time.
///
/// Every packet from the chip begins with two status bytes. A packet that is not full ends a read: the chip sends one
/// when a command flushes its answer, and, full of nothing but status, whenever its latency timer runs out. So
/// the answer to one frame, flushed at its end and shorter than the latency timer, is one read; on a longer one
/// the read is submitted again.
class USBTransport final : public Transport {
public:
    /// @param Port  open, its buffers empty
    explicit USBTransport(USBPort Port) : Port_(std::move(Port)) {}

    void Transfer(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In,
                  std::chrono::nanoseconds Limit) override;
    void Purge() override;
    void Restart() override;
    void Close() override;
    std::string_view Name() const noexcept override { return Port_.Name(); }

private:
    using Clock = std::chrono::steady_clock;

    int Exchange(std::span<const std::uint8_t>& Out, std::span<std::uint8_t>& In, Clock::time_point Deadline);
    int SubmitWrite(std::span<const std::uint8_t> Out, Clock::time_point Deadline);
    int SubmitRead(std::size_t Wanted, Clock::time_point Deadline);
    int Submit(BulkTransfer& Transfer, unsigned char Endpoint, std::span<std::uint8_t> Data,
               Clock::time_point Deadline);
    int TakeAnswer(std::span<std::uint8_t>& In) noexcept;
    void RecoverFromStall();
    void RequireOpen() const;

    USBPort Port_;
    BulkTransfer Write_;
    BulkTransfer Read_;
    std::vector<std::uint8_t> Packets_; // what the read in flight fills
};

} // namespace Pellumo
