/// @file
/// Sample streams for tests and benchmarks of the simulated bus: how a commander writes them, and how it reads them.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <span>
#include <vector>

namespace Pellumo::Testing {

using Bytes = std::vector<std::uint8_t>;

/// 8 samples to a bit, as the pieces of a frame follow each other.
class CommanderStream {
public:
    static constexpr std::size_t SamplesPerBit = 8;
    static constexpr std::size_t BreakSamples = 13 * SamplesPerBit;
    /// Samples from the start of the break to the end of the identifier, for a break of `BreakSamples`.
    static constexpr std::size_t HeaderSamples = BreakSamples + 21 * SamplesPerBit;

    CommanderStream& Level(std::size_t Samples, int Value);
    CommanderStream& Break(std::size_t Samples = BreakSamples); ///< with a delimiter of one bit
    CommanderStream& Byte(std::uint8_t Value);                  ///< framed by start and stop bit
    CommanderStream& Header(std::uint8_t ProtectedIdentifier);  ///< break, sync field, identifier
    CommanderStream& Idle(std::size_t Bits);                    ///< recessive
    CommanderStream& Request(std::uint8_t ProtectedIdentifier); ///< header and 14 byte slots for the answer
    CommanderStream& Frame(std::uint8_t ProtectedIdentifier,
                           const Bytes& Response); ///< header and bytes, then 1 bit idle

    std::size_t Samples() const noexcept { return Samples_; }
    /// The stream, filled up with recessive samples to whole bytes.
    const Bytes& Data() const noexcept { return Data_; }

private:
    Bytes Data_;
    std::size_t Samples_ = 0;
};

/// What a commander makes of the samples it read: each byte found by its start edge, every bit judged by one sample,
/// the first of them 4 samples after the edge and then one every 8.
struct Decoded {
    Bytes Received;
    bool FramingError = false;
    bool operator==(const Decoded&) const = default;
    friend std::ostream& operator<<(std::ostream& Stream, const Decoded& Value);
};

/// Decodes from sample `First` on.
Decoded Decode(std::span<const std::uint8_t> Samples, std::size_t First);

/// The first dominant sample from `First` on; the number of samples if there is none.
std::size_t FirstDominant(std::span<const std::uint8_t> Samples, std::size_t First);

} // namespace Pellumo::Testing
