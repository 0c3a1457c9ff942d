#include "tarvix/signalling/clsOversamplingBuffer.h"

#include "tarvix/common/CheckedArithmetic.h"
#include "tarvix/common/ErrorNumbers.h"
#include "tarvix/signalling/PackedSamples.h"

#include <algorithm>
#include <bit>
#include <cstddef>

namespace Tarvix {

namespace {

constexpr std::int32_t GrowthBytes = 32;

// The word-wise roads are for the ratio that the bus is driven with: one byte of samples per bit.
constexpr std::int32_t ByteRatio = 8;
constexpr std::int32_t FramedSamples = 10 * ByteRatio;

std::size_t ByteOf(std::int32_t Sample) noexcept
{
    return static_cast<std::size_t>(Sample) / 8;
}

unsigned BitOf(std::int32_t Sample) noexcept
{
    return static_cast<unsigned>(Sample) % 8;
}

void Assign(std::uint8_t& Byte, unsigned Mask, bool One) noexcept
{
    Byte = static_cast<std::uint8_t>(One ? Byte | Mask : Byte & ~Mask);
}

// First <= Last: the samples First up to, not including, Last.
void Fill(std::span<std::uint8_t> Bytes, std::int32_t First, std::int32_t Last, bool One) noexcept
{
    const std::size_t FirstByte = ByteOf(First);
    const std::size_t LastByte = ByteOf(Last);
    const unsigned FromFirst = 0xFFU << BitOf(First);
    const unsigned BelowLast = 0xFFU >> (8 - BitOf(Last));
    if (FirstByte == LastByte) {
        if (First != Last) {
            Assign(Bytes[FirstByte], FromFirst & BelowLast, One);
        }
        return;
    }
    Assign(Bytes[FirstByte], FromFirst, One);
    std::fill(Bytes.begin() + static_cast<std::ptrdiff_t>(FirstByte) + 1,
              Bytes.begin() + static_cast<std::ptrdiff_t>(LastByte), One ? std::uint8_t{0xFF} : std::uint8_t{0});
    if (BelowLast != 0) {
        Assign(Bytes[LastByte], BelowLast, One);
    }
}

// The 80 samples of a framed byte, in time order a byte of zeros, the spread byte and a byte of ones, go to the bytes
// at `Position`, moved up by `Shift` samples; those before them stay as they are.
void PutFramedByte(std::uint8_t* Position, unsigned Shift, std::uint8_t DataByte) noexcept
{
    const std::uint64_t Spread = SpreadBits(DataByte);
    const std::uint64_t Low = Spread << 8;
    const std::uint64_t High = Spread >> 56 | 0xFF00;
    if (Shift == 0) {
        StoreWord(Position, Low);
        Position[8] = static_cast<std::uint8_t>(High);
        Position[9] = 0xFF;
        return;
    }
    const unsigned Before = Position[0] & ((1U << Shift) - 1);
    const std::uint64_t Upper = High << Shift | Low >> (64 - Shift);
    StoreWord(Position, Low << Shift | Before);
    Position[8] = static_cast<std::uint8_t>(Upper);
    Position[9] = static_cast<std::uint8_t>(Upper >> 8);
    Assign(Position[10], (1U << Shift) - 1, true);
}

// The first sample of `Wanted` at or after `First` and before `Limit`; else `Limit`.
std::int64_t Find(std::span<const std::uint8_t> Bytes, std::int64_t First, std::int64_t Limit, bool Wanted) noexcept
{
    const std::uint64_t Flip = Wanted ? 0 : ~std::uint64_t{0};
    const auto End = static_cast<std::size_t>((Limit + 7) / 8);
    auto Byte = static_cast<std::size_t>(First / 8);
    auto Bits = (Bytes[Byte] ^ Flip) & 0xFF & (std::uint64_t{0xFF} << (First % 8));
    while (Bits == 0) {
        ++Byte;
        while (Byte + 8 <= End && (Bits = LoadWord(&Bytes[Byte]) ^ Flip) == 0) {
            Byte += 8;
        }
        if (Bits != 0) {
            break;
        }
        if (Byte >= End) {
            return Limit;
        }
        Bits = (Bytes[Byte] ^ Flip) & 0xFF;
    }
    return std::min(Limit, static_cast<std::int64_t>(Byte) * 8 + std::countr_zero(Bits));
}

// The first dominant sample. From the middle of a stop bit it is four recessive samples to the next byte when there is
// no pause: to guess so costs little, and spares the processor to wait for each byte's place before it looks at the
// next one.
std::int64_t FindStartEdge(std::span<const std::uint8_t> Bytes, std::int64_t First, std::int64_t Limit) noexcept
{
    constexpr unsigned FourRecessiveOneDominant = 0x0F;
    if (First + ByteRatio < Limit) {
        const std::uint8_t* const Here = &Bytes[static_cast<std::size_t>(First / 8)];
        const unsigned Samples = Here[0] | unsigned{Here[1]} << 8;
        if ((Samples >> First % 8 & 0x1F) == FourRecessiveOneDominant) {
            return First + ByteRatio / 2;
        }
    }
    return Find(Bytes, First, Limit, false);
}

} // namespace

void clsOversamplingBuffer::Initialize(std::int32_t OversamplingRatio, std::int32_t IdleValue) noexcept
{
    OversamplingRatio_ = OversamplingRatio;
    IdleValue_ = IdleValue;
}

void clsOversamplingBuffer::InitializeData(std::int32_t Samples, std::int32_t Bits)
{
    const std::int32_t Total = CheckedAdd(Samples, CheckedMultiply(OversamplingRatio_, Bits));
    if (Total < 0) {
        Raise(errGeneral::errInvalidArgument);
    }
    Bytes_.assign(ByteOf(Total) + (BitOf(Total) != 0 ? 1 : 0), IdleByte());
    Length_ = 0;
}

void clsOversamplingBuffer::WriteSamples(std::int32_t Samples, std::int32_t Value)
{
    if (Samples < 0) {
        Raise(errGeneral::errInvalidArgument);
    }
    const std::int32_t NewLength = CheckedAdd(Length_, Samples);
    ReserveSamples(NewLength);
    Fill(Bytes_, Length_, NewLength, Value == 1);
    Length_ = NewLength;
}

void clsOversamplingBuffer::WriteBit(std::int32_t Value)
{
    WriteSamples(OversamplingRatio_, Value);
}

void clsOversamplingBuffer::WriteByteLSB(std::uint8_t DataByte)
{
    for (unsigned k = 0; k < 8; ++k) {
        WriteBit(DataByte >> k & 1);
    }
}

void clsOversamplingBuffer::WriteByteMSB(std::uint8_t DataByte)
{
    for (unsigned k = 8; k-- > 0;) {
        WriteBit(DataByte >> k & 1);
    }
}

void clsOversamplingBuffer::WriteFramedBytes(std::span<const std::uint8_t> DataBytes)
{
    if (OversamplingRatio_ != ByteRatio) {
        for (const std::uint8_t DataByte : DataBytes) {
            WriteBit(0);
            WriteByteLSB(DataByte);
            WriteBit(1);
        }
        return;
    }
    const auto Count = CheckedNarrow<std::int32_t>(static_cast<std::int64_t>(DataBytes.size()));
    const std::int32_t NewLength = CheckedAdd(Length_, CheckedMultiply(FramedSamples, Count));
    ReserveSamples(NewLength);
    std::uint8_t* Position = Bytes_.data() + ByteOf(Length_);
    for (const std::uint8_t DataByte : DataBytes) {
        PutFramedByte(Position, BitOf(Length_), DataByte);
        Position += FramedSamples / 8;
    }
    Length_ = NewLength;
}

void clsOversamplingBuffer::InputData(std::span<const std::uint8_t> Data, std::int32_t DataLengthSamples,
                                      std::int32_t StartSamplePoint)
{
    Bytes_.assign(Data.begin(), Data.end());
    Length_ = DataLengthSamples;
    Position_ = StartSamplePoint;
}

std::int32_t clsOversamplingBuffer::CurrentSample() const
{
    if (EndOfData()) {
        Raise(errOversamplingBuffer::errNoMoreData, "clsOversamplingBuffer",
              "Cannot sample input signal, no more data");
    }
    if (Position_ < 0 || Position_ >= ReadableSamples()) {
        Raise(errGeneral::errIndexOutOfRange);
    }
    return Bytes_[ByteOf(Position_)] >> BitOf(Position_) & 1;
}

bool clsOversamplingBuffer::WaitForSample(std::int32_t Value)
{
    if (CurrentSample() == Value) {
        return true;
    }
    const std::int64_t Limit = ReadableSamples();
    // A value that is no level never comes.
    const std::int64_t Found = Value == 0 || Value == 1 ? Find(Bytes_, Position_, Limit, Value == 1) : Limit;
    Position_ = static_cast<std::int32_t>(Found);
    if (Found == Limit && Limit < Length_) {
        Raise(errGeneral::errIndexOutOfRange);
    }
    return Found < Limit;
}

std::int32_t clsOversamplingBuffer::SampleBit()
{
    const std::int32_t Start = Position_;
    const std::int32_t Sample = SampleHalfBit();
    Position_ = CheckedAdd(Start, OversamplingRatio_);
    return Sample;
}

std::int32_t clsOversamplingBuffer::SampleHalfBit()
{
    Position_ = CheckedAdd(Position_, OversamplingRatio_ / 2);
    return CurrentSample();
}

std::uint8_t clsOversamplingBuffer::SampleByteLSB()
{
    std::int32_t DataByte = 0;
    for (unsigned k = 0; k < 8; ++k) {
        DataByte |= SampleBit() << k;
    }
    return static_cast<std::uint8_t>(DataByte);
}

std::uint8_t clsOversamplingBuffer::SampleByteMSB()
{
    std::int32_t DataByte = 0;
    for (unsigned k = 0; k < 8; ++k) {
        DataByte = DataByte << 1 | SampleBit();
    }
    return static_cast<std::uint8_t>(DataByte);
}

std::size_t clsOversamplingBuffer::SampleFramedRun(std::span<std::uint8_t> DataBytes) noexcept
{
    const std::int64_t Limit = ReadableSamples();
    std::int64_t Position = Position_;
    std::size_t Count = 0;
    if (OversamplingRatio_ != ByteRatio || Position < 0) {
        return Count;
    }
    while (Count < DataBytes.size() && Position < Limit) {
        Position = FindStartEdge(Bytes_, Position, Limit);
        const std::int64_t StartMiddle = Position + ByteRatio / 2;
        const std::int64_t StopMiddle = StartMiddle + std::int64_t{9} * ByteRatio;
        if (StopMiddle >= Limit) {
            break;
        }
        // The ten middles are the same bit of ten bytes in a row.
        const auto Bit = static_cast<unsigned>(StartMiddle % 8);
        const std::uint8_t* const Start = &Bytes_[static_cast<std::size_t>(StartMiddle / 8)];
        const unsigned StartBit = Start[0] >> Bit & 1U;
        const unsigned StopBit = Start[9] >> Bit & 1U;
        if (StartBit != 0 || StopBit != 1) {
            break;
        }
        DataBytes[Count] = GatherBits(LoadWord(Start + 1) >> Bit);
        ++Count;
        Position = StopMiddle;
    }
    Position_ = static_cast<std::int32_t>(Position);
    return Count;
}

void clsOversamplingBuffer::ReserveSamples(std::int32_t Length)
{
    const std::size_t Needed = ByteOf(Length) + (BitOf(Length) != 0 ? 1 : 0);
    if (Needed > Bytes_.size()) {
        const std::size_t Growths = (Needed - Bytes_.size() + GrowthBytes - 1) / GrowthBytes;
        Bytes_.resize(Bytes_.size() + Growths * GrowthBytes, IdleByte());
    }
}

std::uint8_t clsOversamplingBuffer::IdleByte() const
{
    return CheckedNarrow<std::uint8_t>(std::int64_t{IdleValue_} * 255);
}

std::int64_t clsOversamplingBuffer::ReadableSamples() const noexcept
{
    return std::min(std::int64_t{Length_}, static_cast<std::int64_t>(Bytes_.size()) * 8);
}

} // namespace Tarvix
