#include "tarvix/common/CheckedArithmetic.h"
#include "tarvix/common/ErrorNumbers.h"
#include "tarvix/signalling/clsLINViaFTDIMPSSE.h"
#include "tarvix/signalling/eBit.h"

#include <array>
#include <cstddef>

namespace Tarvix {

namespace {

constexpr std::int32_t FramedBits = 10;                 // start bit, eight data bits, stop bit
constexpr std::int32_t HeaderBits = 1 + 2 * FramedBits; // delimiter, sync field, identifier field
constexpr std::int32_t ResponseBits = 14 * FramedBits;

[[noreturn]] void RaiseMismatch()
{
    Raise(errLINViaFTDIMPSSE::errTxRxMismatch, "clsLINViaFTDIMPSSE", "Transmission corrupted, Tx <> Rx");
}

[[noreturn]] void RaiseFraming()
{
    Raise(errLINViaFTDIMPSSE::errFraming, "clsLINViaFTDIMPSSE", "Framing error");
}

template <typename Byte>
Byte& At(std::span<Byte> Bytes, std::int32_t Index)
{
    if (static_cast<std::size_t>(Index) >= Bytes.size()) {
        Raise(errGeneral::errIndexOutOfRange);
    }
    return Bytes[static_cast<std::size_t>(Index)];
}

} // namespace

// Hands over the bytes that came back, each as soon as it is judged, so that the first fault decides.
template <typename TakeByte>
void clsLINViaFTDIMPSSE::DecodeBytes(TakeByte Take)
{
    std::array<std::uint8_t, 16> Run; // NOLINT(cppcoreguidelines-pro-type-member-init): written before it is read
    while (!Buffer_.EndOfData()) {
        const std::size_t Count = Buffer_.SampleFramedRun(Run);
        for (std::size_t i = 0; i < Count; ++i) {
            Take(Run[i]);
        }
        // A run that ends early ends with the stream or at a fault.
        if (Count < Run.size() && !Buffer_.EndOfData()) {
            RaiseFaultOfByte();
        }
    }
}

void clsLINViaFTDIMPSSE::LINTransmit(std::int32_t BreakWidth, std::uint8_t SyncField, std::uint8_t ID,
                                     std::span<const std::uint8_t> TxData, std::int32_t TxDataLen)
{
    if (TxDataLen < 0) {
        Raise(errGeneral::errInvalidArgument);
    }
    Buffer_.InitializeData(BreakWidth, CheckedAdd(CheckedMultiply(FramedBits, TxDataLen), HeaderBits));
    WriteHeader(BreakWidth, SyncField, ID);
    const std::int32_t StartSamplePoint = Buffer_.DataLengthSamples();
    const auto Count = static_cast<std::size_t>(TxDataLen);
    if (Count > TxData.size()) {
        Raise(errGeneral::errIndexOutOfRange);
    }
    Buffer_.WriteFramedBytes(TxData.first(Count));
    ExchangeStream(StartSamplePoint);

    std::int32_t Received = 0;
    DecodeBytes([&](std::uint8_t DataByte) {
        if (At(TxData, Received) != DataByte) {
            RaiseMismatch();
        }
        ++Received;
    });
    if (Received != TxDataLen) {
        RaiseMismatch();
    }
}

void clsLINViaFTDIMPSSE::LINReceive(std::int32_t BreakWidth, std::uint8_t SyncField, std::uint8_t ID,
                                    std::span<std::uint8_t> RxData, std::int32_t& RxDataLen)
{
    Buffer_.InitializeData(BreakWidth, HeaderBits + ResponseBits);
    WriteHeader(BreakWidth, SyncField, ID);
    const std::int32_t StartSamplePoint = Buffer_.DataLengthSamples();
    Buffer_.WriteSamples(ResponseBits * SamplesPerBit, eb1);
    ExchangeStream(StartSamplePoint);

    RxDataLen = 0;
    DecodeBytes([&](std::uint8_t DataByte) {
        At(RxData, RxDataLen) = DataByte;
        ++RxDataLen;
    });
}

void clsLINViaFTDIMPSSE::WriteHeader(std::int32_t BreakWidth, std::uint8_t SyncField, std::uint8_t ID)
{
    WriteBreak(BreakWidth);
    const std::array<std::uint8_t, 2> Fields = {SyncField, ID};
    Buffer_.WriteFramedBytes(Fields);
}

void clsLINViaFTDIMPSSE::RaiseFaultOfByte()
{
    if (Buffer_.SampleBit() == eb0) {
        Buffer_.SampleByteLSB();
        Buffer_.SampleHalfBit();
    }
    RaiseFraming();
}

} // namespace Tarvix
