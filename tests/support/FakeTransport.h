/// @file
/// The one fake transport: it records every call, answers as an engine on a bus that inverts what is driven, and fails
/// on command.
#pragma once

#include "pellumo/mpsse/Transport.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Pellumo::Testing {

/// What a fake transport has seen; outlives the device that owns the transport.
struct TransportRecord {
    using Bytes = std::vector<std::uint8_t>;

    struct Transferred {
        Bytes Out;
        std::size_t In;
        std::chrono::nanoseconds Limit;
    };

    /// Every call in order: "purge", "restart", "close", and for a transfer its bytes in hexadecimal, then the number
    /// of answer bytes, as in "AA <2".
    std::vector<std::string> Calls;
    /// Every transfer in order.
    std::vector<Transferred> Transfers;
    /// What the engine answers to the byte 0xAA.
    std::array<std::uint8_t, 2> BogusAnswer = {0xFA, 0xAA};
    /// Called at the start of every call with the number of calls before it; what it throws leaves the call.
    std::function<void(std::size_t)> BeforeCall;
};

class FakeTransport : public Transport {
public:
    explicit FakeTransport(TransportRecord& Record) : Record_(Record) {}

    void Transfer(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In,
                  std::chrono::nanoseconds Limit) override;
    void Purge() override { Count("purge"); }
    void Restart() override { Count("restart"); }
    void Close() override { Count("close"); }
    std::string_view Name() const noexcept override { return "fake:1"; }

private:
    void Count(std::string Call);

    TransportRecord& Record_;
};

} // namespace Pellumo::Testing
