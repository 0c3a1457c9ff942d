#include "tarvix/common/Formating.h"
#include "tarvix/common/Raise.h"
#include "tarvix/master/Checksums.h"
#include "tarvix/master/VariantBytes.h"
#include "tarvix/master/clsLIN.h"
#include "tarvix/script/clsLINScriptSynthesizer.h"
#include "tarvix/signalling/clsLINViaFTDIMPSSE.h"

#include <cstddef>

namespace Tarvix {

namespace {

void RequireDataLength(std::int32_t DataLength)
{
    if (DataLength < 1 || DataLength > 8) {
        Raise(errLIN::errParameter, "clsLIN", "Invalid number of data bytes");
    }
}

} // namespace

void clsLIN::WriteFrame(std::uint8_t IDbyte, std::int32_t DataLength, std::span<const std::uint8_t> TxData,
                        const std::optional<Variant>& Chksum)
{
    RequireDataLength(DataLength);
    FrameIDValid_ = false;
    FrameByteCount_ = 0;
    FrameID_ = IDbyte;

    const auto Count = static_cast<std::size_t>(DataLength);
    for (std::size_t i = 0; i < Count; ++i) {
        if (i >= TxData.size()) {
            Raise(errGeneral::errIndexOutOfRange);
        }
        FrameBuffer_[i] = TxData[i];
    }
    FrameBuffer_[Count] = Chksum ? Chksum->ToByte() : ComputeChecksum(IDbyte, DataLength, FrameBuffer_);
    Engine().LINTransmit(BreakSamples_, SyncByte_, FrameID_, FrameBuffer_, DataLength + 1);

    FrameIDValid_ = true;
    FrameByteCount_ = DataLength + 1;
    if (Log_ != nullptr) {
        Log_->LogEntry(Synthesizer_->ScriptWriteFrame(IDbyte, DataLength, TxData, Chksum));
    }
}

bool clsLIN::ReadFrame(std::uint8_t IDbyte, std::int32_t ExpectedLength, bool ChksumCheck)
{
    RequireDataLength(ExpectedLength);
    FrameIDValid_ = false;
    FrameByteCount_ = 0;
    FrameID_ = IDbyte;

    std::int32_t Received = 0;
    Engine().LINReceive(BreakSamples_, SyncByte_, FrameID_, FrameBuffer_, Received);
    FrameByteCount_ = Received;
    FrameIDValid_ = true;
    if (Received == 0) {
        return false;
    }
    if (Received != ExpectedLength + 1) {
        Raise(errLIN::errResponseLength, "clsLIN",
              FormatText("Unexpected length of response (%1 bytes)", {Variant(Received)}));
    }
    if (Log_ != nullptr) {
        Log_->LogEntry(Synthesizer_->ScriptReadFrame(IDbyte, ExpectedLength));
    }
    if (ChksumCheck && ComputeChecksum(FrameID_, DataLength(), FrameBuffer_) != Checksum()) {
        Raise(errLIN::errChksum, "clsLIN", "Rx checksum error");
    }
    return true;
}

void clsLIN::WriteFrame2(std::uint8_t IDbyte, std::int32_t DataLength, const Variant& TxData2,
                         const std::optional<Variant>& Chksum)
{
    WriteFrame(IDbyte, DataLength, VariantToBytes(TxData2, DataLength), Chksum);
}

std::uint8_t clsLIN::ComputeIDParity(std::uint8_t ID) noexcept
{
    const auto Bit = [ID](int k) { return ID >> k & 1; };
    const int P0 = Bit(0) ^ Bit(1) ^ Bit(2) ^ Bit(4);
    const int P1 = 1 ^ Bit(1) ^ Bit(3) ^ Bit(4) ^ Bit(5);
    return static_cast<std::uint8_t>(P1 << 7 | P0 << 6 | (ID & 0x3F));
}

std::uint8_t clsLIN::ComputeChecksum(std::uint8_t IDbyte, std::int32_t DataLength,
                                     std::span<const std::uint8_t> Bytes) const
{
    return ChecksumMode_ == elcLIN13 ? ClassicChecksum(DataLength, Bytes) : EnhancedChecksum(IDbyte, DataLength, Bytes);
}

} // namespace Tarvix
