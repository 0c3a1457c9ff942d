/// @file
/// The rules of the sample buffer and of the frame engine, one sample at a time, as plainly as they can be written:
/// what the fast code is compared with, by the tests for what it does and by the benchmarks for how fast.
#pragma once

#include "tarvix/signalling/FTDIMPSSE.h"

#include <cstdint>
#include <span>
#include <vector>

namespace Tarvix::Testing {

/// The operations of `clsOversamplingBuffer`.
class PlainBuffer {
public:
    void Initialize(std::int32_t OversamplingRatio, std::int32_t IdleValue);
    void InitializeData(std::int32_t Samples = 0, std::int32_t Bits = 0);
    void WriteSamples(std::int32_t Samples, std::int32_t Value);
    void WriteBit(std::int32_t Value);
    void WriteByteLSB(std::uint8_t DataByte);
    void WriteByteMSB(std::uint8_t DataByte);
    std::vector<std::uint8_t> Data() const { return Bytes_; }
    std::int32_t DataLengthSamples() const { return Length_; }
    std::int32_t DataLengthBytes() const { return Length_ / 8 + (Length_ % 8 > 0 ? 1 : 0); }
    void InputData(std::span<const std::uint8_t> Data, std::int32_t DataLengthSamples, std::int32_t StartSamplePoint);
    bool EndOfData() const { return Position_ >= Length_; }
    std::int32_t CurrentSample() const;
    bool WaitForSample(std::int32_t Value);
    std::int32_t SampleBit();
    std::int32_t SampleHalfBit();
    std::uint8_t SampleByteLSB();
    std::uint8_t SampleByteMSB();

private:
    void ExtendData(std::int32_t Bytes);

    std::int32_t OversamplingRatio_ = 0;
    std::int32_t IdleValue_ = 0;
    std::vector<std::uint8_t> Bytes_;
    std::int32_t AllocatedLength_ = 0;
    std::int32_t Length_ = 0;
    std::int32_t Position_ = 0;
};

/// The frame operations of `clsLINViaFTDIMPSSE`.
class PlainEngine {
public:
    explicit PlainEngine(FTDIMPSSE& Device);
    void LINTransmit(std::int32_t BreakWidth, std::uint8_t SyncField, std::uint8_t ID,
                     std::span<const std::uint8_t> TxData, std::int32_t TxDataLen);
    void LINReceive(std::int32_t BreakWidth, std::uint8_t SyncField, std::uint8_t ID, std::span<std::uint8_t> RxData,
                    std::int32_t& RxDataLen);

private:
    void WriteFramed(std::uint8_t DataByte);
    void WriteHeader(std::int32_t BreakWidth, std::uint8_t SyncField, std::uint8_t ID);
    void Exchange(std::int32_t StartSamplePoint);
    std::uint8_t ReadFramed();

    FTDIMPSSE& Device_;
    PlainBuffer Buffer_;
};

} // namespace Tarvix::Testing
