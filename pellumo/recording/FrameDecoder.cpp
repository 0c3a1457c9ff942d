#include "pellumo/recording/FrameDecoder.h"

#include "pellumo/common/SampleRuns.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace Pellumo {

namespace {

using Samples = std::span<const std::uint8_t>;

constexpr std::int64_t Bit = 8;
constexpr std::int64_t FramedByte = 10 * Bit;

int LevelAt(Samples Stream, std::int64_t n) noexcept
{
    return SampleAt(Stream, static_cast<std::size_t>(n));
}

/// The first sample in [First, End) with this level; `End` if there is none.
std::int64_t FindLevel(Samples Stream, std::int64_t First, std::int64_t End, int Level) noexcept
{
    if (First >= End || LevelAt(Stream, First) == Level) {
        return First;
    }
    return std::min(End, static_cast<std::int64_t>(EndOfRun(Stream, static_cast<std::size_t>(First))));
}

/// True when all of [First, End) is recessive.
bool IsSilent(Samples Stream, std::int64_t First, std::int64_t End) noexcept
{
    return FindLevel(Stream, First, End, 0) == End;
}

/// The level of the bit that begins at `First`, when all its samples agree.
std::optional<int> WholeBit(Samples Stream, std::int64_t First) noexcept
{
    const int Level = LevelAt(Stream, First);
    return FindLevel(Stream, First, First + Bit, 1 - Level) == First + Bit ? std::optional(Level) : std::nullopt;
}

/// The byte that was framed and driven from `First` on, when it was one.
std::optional<std::uint8_t> WholeByte(Samples Stream, std::int64_t First) noexcept
{
    unsigned Value = 0;
    for (int k = 0; k < 8; ++k) {
        const auto Level = WholeBit(Stream, First + Bit * (k + 1));
        if (!Level) {
            return std::nullopt;
        }
        Value |= static_cast<unsigned>(*Level) << k;
    }
    const bool Framed = WholeBit(Stream, First) == 0 && WholeBit(Stream, First + 9 * Bit) == 1;
    return Framed ? std::optional(static_cast<std::uint8_t>(Value)) : std::nullopt;
}

/// The data bits of the byte with this start edge, each judged by its middle.
std::uint8_t ReceivedByte(Samples Stream, std::int64_t StartEdge) noexcept
{
    unsigned Value = 0;
    for (int k = 0; k < 8; ++k) {
        Value |= static_cast<unsigned>(LevelAt(Stream, StartEdge + Bit * (k + 1) + Bit / 2)) << k;
    }
    return static_cast<std::uint8_t>(Value);
}

} // namespace

FrameDecoder::FrameDecoder(Handler OnEvent) : OnEvent_(std::move(OnEvent)) {}

void FrameDecoder::OnStream(const SampleStream& Stream)
{
    BusEvent Event;
    Event.Stream = Stream;
    Event.Seconds = Stream.Seconds(0);
    if (Stream.ReadBack) {
        DecodeExchange(Event);
    } else {
        const std::int64_t BreakEnd = FindLevel(Stream.Tx, 0, Stream.Samples(), 1);
        if (!IsSilent(Stream.Tx, BreakEnd, Stream.Samples())) {
            Event.Kind = BusEventKind::Other;
        } else if (BreakEnd > 0) {
            Event.Kind = BusEventKind::Break;
            Event.BreakSamples = BreakEnd;
        }
    }
    OnEvent_(Event);
}

void FrameDecoder::DecodeExchange(BusEvent& Event)
{
    if (!DecodeHeader(Event) || !DecodeSent(Event)) {
        BusEvent Other;
        Other.Kind = BusEventKind::Other;
        Other.Stream = Event.Stream;
        Other.Seconds = Event.Seconds;
        Event = Other;
        return;
    }
    DecodeReceived(Event);
}

bool FrameDecoder::DecodeHeader(BusEvent& Event)
{
    const Samples Tx = Event.Stream.Tx;
    const std::int64_t BreakEnd = FindLevel(Tx, 0, Event.Stream.Samples(), 1);
    Event.BreakSamples = BreakEnd;
    Event.ResponseBegin = BreakEnd + Bit + 2 * FramedByte;
    if (Event.ResponseBegin > Event.Stream.Samples()) {
        return false;
    }
    const auto Delimiter = WholeBit(Tx, BreakEnd);
    const auto SyncByte = WholeByte(Tx, BreakEnd + Bit);
    const auto Identifier = WholeByte(Tx, BreakEnd + Bit + FramedByte);
    if (Delimiter != 1 || !SyncByte || !Identifier) {
        return false;
    }
    Event.SyncByte = *SyncByte;
    Event.ProtectedIdentifier = *Identifier;
    return true;
}

bool FrameDecoder::DecodeSent(BusEvent& Event)
{
    const Samples Tx = Event.Stream.Tx;
    const std::int64_t End = Event.Stream.Samples();
    Event.ResponseEnd = End - (End - Event.ResponseBegin) % FramedByte;
    if (IsSilent(Tx, Event.ResponseBegin, End)) {
        Event.Kind = BusEventKind::Read;
        return true;
    }
    Sent_.clear();
    for (std::int64_t First = Event.ResponseBegin; First < Event.ResponseEnd; First += FramedByte) {
        const auto Byte = WholeByte(Tx, First);
        if (!Byte) {
            return false;
        }
        Sent_.push_back(*Byte);
    }
    Event.Kind = BusEventKind::Write;
    Event.Sent = Sent_;
    return IsSilent(Tx, Event.ResponseEnd, End);
}

void FrameDecoder::DecodeReceived(BusEvent& Event)
{
    const Samples Rx = Event.Stream.Rx;
    const std::int64_t End = Event.ResponseEnd;
    Received_.clear();
    StartEdges_.clear();
    std::int64_t Edge = FindLevel(Rx, Event.ResponseBegin, End, 0);
    const auto Stop = [&Event, &Edge](ResponseFault Fault, std::int64_t Sample) {
        Event.Fault = Fault;
        Event.FaultStartEdge = Edge;
        Event.FaultSample = Sample;
    };
    while (Edge != End && Event.Fault == ResponseFault::None) {
        const std::int64_t StartBit = Edge + Bit / 2;
        const std::int64_t StopBit = StartBit + 9 * Bit;
        if (StartBit < End && LevelAt(Rx, StartBit) != 0) {
            Stop(ResponseFault::StartBit, StartBit);
        } else if (StopBit >= End) {
            Stop(ResponseFault::Truncated, End);
        } else if (LevelAt(Rx, StopBit) != 1) {
            Stop(ResponseFault::StopBit, StopBit);
        } else {
            Received_.push_back(ReceivedByte(Rx, Edge));
            StartEdges_.push_back(Edge);
            Edge = FindLevel(Rx, StopBit, End, 0);
        }
    }
    Event.Received = Received_;
    Event.StartEdges = StartEdges_;
}

} // namespace Pellumo
