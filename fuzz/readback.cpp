/// @file
/// Fuzzes the decoding of what was read back: any samples at all give the bytes or the error that the plain rules give.
#include "tarvix/signalling/clsLINViaFTDIMPSSE.h"
#include "tests/support/PlainBuffer.h"

#include <array>
#include <vector>

#include "fuzz/Fuzzing.h"
#include "fuzz/StreamDevice.h"

namespace {

using Tarvix::Fuzzing::Demand;
using Tarvix::Fuzzing::Input;
using Tarvix::Fuzzing::StreamDevice;

struct Operation {
    bool Transmits = false;
    bool Replaces = false; ///< the samples are the bus, else they disturb an echo
    std::int32_t BreakSamples = 0;
    std::vector<std::uint8_t> Data;
    std::vector<std::uint8_t> Samples; ///< from the first one after the header on
};

Operation ReadOperation(Input From)
{
    Operation Read;
    const std::uint8_t Flags = From.Byte();
    Read.Transmits = (Flags & 1) != 0;
    Read.Replaces = (Flags & 2) != 0;
    Read.BreakSamples = From.Byte();
    const auto Data = From.Bytes(Flags >> 2 & 0xF);
    Read.Data.assign(Data.begin(), Data.end());
    const auto Samples = From.Rest();
    Read.Samples.assign(Samples.begin(), Samples.end());
    return Read;
}

struct Outcome {
    std::int32_t Number = 0; ///< of the error, or 0
    std::int32_t Received = -1;
    std::array<std::uint8_t, 9> Bytes{};
    std::vector<StreamDevice::Call> Calls;

    bool operator==(const Outcome&) const = default;
};

template <typename Engine>
Outcome Run(Engine& Bus, StreamDevice& Device, const Operation& Order)
{
    Device.Bus = [&Order](std::span<std::uint8_t> Stream) {
        const auto Header = static_cast<std::size_t>(Order.BreakSamples + 168) / 8;
        const auto Answer = Stream.subspan(Header < Stream.size() ? Header : Stream.size());
        for (std::size_t i = 0; Order.Replaces && i < Answer.size() && i < Order.Samples.size(); ++i) {
            Answer[i] = 0;
        }
        Tarvix::Fuzzing::Disturb(Answer, Order.Samples);
    };
    Outcome Result;
    try {
        if (Order.Transmits) {
            Bus.LINTransmit(Order.BreakSamples, 0x55, 0x7D, Order.Data, static_cast<std::int32_t>(Order.Data.size()));
        } else {
            Bus.LINReceive(Order.BreakSamples, 0x55, 0x7D, Result.Bytes, Result.Received);
        }
    } catch (const Tarvix::Error& Raised) {
        Result.Number = Raised.Number();
    }
    Result.Calls = Device.Calls;
    return Result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    const Operation Order = ReadOperation({Data, Size});
    StreamDevice Device;
    Tarvix::clsLINViaFTDIMPSSE Engine;
    Engine.AttachDevice(Device);
    StreamDevice PlainDevice;
    Tarvix::Testing::PlainEngine Plain(PlainDevice);
    Demand(Run(Engine, Device, Order) == Run(Plain, PlainDevice, Order));
    return 0;
}
