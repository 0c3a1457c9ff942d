/// @file
/// Turns sample streams into bus events.
#pragma once

#include "pellumo/Export.h"
#include "pellumo/recording/BusEvent.h"
#include "pellumo/recording/SampleStream.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace Pellumo {

/// Hands an event to its handler for every stream, whatever the stream is.
///
/// What was sent is told from the samples driven, each piece at its exact place; what was received is decoded from the
/// samples read, by the rules of the signalling engine:
///
///     start edge   the first dominant sample, at once or after any pause
///     start bit    sample +4 must be dominant
///     data bits    samples +12, +20 .. +68
///     stop bit     sample +76 must be recessive; the next byte is looked for from there
///
/// Unlike the engine it sets no limit to the number of bytes. It allocates only for responses longer than any before.
class PELLUMO_API FrameDecoder : public SampleListener {
public:
    /// Receives an event; its views are valid during the call.
    using Handler = std::function<void(const BusEvent&)>;

    /// @param OnEvent  called for every stream in turn; what it throws reaches the caller of the bus operation
    explicit FrameDecoder(Handler OnEvent);

    void OnStream(const SampleStream& Stream) override;

private:
    void DecodeExchange(BusEvent& Event);
    static bool DecodeHeader(BusEvent& Event);
    bool DecodeSent(BusEvent& Event);
    void DecodeReceived(BusEvent& Event);

    Handler OnEvent_;
    std::vector<std::uint8_t> Sent_;
    std::vector<std::uint8_t> Received_;
    std::vector<std::int64_t> StartEdges_;
};

} // namespace Pellumo
