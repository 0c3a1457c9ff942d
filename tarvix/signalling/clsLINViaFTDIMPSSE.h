/// @file
/// The signalling engine: bus actions as sample streams.
///
/// A frame on the bus, 8 samples to a bit; the pieces follow each other without a gap:
///
///     |  break   |delimiter|  sync  |   ID   | data bytes and checksum, or 14 slots for the answer |
///     |BreakWidth|    8    |   80   |   80   | 80 each                                              |
///     |dominant  |recessive| start bit 0, eight data bits with bit 0 first, stop bit 1             |
///                                            ^ decoding of what was read back starts here
///
/// A byte is found by its start edge, the first dominant sample after the middle of the previous stop bit, so bytes may
/// come with any pause between them. Each bit is judged by the one sample in its middle. What was read back of break,
/// sync field and identifier is not examined.
#pragma once

#include "tarvix/signalling/FTDIMPSSE.h"
#include "tarvix/signalling/clsOversamplingBuffer.h"

#include <cstdint>
#include <span>

namespace Tarvix {

/// Puts waits, breaks and frames on the bus through a device that it holds without owning it. Every operation makes one
/// call of the device; a failure of the device reaches the caller unchanged. Lengths are samples, one eighth of a bit
/// time each.
///
/// Once warm (the buffer has held a stream of that length) no operation allocates memory.
class clsLINViaFTDIMPSSE {
public:
    /// The one ratio of the library: the buffer's oversampling, the clock asked of the device and both conversions.
    static constexpr std::int32_t SamplesPerBit = 8;

    clsLINViaFTDIMPSSE();

    /// Holds the device, replacing any earlier one, and sets up its pins and mode. The device stays held when that
    /// fails.
    void AttachDevice(FTDIMPSSE& Device);
    /// Lets go of the device.
    void ReleaseDevice() noexcept { Device_ = nullptr; }

    /// Asks the device for eight samples per `tBit` and keeps the clock that it achieves.
    /// @param tBit    seconds per bit
    /// @throws Error  errDivisionByZero for a `tBit` of which an eighth is 0 and for a device whose clock is 0,
    ///                errNotAttached; the sample period then keeps its earlier value
    void SetBitPeriod(float tBit);
    /// Seconds per bit as the device achieves it; 0 before the first `SetBitPeriod`.
    float tBit() const noexcept { return SamplesPerBit * SamplePeriod_; }

    /// Bit times as samples, rounded half to even.
    /// @throws Error  errOverflow
    static std::int32_t BitsToSamples(float Bits);
    /// Samples as bit times.
    static float SamplesToBits(std::int32_t Samples) noexcept;

    /// Keeps the bus recessive for `Length` samples, rounded up to a whole byte of them.
    /// @throws Error  errInvalidArgument for a negative length, errNotAttached; nothing is sent
    void LINWait(std::int32_t Length);
    /// Puts a break on the bus: `BreakWidth` samples dominant, then one bit time recessive (the delimiter).
    /// @throws Error  errInvalidArgument for a negative width, errOverflow, errNotAttached; nothing is sent
    void LINBreak(std::int32_t BreakWidth);

    /// Sends a whole frame and proves by reading back that the bus carried each byte of `TxData` as sent.
    /// @param TxDataLen  bytes of `TxData` to send
    /// @throws Error  before anything is sent: errInvalidArgument for a negative length or width, errOverflow,
    ///                errIndexOutOfRange when `TxData` is shorter than `TxDataLen`, errNotAttached; after the frame has
    ///                been on the bus: errFraming, errTxRxMismatch, errNoMoreData, errIndexOutOfRange when more bytes
    ///                came back than `TxData` has
    void LINTransmit(std::int32_t BreakWidth, std::uint8_t SyncField, std::uint8_t ID,
                     std::span<const std::uint8_t> TxData, std::int32_t TxDataLen);
    /// Sends a header, leaves the bus recessive for 14 byte slots, and decodes what a slave sent there.
    /// @param RxData     receives the bytes in order of arrival
    /// @param RxDataLen  their number, 0 when nothing came; right also after a failure of the decoding
    /// @throws Error  before anything is sent: errInvalidArgument for a negative width, errOverflow, errNotAttached;
    ///                after it: errFraming, errNoMoreData, errIndexOutOfRange when more bytes came than fit
    void LINReceive(std::int32_t BreakWidth, std::uint8_t SyncField, std::uint8_t ID, std::span<std::uint8_t> RxData,
                    std::int32_t& RxDataLen);

private:
    FTDIMPSSE& Device() const;
    void WriteBreak(std::int32_t BreakWidth);
    void WriteHeader(std::int32_t BreakWidth, std::uint8_t SyncField, std::uint8_t ID);
    void SendStream();
    void ExchangeStream(std::int32_t StartSamplePoint);
    template <typename TakeByte>
    void DecodeBytes(TakeByte Take);
    /// At the start edge of a byte with a fault: the stream ends before its stop bit, or it is not framed.
    [[noreturn]] void RaiseFaultOfByte();

    FTDIMPSSE* Device_ = nullptr;
    clsOversamplingBuffer Buffer_;
    float SamplePeriod_ = 0.0F;
};

} // namespace Tarvix
