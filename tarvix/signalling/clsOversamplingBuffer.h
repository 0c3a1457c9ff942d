/// @file
/// One oversampled bit stream, built to be sent and then walked to be decoded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Tarvix {

/// A packed array of samples: sample n is bit (n mod 8) of byte (n div 8), 1 recessive, 0 dominant.
///
/// A stream is built after `InitializeData` and read after `InputData` or `RewindTo`; writing to a stream that is being
/// read is not supported. Each bit is judged by the one sample in its middle; there is no majority vote:
///
///     start edge e             e+4     e+12    e+20           e+68    e+76
///     1 1 1|0 0 0 0 0 0 0 0|. . . .|. . . .|. . .   ...   . . .|1 1 1 1 1 1 1 1
///                  ^start bit   ^bit 0    ^bit 1            ^bit 7     ^stop bit
///
/// All counts and positions are 32-bit; what leaves that range raises errOverflow. `InitializeData` and `WriteSamples`
/// change nothing then; what consists of several bits may have done some of them.
/// Work is done on whole bytes and words; the result is that of the sample-by-sample rules.
class clsOversamplingBuffer {
public:
    /// @param OversamplingRatio  samples per bit
    /// @param IdleValue          0 or 1, the level of every sample not yet written
    void Initialize(std::int32_t OversamplingRatio, std::int32_t IdleValue) noexcept;

    // -- building

    /// Starts an empty stream with room for exactly `Samples` + ratio * `Bits` samples. The read position stays.
    /// @throws Error  errInvalidArgument when that is negative, errOverflow
    void InitializeData(std::int32_t Samples = 0, std::int32_t Bits = 0);

    /// Appends `Samples` samples of `Value`; a full array grows by 32 bytes at a time.
    /// @throws Error  errInvalidArgument for a negative count, errOverflow
    void WriteSamples(std::int32_t Samples, std::int32_t Value);
    /// Appends one bit: ratio samples.
    void WriteBit(std::int32_t Value);
    /// Appends eight bits, bit 0 first.
    void WriteByteLSB(std::uint8_t DataByte);
    /// Appends eight bits, bit 7 first.
    void WriteByteMSB(std::uint8_t DataByte);
    /// Appends bytes as they go on the bus, each with a start bit 0, eight bits with bit 0 first, and a stop bit 1.
    void WriteFramedBytes(std::span<const std::uint8_t> DataBytes);

    /// A copy of the whole array.
    std::vector<std::uint8_t> Data() const { return Bytes_; }
    /// The whole array itself, to be exchanged in place; valid until the stream is next written or replaced.
    std::span<std::uint8_t> Stream() noexcept { return Bytes_; }
    /// Samples written, or valid for reading.
    std::int32_t DataLengthSamples() const noexcept { return Length_; }
    /// Bytes that these samples take.
    std::int32_t DataLengthBytes() const noexcept { return Length_ / 8 + (Length_ % 8 > 0 ? 1 : 0); }

    // -- reading

    /// Replaces the stream by a copy of `Data`, to be read from `StartSamplePoint` on.
    void InputData(std::span<const std::uint8_t> Data, std::int32_t DataLengthSamples, std::int32_t StartSamplePoint);
    /// As `InputData` with what the array holds now: the stream that came back in place of the one that was built.
    void RewindTo(std::int32_t StartSamplePoint) noexcept { Position_ = StartSamplePoint; }

    /// True when the read position is at or beyond the length.
    bool EndOfData() const noexcept { return Position_ >= Length_; }
    /// The sample at the read position, which stays.
    /// @throws Error  errNoMoreData at or beyond the length, errIndexOutOfRange where the array has no such sample
    std::int32_t CurrentSample() const;
    /// Moves to the next sample equal to `Value`, this one included. False when there is none: then the stream is at
    /// its end.
    /// @throws Error  as `CurrentSample`
    bool WaitForSample(std::int32_t Value);
    /// Reads a bit at its middle and moves to the next bit; a failure leaves the read position at that middle.
    /// @throws Error  as `CurrentSample`
    std::int32_t SampleBit();
    /// Reads a bit at its middle and stays there.
    /// @throws Error  as `CurrentSample`
    std::int32_t SampleHalfBit();
    /// Eight bits, bit 0 first.
    /// @throws Error  as `CurrentSample`
    std::uint8_t SampleByteLSB();
    /// Eight bits, bit 7 first.
    /// @throws Error  as `CurrentSample`
    std::uint8_t SampleByteMSB();
    /// Reads bytes with their start and stop bits, each found by its start edge, for as long as all is well: what
    /// `WaitForSample`(0), `SampleBit`, `SampleByteLSB`, `SampleHalfBit` would read in turn. Stops at the end of the
    /// stream, when `DataBytes` is full, and on the start edge of a byte with a fault, for those operations to find it.
    /// @return how many bytes were read
    std::size_t SampleFramedRun(std::span<std::uint8_t> DataBytes) noexcept;

private:
    void ReserveSamples(std::int32_t Length);
    std::uint8_t IdleByte() const;
    std::int64_t ReadableSamples() const noexcept;

    std::int32_t OversamplingRatio_ = 0;
    std::int32_t IdleValue_ = 0;
    std::vector<std::uint8_t> Bytes_;
    std::int32_t Length_ = 0;
    std::int32_t Position_ = 0;
};

} // namespace Tarvix
