#include "tests/support/FakeUSBDevice.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <string_view>
#include <utility>

namespace Pellumo::Testing {

namespace {

constexpr std::size_t SetupBytes = 8;
constexpr unsigned DirectionIn = 0x80;

// Requests of the chip's maker.
constexpr std::uint8_t ResetRequest = 0x00;
constexpr std::uint8_t SetLatencyRequest = 0x09;
constexpr std::uint8_t GetLatencyRequest = 0x0A;
constexpr std::uint8_t SetModeRequest = 0x0B;
constexpr unsigned MPSSEMode = 0x02;

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

void Append(std::string& Text, std::initializer_list<unsigned> Bytes)
{
    for (const unsigned Byte : Bytes) {
        Text.push_back(static_cast<char>(Byte & 0xFF));
    }
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

std::string FakeUSBDevice::Descriptors() const
{
    const auto Count = static_cast<unsigned>(Interfaces);
    const auto Packet = static_cast<unsigned>(PacketSize_);
    const unsigned TotalLength = 9 + Count * (9 + 7 + 7);
    std::string Text;
    Append(Text, {18, 1, 0x00, 0x02, 0, 0, 0, 64});
    Append(Text, {Vendor, Vendor / 256U, Product, Product / 256U, Release, Release / 256U});
    Append(Text, {0, 0, Serial.empty() ? 0U : 3U, 1});
    Append(Text, {9, 2, TotalLength, TotalLength / 256, Count, 1, 0, 0x80, 45});
    for (unsigned k = 0; k < Count; ++k) {
        Append(Text, {9, 4, k, 0, 2, 0xFF, 0xFF, 0xFF, 0});
        Append(Text, {7, 5, DirectionIn | (2 * k + 1), 2, Packet, Packet / 256, 0});
        Append(Text, {7, 5, 2 * k + 2, 2, Packet, Packet / 256, 0});
    }
    return Text;
}

void FakeUSBDevice::Unplug()
{
    Plugged_ = false;
    while (!Pending_.empty()) {
        Finish(Pending_.begin(), -ESHUTDOWN);
    }
}

int FakeUSBDevice::ClaimInterface(int Descriptor, unsigned Interface, bool DetachDriver)
{
    const bool Driver = KernelDriver.contains(Interface);
    if (Driver && DetachDriver && DriverStays) {
        return EACCES;
    }
    if ((Driver && !DetachDriver) || Claimed.contains(Interface)) {
        return EBUSY;
    }
    KernelDriver.erase(Interface);
    Claimed.emplace(Interface, Descriptor);
    return 0;
}

int FakeUSBDevice::ReleaseInterface(int Descriptor, unsigned Interface)
{
    const auto Found = Claimed.find(Interface);
    if (Found == Claimed.end() || Found->second != Descriptor) {
        return EINVAL;
    }
    Claimed.erase(Found);
    return 0;
}

int FakeUSBDevice::NameDriver(usbdevfs_getdriver& Answer) const
{
    const bool OfKernel = KernelDriver.contains(Answer.interface);
    if (!OfKernel && !Claimed.contains(Answer.interface)) {
        return ENODATA;
    }
    const std::string_view Name = OfKernel ? "ftdi_sio" : "usbfs";
    *std::copy(Name.begin(), Name.end(), std::begin(Answer.driver)) = '\0';
    return 0;
}

int FakeUSBDevice::Attach(const usbdevfs_ioctl& Request)
{
    if (Request.ioctl_code != USBDEVFS_CONNECT) {
        return ENOTTY;
    }
    KernelDriver.insert(static_cast<unsigned>(Request.ifno));
    return 0;
}

int FakeUSBDevice::ClearHalt(unsigned Endpoint)
{
    ClearedHalts.push_back(Endpoint);
    return 0;
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

// The string descriptors: the list of languages (index 0), and the serial number whatever the index.
int FakeUSBDevice::AnswerStandardRequest(std::span<const std::uint8_t> Setup, std::span<std::uint8_t> Data) const
{
    constexpr std::uint8_t GetDescriptor = 0x06;
    constexpr std::uint8_t StringType = 3;
    if (Setup[1] != GetDescriptor || Setup[3] != StringType) {
        return -1;
    }
    std::string Text;
    if (Setup[2] == 0) {
        Append(Text, {4, StringType, 0x09, 0x04});
    } else {
        Append(Text, {static_cast<unsigned>(2 + 2 * Serial.size()), StringType});
        for (const char Letter : Serial) {
            Append(Text, {static_cast<unsigned char>(Letter), 0});
        }
    }
    const std::size_t Count = std::min(Text.size(), Data.size());
    std::copy_n(Text.begin(), Count, Data.begin());
    return static_cast<int>(Count);
}

int FakeUSBDevice::AnswerChipRequest(const ChipRequest& Request, std::span<std::uint8_t> Data)
{
    Requests.push_back(Request);
    const std::size_t PortIndex = (Request.Index & 0xFFU) - 1;
    FakeChipPort* const Target = PortIndex < Ports_.size() ? Ports_[PortIndex].get() : nullptr;
    if (Request.Request == GetLatencyRequest && !Data.empty()) {
        Data[0] = Latency_;
        return 1;
    }
    if (Target == nullptr) {
        return 0;
    }
    if (Request.Request == SetLatencyRequest) {
        Latency_ = static_cast<std::uint8_t>(Request.Value & 0xFF);
        Target->LatencyTimer(std::chrono::milliseconds(Latency_));
    } else if (Request.Request == SetModeRequest) {
        Target->SwitchEngine(Request.Value >> 8 == MPSSEMode);
    } else if (Request.Request == ResetRequest) {
        if (Request.Value != 2) {
            Target->PurgeCommands();
        }
        if (Request.Value != 1) {
            Target->PurgeAnswers();
        }
    }
    return 0;
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
