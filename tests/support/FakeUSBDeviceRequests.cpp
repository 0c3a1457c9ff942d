// What the fake chip answers to requests: its descriptors, its maker's requests, and the kernel's about its interfaces.

#include "tests/support/FakeUSBDevice.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <initializer_list>
#include <iterator>
#include <string_view>

namespace Pellumo::Testing {

namespace {

constexpr unsigned DirectionIn = 0x80;

// Requests of the chip's maker.
constexpr std::uint8_t ResetRequest = 0x00;
constexpr std::uint8_t SetLatencyRequest = 0x09;
constexpr std::uint8_t GetLatencyRequest = 0x0A;
constexpr std::uint8_t SetModeRequest = 0x0B;
constexpr unsigned MPSSEMode = 0x02;

void Append(std::string& Text, std::initializer_list<unsigned> Bytes)
{
    for (const unsigned Byte : Bytes) {
        Text.push_back(static_cast<char>(Byte & 0xFF));
    }
}

} // namespace

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

} // namespace Pellumo::Testing
