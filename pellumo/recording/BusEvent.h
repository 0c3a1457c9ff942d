/// @file
/// One stream of samples, understood: what the commander did on the bus and what came back.
#pragma once

#include "pellumo/recording/SampleStream.h"

#include <cstdint>
#include <span>

namespace Pellumo {

/// What the commander did, told from the samples that it drove.
enum class BusEventKind : std::uint8_t {
    Wait,  ///< kept the bus recessive; nothing was read back
    Break, ///< a break and its delimiter; nothing was read back
    Write, ///< a header and the bytes of the response
    Read,  ///< a header and silence in which a slave may answer
    Other  ///< none of these: not a stream of the signalling engine
};

/// Why decoding ended before the end of the stream.
enum class ResponseFault : std::uint8_t {
    None,
    StartBit, ///< recessive in the middle of a start bit: a dominant pulse shorter than half a bit time
    StopBit,  ///< dominant in the middle of a stop bit
    Truncated ///< a byte begins so late that the stream ends before its stop bit
};

/// A view of one stream; everything it refers to is valid during the call that hands it over. Positions are sample
/// indexes in `Stream`.
struct BusEvent {
    BusEventKind Kind = BusEventKind::Wait; ///< what the commander did
    SampleStream Stream;                    ///< all of its samples
    double Seconds = 0.0;                   ///< bus time at which the stream starts

    std::int64_t BreakSamples = 0;        ///< width of the break; 0 for Wait and Other
    std::uint8_t SyncByte = 0;            ///< Write and Read: as sent
    std::uint8_t ProtectedIdentifier = 0; ///< Write and Read: the identifier byte as sent, parity bits included
    std::span<const std::uint8_t> Sent;   ///< Write: data and checksum as driven

    /// Write and Read: the bytes seen on the bus after the header, found by their start edges and judged by the sample
    /// in the middle of each bit, up to the end or to the first fault.
    std::span<const std::uint8_t> Received;
    std::span<const std::int64_t> StartEdges; ///< the first dominant sample of each byte in `Received`
    std::int64_t ResponseBegin = 0;           ///< Write and Read: the sample after the identifier's stop bit
    std::int64_t ResponseEnd = 0; ///< Write and Read: where decoding ends; what follows fills the stream's last byte
    ResponseFault Fault = ResponseFault::None; ///< Write and Read: why decoding ended early, if it did
    std::int64_t FaultStartEdge = 0;           ///< the first dominant sample of the byte at fault
    std::int64_t FaultSample = 0;              ///< the sample that showed the fault; `ResponseEnd` for Truncated
};

} // namespace Pellumo
