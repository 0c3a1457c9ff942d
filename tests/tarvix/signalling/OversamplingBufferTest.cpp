#include "tarvix/signalling/clsOversamplingBuffer.h"
#include "tests/support/Errors.h"
#include "tests/support/PlainBuffer.h"
#include "tests/support/Random.h"

#include <gtest/gtest.h>

#include <limits>

namespace Tarvix {

using namespace Testing;
using Bytes = std::vector<std::uint8_t>;

namespace {

clsOversamplingBuffer BufferOf(std::int32_t Ratio, std::int32_t Idle)
{
    clsOversamplingBuffer Buffer;
    Buffer.Initialize(Ratio, Idle);
    return Buffer;
}

} // namespace

TEST(OversamplingBuffer, RoomIsExactAndIdle)
{
    auto Buffer = BufferOf(8, 1);
    Buffer.InitializeData(3, 1);
    EXPECT_EQ(Buffer.Data(), (Bytes{0xFF, 0xFF}));
    Buffer.WriteSamples(3, 0);
    Buffer.WriteBit(1);
    EXPECT_EQ(Buffer.Data(), (Bytes{0xF8, 0xFF}));
    EXPECT_EQ(Buffer.DataLengthSamples(), 11);
    EXPECT_EQ(Buffer.DataLengthBytes(), 2);

    Buffer.InitializeData();
    EXPECT_TRUE(Buffer.Data().empty());
    EXPECT_EQ(Buffer.DataLengthSamples(), 0);
    EXPECT_EQ(Buffer.DataLengthBytes(), 0);

    auto Low = BufferOf(8, 0);
    Low.InitializeData(9);
    EXPECT_EQ(Low.Data(), (Bytes{0, 0}));
}

TEST(OversamplingBuffer, GrowsBy32IdleBytes)
{
    auto Buffer = BufferOf(8, 1);
    Buffer.InitializeData(0, 1);
    Buffer.WriteSamples(16, 0);
    Bytes Expected(33, 0xFF);
    Expected[0] = Expected[1] = 0;
    EXPECT_EQ(Buffer.Data(), Expected);
    EXPECT_EQ(Buffer.DataLengthBytes(), 2);

    Buffer.WriteSamples(31 * 8 + 1, 0); // one sample beyond the 33 bytes
    EXPECT_EQ(Buffer.Data().size(), 65U);
    Buffer.InitializeData();
    Buffer.WriteSamples(32 * 8, 0);
    EXPECT_EQ(Buffer.Data().size(), 32U) << "what one extension just holds";
}

TEST(OversamplingBuffer, BytesGoOutInEitherBitOrder)
{
    auto Buffer = BufferOf(8, 1);
    Buffer.InitializeData(0, 16);
    Buffer.WriteByteLSB(0x53);
    Buffer.WriteByteMSB(0x53);
    EXPECT_EQ(Buffer.Data(), (Bytes{0xFF, 0xFF, 0, 0, 0xFF, 0, 0xFF, 0, 0, 0xFF, 0, 0xFF, 0, 0, 0xFF, 0xFF}));
}

TEST(OversamplingBuffer, RefusesWhatLeavesTheRangeAndKeepsTheStream)
{
    constexpr std::int32_t Most = std::numeric_limits<std::int32_t>::max();
    auto Buffer = BufferOf(8, 1);
    Buffer.InitializeData(16);
    Buffer.WriteSamples(9, 0);
    EXPECT_EQ(FailureOf([&] { Buffer.InitializeData(Most, 1); }), Overflow);
    EXPECT_EQ(FailureOf([&] { Buffer.InitializeData(0, Most); }), Overflow);
    EXPECT_EQ(FailureOf([&] { Buffer.InitializeData(-1); }), InvalidArgument);
    EXPECT_EQ(FailureOf([&] { Buffer.WriteSamples(Most, 0); }), Overflow);
    EXPECT_EQ(FailureOf([&] { Buffer.WriteSamples(-1, 0); }), InvalidArgument);
    EXPECT_EQ(Buffer.Data(), (Bytes{0x00, 0xFE}));
    EXPECT_EQ(Buffer.DataLengthSamples(), 9);

    auto NoLevel = BufferOf(8, 2);
    EXPECT_EQ(FailureOf([&] { NoLevel.InitializeData(1); }), Overflow);
}

TEST(OversamplingBuffer, ReadingStopsWhereTheStreamEnds)
{
    auto Buffer = BufferOf(8, 1);
    const Bytes Silence(4, 0xFF);
    Buffer.InputData(Silence, 31, 3);
    EXPECT_FALSE(Buffer.WaitForSample(0));
    EXPECT_TRUE(Buffer.EndOfData());
    EXPECT_EQ(FailureOf([&] { Buffer.WaitForSample(0); }), NoMoreData);
    EXPECT_EQ(FailureOf([&] { Buffer.CurrentSample(); }), NoMoreData);

    // The middle of a bit is 4 samples on: the last one that has it starts at sample 26 of 31.
    Buffer.InputData(Silence, 31, 26);
    EXPECT_EQ(Buffer.SampleBit(), 1);
    Buffer.InputData(Silence, 31, 27);
    EXPECT_EQ(FailureOf([&] { Buffer.SampleBit(); }), NoMoreData);
    Buffer.WriteSamples(1, 1);
    EXPECT_EQ(Buffer.CurrentSample(), 1) << "the failure left the read position at the middle, sample 31";
}

TEST(OversamplingBuffer, ReadsRunsOnlyAtEightSamplesABit)
{
    auto Buffer = BufferOf(7, 1);
    Bytes Run(1);
    Buffer.InputData(Bytes{0x00, 0xC0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, 96, 0);
    EXPECT_EQ(Buffer.SampleFramedRun(Run), 0U);
    EXPECT_EQ(Buffer.CurrentSample(), 0) << "the read position stays at the start edge";
}

TEST(OversamplingBuffer, ReadsNothingOutsideTheArray)
{
    auto Buffer = BufferOf(8, 1);
    const Bytes Silence(2, 0xFF);
    for (const std::int32_t Start : {-1, -8, std::numeric_limits<std::int32_t>::min(), 16, 99}) {
        Buffer.InputData(Silence, 100, Start);
        Bytes Run(1);
        EXPECT_EQ(Buffer.SampleFramedRun(Run), 0U) << Start;
        EXPECT_EQ(FailureOf([&] { Buffer.CurrentSample(); }), IndexOutOfRange) << Start;
        EXPECT_EQ(FailureOf([&] { Buffer.WaitForSample(0); }), IndexOutOfRange) << Start;
    }
    Buffer.InputData(Silence, 100, 5);
    EXPECT_EQ(FailureOf([&] { Buffer.WaitForSample(0); }), IndexOutOfRange);
    Buffer.InputData(Silence, 100, -20);
    EXPECT_EQ(FailureOf([&] { Buffer.SampleByteLSB(); }), IndexOutOfRange);
    constexpr std::int32_t Most = std::numeric_limits<std::int32_t>::max();
    Buffer.InputData(Silence, Most, Most - 2);
    EXPECT_EQ(FailureOf([&] { Buffer.SampleByteLSB(); }), Overflow);
}

namespace {

// A run of framed bytes, and what the operations that it stands for make of the byte at which it stopped.
std::int64_t ReadRun(clsOversamplingBuffer& Buffer, Bytes& Run)
{
    Run.resize(Buffer.SampleFramedRun(Run));
    return Buffer.CurrentSample();
}

std::int64_t ReadRun(PlainBuffer& Buffer, Bytes& Run)
{
    for (std::size_t Count = 0; Count < Run.size(); ++Count) {
        PlainBuffer Ahead = Buffer;
        try {
            const bool Found = Ahead.WaitForSample(0);
            Buffer = Ahead; // a run ends on the start edge of the byte that it does not read
            if (!Found || Ahead.SampleBit() != 0) {
                Run.resize(Count);
                break;
            }
            Run[Count] = Ahead.SampleByteLSB();
            if (Ahead.SampleHalfBit() != 1) {
                Run.resize(Count);
                break;
            }
            Buffer = Ahead;
        } catch (const Error&) {
            Run.resize(Count);
            break;
        }
    }
    return Buffer.CurrentSample();
}

// One random operation on both buffers; what comes of it must be the same.
template <typename Operation>
void Both(clsOversamplingBuffer& Fast, PlainBuffer& Plain, Operation Run)
{
    std::int64_t FastResult = -1;
    std::int64_t PlainResult = -1;
    const Failure FastFailure = FailureOf([&] { FastResult = Run(Fast); });
    const Failure PlainFailure = FailureOf([&] { PlainResult = Run(Plain); });
    ASSERT_EQ(FastFailure, PlainFailure);
    ASSERT_EQ(FastResult, PlainResult);
}

void BuildBoth(clsOversamplingBuffer& Fast, PlainBuffer& Plain, Random& Any)
{
    const std::int32_t Samples = Any.Between(0, 40);
    const std::int32_t Bits = Any.Between(0, 40);
    Both(Fast, Plain, [&](auto& Buffer) { return Buffer.InitializeData(Samples, Bits), 0; });
    for (int Step = Any.Between(0, 12); Step > 0; --Step) {
        const std::int32_t Kind = Any.Between(0, 5);
        const std::int32_t Count = Any.Between(0, 90);
        const std::int32_t Value = Any.Between(0, 1);
        const std::uint8_t Byte = Any.Byte();
        if (Kind == 5) { // not in the plain buffer: it stands for three operations per byte
            const Bytes Framed(static_cast<std::size_t>(Any.Between(0, 3)), Byte);
            Fast.WriteFramedBytes(Framed);
            for (const std::uint8_t DataByte : Framed) {
                Plain.WriteBit(0);
                Plain.WriteByteLSB(DataByte);
                Plain.WriteBit(1);
            }
            continue;
        }
        Both(Fast, Plain, [&](auto& Buffer) {
            switch (Kind) {
            case 0: Buffer.WriteSamples(Count, Value); break;
            case 1: Buffer.WriteBit(Value); break;
            case 2: Buffer.WriteByteLSB(Byte); break;
            case 3: Buffer.WriteByteMSB(Byte); break;
            default: break;
            }
            return Buffer.DataLengthSamples();
        });
    }
    ASSERT_EQ(Fast.Data(), Plain.Data());
    ASSERT_EQ(Fast.DataLengthBytes(), Plain.DataLengthBytes());
}

void ReadBoth(clsOversamplingBuffer& Fast, PlainBuffer& Plain, Random& Any)
{
    Bytes Stream(static_cast<std::size_t>(Any.Between(0, 60)));
    const bool Sparse = Any.Between(0, 1) == 1;
    for (auto& Byte : Stream) {
        Byte = Sparse ? static_cast<std::uint8_t>(Any.Between(0, 30) == 0 ? Any.Byte() : 0xFF) : Any.Byte();
    }
    const std::int32_t Length = Any.Between(0, static_cast<std::int32_t>(Stream.size()) * 8 + 4);
    const std::int32_t Start = Any.Between(-2, Length + 2);
    Both(Fast, Plain, [&](auto& Buffer) { return Buffer.InputData(Stream, Length, Start), 0; });
    for (int Step = 0; Step < 12; ++Step) {
        const std::int32_t Kind = Any.Between(0, 5);
        const std::int32_t Value = Any.Between(0, 8) == 0 ? 2 : Any.Between(0, 1);
        Both(Fast, Plain, [&](auto& Buffer) -> std::int64_t {
            switch (Kind) {
            case 0: return Buffer.WaitForSample(Value);
            case 1: return Buffer.SampleBit();
            case 2: return Buffer.SampleByteLSB();
            case 3: return Buffer.SampleByteMSB();
            case 4: return Buffer.SampleHalfBit();
            default: return Buffer.CurrentSample();
            }
        });
        ASSERT_EQ(Fast.EndOfData(), Plain.EndOfData());
    }
}

} // namespace

TEST(OversamplingBuffer, ARunOfFramedBytesIsWhatTheSingleOperationsRead)
{
    Random Any;
    clsOversamplingBuffer Fast;
    PlainBuffer Plain;
    Fast.Initialize(8, 1);
    Plain.Initialize(8, 1);
    for (int Round = 0; Round < 20000 && !HasFatalFailure(); ++Round) {
        Fast.InitializeData();
        Fast.WriteSamples(Any.Between(0, 20), 1);
        for (int Byte = Any.Between(0, 5); Byte > 0; --Byte) {
            const std::uint8_t DataByte = Any.Byte();
            Fast.WriteFramedBytes(std::span(&DataByte, 1));
            Fast.WriteSamples(Any.Between(0, 1) * Any.Between(0, 100), 1); // mostly no pause
        }
        Bytes Stream = Fast.Data();
        for (int Glitch = Any.Between(0, 2); Glitch > 0 && !Stream.empty(); --Glitch) {
            const auto Where = static_cast<std::size_t>(Any.Between(0, static_cast<std::int32_t>(Stream.size()) - 1));
            Stream[Where] = static_cast<std::uint8_t>(Stream[Where] ^ 1U << Any.Between(0, 7));
        }
        const std::int32_t Length = Any.Between(0, Fast.DataLengthSamples());
        const std::int32_t Start = Any.Between(0, 12);
        const auto Room = static_cast<std::size_t>(Any.Between(0, 6));
        Bytes FastRun(Room);
        Bytes PlainRun(Room);
        Fast.InputData(Stream, Length, Start);
        Plain.InputData(Stream, Length, Start);
        std::int64_t FastNext = -1;
        std::int64_t PlainNext = -1;
        ASSERT_EQ(FailureOf([&] { FastNext = ReadRun(Fast, FastRun); }),
                  FailureOf([&] { PlainNext = ReadRun(Plain, PlainRun); }));
        ASSERT_EQ(FastRun, PlainRun);
        ASSERT_EQ(FastNext, PlainNext);
        ASSERT_EQ(Fast.EndOfData(), Plain.EndOfData());
    }
}

class OversamplingBufferRandom : public testing::TestWithParam<std::int32_t> {};

TEST_P(OversamplingBufferRandom, DoesWhatTheSampleBySampleRulesDo)
{
    Random Any;
    clsOversamplingBuffer Fast;
    PlainBuffer Plain;
    for (int Round = 0; Round < 3000 && !HasFatalFailure(); ++Round) {
        const std::int32_t Idle = Any.Between(0, 1);
        Fast.Initialize(GetParam(), Idle);
        Plain.Initialize(GetParam(), Idle);
        BuildBoth(Fast, Plain, Any);
        ReadBoth(Fast, Plain, Any);
    }
}

INSTANTIATE_TEST_SUITE_P(Ratios, OversamplingBufferRandom, testing::Values(0, 1, 3, 7, 8, 9, 16));

} // namespace Tarvix
