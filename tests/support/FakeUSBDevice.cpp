#include "tests/support/FakeUSBDevice.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

namespace Pellumo::Testing {

namespace {

constexpr unsigned DirectionIn = 0x80;
constexpr std::size_t SetupBytes = 8;

bool IsIn(const usbdevfs_urb& Request) noexcept
{
    return (Request.endpoint & DirectionIn) != 0;
}

std::span<std::uint8_t> BytesOf(const usbdevfs_urb& Request)
{
    return {static_cast<std::uint8_t*>(Request.buffer), static_cast<std::size_t>(Request.buffer_length)};
}

std::uint16_t WordAt(std::span<const std::uint8_t> Bytes, std::size_t Index)
{
    return static_cast<std::uint16_t>(Bytes[Index] | Bytes[Index + 1] << 8);
}

} // namespace

FakeUSBDevice::FakeUSBDevice(ChipFamily Family, std::string SerialNumber, Pins& Wires)
    : Product(FactsOf(Family).USBProduct), Release(FactsOf(Family).USBRelease), Serial(std::move(SerialNumber)),
      Interfaces(FactsOf(Family).Interfaces), PacketSize_(FactsOf(Family).HighSpeed ? 512 : 64)
{
    for (int k = 0; k < FactsOf(Family).Engines; ++k) {
        Ports_.push_back(std::make_unique<FakeChipPort>(Family, PacketSize_, Wires));
    }
}

void FakeUSBDevice::Unplug()
{
    Plugged_ = false;
    while (!Pending_.empty()) {
        Finish(Pending_.begin(), -ESHUTDOWN);
    }
}

int FakeUSBDevice::Submit(int Descriptor, usbdevfs_urb& Request, Ticks Now)
{
    if (Request.type == USBDEVFS_URB_TYPE_BULK) {
        ++(IsIn(Request) ? Reads : Writes);
        LargestTransfer = std::max(LargestTransfer, static_cast<std::size_t>(Request.buffer_length));
    }
    Request.actual_length = 0;
    Pending_.push_back({Descriptor, &Request});
    const auto Position = std::prev(Pending_.end());
    const auto Found = Faults.find(Transfers++);
    const std::optional<Fault> Fails = Found == Faults.end() ? std::nullopt : std::optional(Found->second);
    Mute_ = Mute_ || Fails == Fault::Mute;
    Broken_ = Broken_ || Fails == Fault::Broken;
    if (Fails == Fault::Unplug) {
        Unplug();
    } else if (Fails == Fault::Stall || Broken_) {
        Finish(Position, Broken_ ? -EPROTO : -EPIPE);
    } else if (!Mute_) {
        Begin(Request, Now);
    }
    return 0;
}

void FakeUSBDevice::Begin(usbdevfs_urb& Request, Ticks Now)
{
    if (Request.type == USBDEVFS_URB_TYPE_CONTROL) {
        AnswerControl(Request);
    } else if (FakeChipPort* const Target = PortOf(Request); Target != nullptr && IsIn(Request)) {
        Target->BeginRead(Now);
    }
}

void FakeUSBDevice::Finish(TransferList::iterator Each, int Status)
{
    Each->Request->status = Status;
    Finished_.splice(Finished_.end(), Pending_, Each);
}

int FakeUSBDevice::Discard(usbdevfs_urb* Request)
{
    const auto Position =
        std::find_if(Pending_.begin(), Pending_.end(), [=](const Transfer& Each) { return Each.Request == Request; });
    if (Position == Pending_.end()) {
        return EINVAL;
    }
    Finish(Position, -ENOENT);
    return 0;
}

usbdevfs_urb* FakeUSBDevice::Reap(int Descriptor)
{
    const auto Position = std::find_if(Finished_.begin(), Finished_.end(),
                                       [=](const Transfer& Each) { return Each.Descriptor == Descriptor; });
    if (Position == Finished_.end()) {
        return nullptr;
    }
    usbdevfs_urb* const Request = Position->Request;
    Finished_.erase(Position);
    return Request;
}

bool FakeUSBDevice::HasFinished(int Descriptor) const
{
    return std::any_of(Finished_.begin(), Finished_.end(),
                       [=](const Transfer& Each) { return Each.Descriptor == Descriptor; });
}

void FakeUSBDevice::Forget(int Descriptor)
{
    const auto IsItsOwn = [=](const Transfer& Each) { return Each.Descriptor == Descriptor; };
    Pending_.remove_if(IsItsOwn);
    Finished_.remove_if(IsItsOwn);
    std::erase_if(Claimed, [=](const auto& Each) { return Each.second == Descriptor; });
}

void FakeUSBDevice::AnswerControl(usbdevfs_urb& Request)
{
    const auto Setup = BytesOf(Request).first(SetupBytes);
    const auto Data = BytesOf(Request).subspan(SetupBytes);
    const bool OfTheChip = (Setup[0] & 0x60) == 0x40;
    const int Length = OfTheChip ? AnswerChipRequest({Setup[1], WordAt(Setup, 2), WordAt(Setup, 4)}, Data)
                                 : AnswerStandardRequest(Setup, Data);
    Request.actual_length = std::max(Length, 0);
    Finish(std::prev(Pending_.end()), Length < 0 ? -EPIPE : 0);
}

void FakeUSBDevice::Run(Ticks Now)
{
    while (!Mute_ && Step(Now)) {
    }
}

// True when something moved.
bool FakeUSBDevice::Step(Ticks Now)
{
    bool Moved = false;
    for (auto Next = Pending_.begin(); Next != Pending_.end();) {
        const auto Current = Next++;
        usbdevfs_urb& Request = *Current->Request;
        if (PortOf(Request) != nullptr && IsFirstOnItsEndpoint(Request)) {
            const int Before = Request.actual_length;
            const bool Over = IsIn(Request) ? MoveIn(Request, Now) : MoveOut(Request);
            Moved = Moved || Over || Request.actual_length != Before;
            if (Over) {
                Finish(Current, 0);
            }
        }
    }
    for (const auto& Each : Ports_) {
        Moved = Each->Run(Now) || Moved;
    }
    return Moved;
}

// Gives the port what it has room for; true when it has everything.
bool FakeUSBDevice::MoveOut(usbdevfs_urb& Request)
{
    const auto Left = BytesOf(Request).subspan(static_cast<std::size_t>(Request.actual_length));
    Request.actual_length += static_cast<int>(PortOf(Request)->TakeCommands(Left));
    return Request.actual_length == Request.buffer_length;
}

// Fills the read with the packets that are there; true when it is full or a packet was not.
bool FakeUSBDevice::MoveIn(usbdevfs_urb& Request, Ticks Now)
{
    while (Request.actual_length < Request.buffer_length) {
        const auto Packet = PortOf(Request)->NextPacket(Now);
        if (!Packet) {
            return false;
        }
        const auto Room = BytesOf(Request).subspan(static_cast<std::size_t>(Request.actual_length));
        const std::size_t Count = std::min(Packet->size(), Room.size());
        std::copy_n(Packet->begin(), Count, Room.begin());
        Request.actual_length += static_cast<int>(Count);
        if (Packet->size() < PacketSize_) {
            return true;
        }
    }
    return true;
}

std::optional<Ticks> FakeUSBDevice::NextStep(Ticks Now) const
{
    std::optional<Ticks> Next;
    const auto Consider = [&Next](std::optional<Ticks> Other) {
        if (Other && (!Next || *Other < *Next)) {
            Next = Other;
        }
    };
    if (Mute_) {
        return Next;
    }
    for (const auto& Each : Ports_) {
        Consider(Each->NextStep(Now));
    }
    for (const Transfer& Each : Pending_) {
        if (const FakeChipPort* const Target = PortOf(*Each.Request); Target != nullptr && IsIn(*Each.Request)) {
            Consider(Target->LatencyEnd());
        }
    }
    return Next;
}

FakeChipPort* FakeUSBDevice::PortOf(const usbdevfs_urb& Request) const
{
    const std::size_t Index = ((Request.endpoint & 0x0FU) - 1) / 2;
    return Request.type == USBDEVFS_URB_TYPE_BULK && Index < Ports_.size() ? Ports_[Index].get() : nullptr;
}

bool FakeUSBDevice::IsFirstOnItsEndpoint(const usbdevfs_urb& Request) const
{
    const auto First = std::find_if(Pending_.begin(), Pending_.end(), [&](const Transfer& Each) {
        return Each.Request->type == Request.type && Each.Request->endpoint == Request.endpoint;
    });
    return First->Request == &Request;
}

} // namespace Pellumo::Testing
