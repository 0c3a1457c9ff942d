/// @file
/// A chip plugged into the fake USB: its descriptors, its requests, its endpoints, and the faults that it is told to
/// have.
#pragma once

#include "pellumo/ChipFamily.h"
#include "tests/support/FakeChipPort.h"

#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace Pellumo::Testing {

/// What may befall a transfer.
enum class Fault : std::uint8_t {
    Stall,  ///< the chip refuses it
    Unplug, ///< the chip is pulled out
    Mute,   ///< from then on the chip neither takes nor gives anything
    Broken  ///< from then on the cable garbles everything
};

/// A request that the chip received.
struct ChipRequest {
    std::uint8_t Request;
    std::uint16_t Value;
    std::uint16_t Index;

    bool operator==(const ChipRequest&) const = default;
};

/// Carries out transfers in the kernel's own form (URBs). Time comes from the fake USB.
class FakeUSBDevice {
public:
    /// A chip as it comes from its maker. `Wires` hang on every port that has an engine.
    FakeUSBDevice(ChipFamily Family, std::string SerialNumber, Pins& Wires);

    // What the host finds. To be set before somebody looks.
    std::uint16_t Vendor = 0x0403;
    std::uint16_t Product;
    std::uint16_t Release;
    std::string Serial; ///< empty: none
    int Interfaces;
    int OpenError = 0;               ///< errno of every attempt to open it
    std::set<unsigned> KernelDriver; ///< interfaces, from 0, that a kernel driver has bound
    bool DriverStays = false;        ///< the kernel driver cannot be detached

    /// Faults by the number of the transfer, counted over all kinds from 0 when the device is first opened.
    std::map<std::size_t, Fault> Faults;

    // What the host did.
    std::vector<ChipRequest> Requests; ///< those of the chip's maker, in order
    std::size_t Transfers = 0;         ///< of all kinds
    std::size_t Writes = 0;            ///< bulk transfers to the chip
    std::size_t Reads = 0;             ///< bulk transfers from the chip
    std::size_t LargestTransfer = 0;   ///< bytes
    std::vector<unsigned> ClearedHalts;
    std::map<unsigned, int> Claimed; ///< interfaces, from 0, that are claimed at this moment, and by which descriptor

    /// The port `Interface`, numbered from 1; it must have an engine.
    FakeChipPort& Port(int Interface = 1) { return *Ports_.at(static_cast<std::size_t>(Interface - 1)); }
    /// The chip is pulled out.
    void Unplug();
    bool IsPlugged() const noexcept { return Plugged_; }

    std::size_t PacketSize() const noexcept { return PacketSize_; }
    /// The descriptors, as the kernel shows them in sysfs.
    std::string Descriptors() const;

    // What the kernel is asked about its interfaces, numbered from 0; each returns 0 or an errno.
    int ClaimInterface(int Descriptor, unsigned Interface, bool DetachDriver);
    int ReleaseInterface(int Descriptor, unsigned Interface);
    int NameDriver(usbdevfs_getdriver& Answer) const;
    int Attach(const usbdevfs_ioctl& Request);
    int ClearHalt(unsigned Endpoint);

    /// Starts a transfer of `Descriptor`; returns 0 or an errno.
    int Submit(int Descriptor, usbdevfs_urb& Request, Ticks Now);
    /// Ends a transfer early; returns 0 or an errno.
    int Discard(usbdevfs_urb* Request);
    /// The next transfer of `Descriptor` that is over, or nullptr.
    usbdevfs_urb* Reap(int Descriptor);
    bool HasFinished(int Descriptor) const;
    /// `Descriptor` is closed: its interfaces are given back, its transfers forgotten.
    void Forget(int Descriptor);
    /// Does what is due at `Now`.
    void Run(Ticks Now);
    /// When there will be something to do.
    std::optional<Ticks> NextStep(Ticks Now) const;

private:
    struct Transfer {
        int Descriptor;
        usbdevfs_urb* Request;
    };
    using TransferList = std::list<Transfer>;

    void Begin(usbdevfs_urb& Request, Ticks Now);
    void Finish(TransferList::iterator Each, int Status);
    void AnswerControl(usbdevfs_urb& Request);
    int AnswerStandardRequest(std::span<const std::uint8_t> Setup, std::span<std::uint8_t> Data) const;
    int AnswerChipRequest(const ChipRequest& Request, std::span<std::uint8_t> Data);
    bool Step(Ticks Now);
    bool MoveOut(usbdevfs_urb& Request);
    bool MoveIn(usbdevfs_urb& Request, Ticks Now);
    FakeChipPort* PortOf(const usbdevfs_urb& Request) const;
    bool IsFirstOnItsEndpoint(const usbdevfs_urb& Request) const;

    std::size_t PacketSize_;
    std::vector<std::unique_ptr<FakeChipPort>> Ports_;
    bool Plugged_ = true;
    bool Mute_ = false;
    std::uint8_t Latency_ = 16;
    bool Broken_ = false;
    TransferList Pending_;
    TransferList Finished_;
};

} // namespace Pellumo::Testing
