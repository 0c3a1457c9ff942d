#include "tarvix/common/Raise.h"
#include "tarvix/master/VariantBytes.h"
#include "tarvix/master/clsLIN.h"

#include <cstddef>

namespace Tarvix {

namespace {

void RequireData(bool Available)
{
    if (!Available) {
        Raise(errLIN::errNoData, "clsLIN", "No data available");
    }
}

bool EqualUnderMask(std::uint8_t A, std::uint8_t B, std::uint8_t Mask) noexcept
{
    return (A & Mask) == (B & Mask);
}

} // namespace

std::uint8_t clsLIN::ID() const
{
    RequireData(FrameIDValid_);
    return FrameID_;
}

std::int32_t clsLIN::DataLength() const
{
    RequireData(FrameByteCount_ != 0);
    return FrameByteCount_ - 1;
}

std::array<std::uint8_t, 9> clsLIN::Data() const
{
    RequireData(FrameByteCount_ != 0);
    return FrameBuffer_;
}

std::uint8_t clsLIN::Checksum() const
{
    RequireData(FrameByteCount_ != 0);
    return FrameBuffer_[static_cast<std::size_t>(FrameByteCount_) - 1];
}

Variant clsLIN::Data2() const
{
    return BytesToVariant(Data(), DataLength());
}

bool clsLIN::CheckChksum(std::uint8_t ExpectedChecksum, std::uint8_t ChecksumMask) const
{
    return EqualUnderMask(Checksum(), ExpectedChecksum, ChecksumMask);
}

bool clsLIN::CheckData(std::int32_t ExpectedDataLength, std::span<const std::uint8_t> ExpectedData,
                       std::span<const std::uint8_t> DataMask) const
{
    if (ExpectedDataLength != DataLength()) {
        Raise(errLIN::errDataLength, "clsLIN", "Data length mismatch");
    }
    const auto Count = static_cast<std::size_t>(ExpectedDataLength);
    if (ExpectedData.size() < Count || DataMask.size() < Count) {
        Raise(errGeneral::errIndexOutOfRange);
    }
    bool Result = true;
    for (std::size_t i = 0; i < Count; ++i) {
        Result = Result && EqualUnderMask(FrameBuffer_[i], ExpectedData[i], DataMask[i]);
    }
    return Result;
}

bool clsLIN::CheckData2(std::int32_t ExpectedDataLength, const Variant& ExpectedData2, const Variant& DataMask2) const
{
    const auto ExpectedData = VariantToBytes(ExpectedData2, ExpectedDataLength);
    const auto DataMask = VariantToBytes(DataMask2, ExpectedDataLength);
    return CheckData(ExpectedDataLength, ExpectedData, DataMask);
}

} // namespace Tarvix
