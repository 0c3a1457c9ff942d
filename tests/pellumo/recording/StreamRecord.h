/// @file
/// Streams as a recorder tells them, for tests.
#pragma once

#include "pellumo/recording/FrameDecoder.h"
#include "tests/pellumo/simulation/CommanderStream.h"

#include <cstdint>
#include <vector>

namespace Pellumo::Testing {

/// 8 samples to a bit of 100 microseconds: a sample is 125 units of 100 ns.
inline constexpr double TestFrequency = 80e3;

inline SampleStream Sent(const Bytes& Tx)
{
    return {Tx, Tx, false, TestFrequency, 0.0, 0};
}

inline SampleStream Exchanged(const Bytes& Tx, const Bytes& Rx)
{
    return {Tx, Rx, true, TestFrequency, 0.0, 0};
}

/// An event with copies of what it refers to.
struct KeptEvent : BusEvent {
    explicit KeptEvent(const BusEvent& Event)
        : BusEvent(Event), SentBytes(Sent.begin(), Sent.end()), ReceivedBytes(Received.begin(), Received.end()),
          Edges(StartEdges.begin(), StartEdges.end())
    {
    }
    Bytes SentBytes;
    Bytes ReceivedBytes;
    std::vector<std::int64_t> Edges;
};

/// What a decoder makes of one stream.
inline KeptEvent EventOf(const SampleStream& Stream)
{
    std::vector<KeptEvent> Events;
    FrameDecoder Decoder([&Events](const BusEvent& Event) { Events.emplace_back(Event); });
    Decoder.OnStream(Stream);
    return Events.at(0);
}

} // namespace Pellumo::Testing
