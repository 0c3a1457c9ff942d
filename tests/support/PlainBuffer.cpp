#include "tests/support/PlainBuffer.h"

#include "tarvix/common/CheckedArithmetic.h"
#include "tarvix/common/ErrorNumbers.h"

#include <cstddef>

namespace Tarvix::Testing {

void PlainBuffer::Initialize(std::int32_t OversamplingRatio, std::int32_t IdleValue)
{
    OversamplingRatio_ = OversamplingRatio;
    IdleValue_ = IdleValue;
}

void PlainBuffer::InitializeData(std::int32_t Samples, std::int32_t Bits)
{
    const std::int32_t Total = CheckedAdd(Samples, CheckedMultiply(OversamplingRatio_, Bits));
    if (Total < 0) {
        Raise(errGeneral::errInvalidArgument);
    }
    AllocatedLength_ = Total / 8 + (Total % 8 != 0 ? 1 : 0);
    Bytes_.assign(static_cast<std::size_t>(AllocatedLength_), static_cast<std::uint8_t>(IdleValue_ * 255));
    Length_ = 0;
}

void PlainBuffer::WriteSamples(std::int32_t Samples, std::int32_t Value)
{
    if (Samples < 0) {
        Raise(errGeneral::errInvalidArgument);
    }
    for (std::int32_t i = 0; i < Samples; ++i) {
        const std::int32_t Index = CheckedAdd(Length_, i);
        if (Index / 8 >= AllocatedLength_) {
            ExtendData(32);
        }
        auto& Byte = Bytes_[static_cast<std::size_t>(Index / 8)];
        Byte = static_cast<std::uint8_t>(Byte & ~(1 << Index % 8));
        if (Value == 1) {
            Byte = static_cast<std::uint8_t>(Byte | 1 << Index % 8);
        }
    }
    Length_ = CheckedAdd(Length_, Samples);
}

void PlainBuffer::WriteBit(std::int32_t Value)
{
    WriteSamples(OversamplingRatio_, Value);
}

void PlainBuffer::WriteByteLSB(std::uint8_t DataByte)
{
    for (int k = 0; k <= 7; ++k) {
        WriteBit(DataByte >> k & 1);
    }
}

void PlainBuffer::WriteByteMSB(std::uint8_t DataByte)
{
    for (int k = 7; k >= 0; --k) {
        WriteBit(DataByte >> k & 1);
    }
}

void PlainBuffer::InputData(std::span<const std::uint8_t> Data, std::int32_t DataLengthSamples,
                            std::int32_t StartSamplePoint)
{
    Bytes_.assign(Data.begin(), Data.end());
    AllocatedLength_ = 0;
    Length_ = DataLengthSamples;
    Position_ = StartSamplePoint;
}

std::int32_t PlainBuffer::CurrentSample() const
{
    if (EndOfData()) {
        Raise(errOversamplingBuffer::errNoMoreData, "clsOversamplingBuffer",
              "Cannot sample input signal, no more data");
    }
    if (Position_ < 0 || static_cast<std::size_t>(Position_ / 8) >= Bytes_.size()) {
        Raise(errGeneral::errIndexOutOfRange);
    }
    return Bytes_[static_cast<std::size_t>(Position_ / 8)] >> Position_ % 8 & 1;
}

bool PlainBuffer::WaitForSample(std::int32_t Value)
{
    while (CurrentSample() != Value) {
        ++Position_;
        if (Position_ == Length_) {
            return false;
        }
    }
    return true;
}

std::int32_t PlainBuffer::SampleBit()
{
    const std::int32_t Start = Position_;
    Position_ = CheckedAdd(Start, OversamplingRatio_ / 2);
    const std::int32_t Sample = CurrentSample();
    Position_ = CheckedAdd(Start, OversamplingRatio_);
    return Sample;
}

std::int32_t PlainBuffer::SampleHalfBit()
{
    Position_ = CheckedAdd(Position_, OversamplingRatio_ / 2);
    return CurrentSample();
}

std::uint8_t PlainBuffer::SampleByteLSB()
{
    int DataByte = 0;
    for (int k = 0; k <= 7; ++k) {
        DataByte |= SampleBit() << k;
    }
    return static_cast<std::uint8_t>(DataByte);
}

std::uint8_t PlainBuffer::SampleByteMSB()
{
    int DataByte = 0;
    for (int k = 7; k >= 0; --k) {
        DataByte |= SampleBit() << k;
    }
    return static_cast<std::uint8_t>(DataByte);
}

void PlainBuffer::ExtendData(std::int32_t Bytes)
{
    AllocatedLength_ = CheckedAdd(AllocatedLength_, Bytes);
    Bytes_.resize(static_cast<std::size_t>(AllocatedLength_), static_cast<std::uint8_t>(IdleValue_ * 255));
}

PlainEngine::PlainEngine(FTDIMPSSE& Device) : Device_(Device)
{
    Buffer_.Initialize(8, 1);
}

void PlainEngine::LINTransmit(std::int32_t BreakWidth, std::uint8_t SyncField, std::uint8_t ID,
                              std::span<const std::uint8_t> TxData, std::int32_t TxDataLen)
{
    Buffer_.InitializeData(BreakWidth, CheckedAdd(CheckedMultiply(10, TxDataLen), 21));
    WriteHeader(BreakWidth, SyncField, ID);
    const std::int32_t StartSamplePoint = Buffer_.DataLengthSamples();
    for (std::int32_t i = 0; i < TxDataLen; ++i) {
        if (static_cast<std::size_t>(i) >= TxData.size()) {
            Raise(errGeneral::errIndexOutOfRange);
        }
        WriteFramed(TxData[static_cast<std::size_t>(i)]);
    }
    Exchange(StartSamplePoint);
    std::int32_t Count = 0;
    while (!Buffer_.EndOfData()) {
        if (!Buffer_.WaitForSample(0)) {
            continue;
        }
        const std::uint8_t Received = ReadFramed();
        if (static_cast<std::size_t>(Count) >= TxData.size()) {
            Raise(errGeneral::errIndexOutOfRange);
        }
        if (TxData[static_cast<std::size_t>(Count)] != Received) {
            Raise(errLINViaFTDIMPSSE::errTxRxMismatch, "clsLINViaFTDIMPSSE", "Transmission corrupted, Tx <> Rx");
        }
        ++Count;
    }
    if (Count != TxDataLen) {
        Raise(errLINViaFTDIMPSSE::errTxRxMismatch, "clsLINViaFTDIMPSSE", "Transmission corrupted, Tx <> Rx");
    }
}

void PlainEngine::LINReceive(std::int32_t BreakWidth, std::uint8_t SyncField, std::uint8_t ID,
                             std::span<std::uint8_t> RxData, std::int32_t& RxDataLen)
{
    Buffer_.InitializeData(BreakWidth, 161);
    WriteHeader(BreakWidth, SyncField, ID);
    const std::int32_t StartSamplePoint = Buffer_.DataLengthSamples();
    for (int Slot = 0; Slot < 14; ++Slot) {
        Buffer_.WriteBit(1);
        Buffer_.WriteByteLSB(0xFF);
        Buffer_.WriteBit(1);
    }
    Exchange(StartSamplePoint);
    RxDataLen = 0;
    while (!Buffer_.EndOfData()) {
        if (!Buffer_.WaitForSample(0)) {
            continue;
        }
        const std::uint8_t Received = ReadFramed();
        if (static_cast<std::size_t>(RxDataLen) >= RxData.size()) {
            Raise(errGeneral::errIndexOutOfRange);
        }
        RxData[static_cast<std::size_t>(RxDataLen)] = Received;
        ++RxDataLen;
    }
}

void PlainEngine::WriteFramed(std::uint8_t DataByte)
{
    Buffer_.WriteBit(0);
    Buffer_.WriteByteLSB(DataByte);
    Buffer_.WriteBit(1);
}

void PlainEngine::WriteHeader(std::int32_t BreakWidth, std::uint8_t SyncField, std::uint8_t ID)
{
    Buffer_.WriteSamples(BreakWidth, 0);
    Buffer_.WriteBit(1);
    WriteFramed(SyncField);
    WriteFramed(ID);
}

void PlainEngine::Exchange(std::int32_t StartSamplePoint)
{
    std::vector<std::uint8_t> Samples = Buffer_.Data();
    Device_.ExchangeSamples(Samples, Buffer_.DataLengthBytes(), 1, 0, 0);
    Buffer_.InputData(Samples, Buffer_.DataLengthSamples(), StartSamplePoint);
}

std::uint8_t PlainEngine::ReadFramed()
{
    if (Buffer_.SampleBit() != 0) {
        Raise(errLINViaFTDIMPSSE::errFraming, "clsLINViaFTDIMPSSE", "Framing error");
    }
    const std::uint8_t DataByte = Buffer_.SampleByteLSB();
    if (Buffer_.SampleHalfBit() != 1) {
        Raise(errLINViaFTDIMPSSE::errFraming, "clsLINViaFTDIMPSSE", "Framing error");
    }
    return DataByte;
}

} // namespace Tarvix::Testing
