// Every sample of a frame's read-back, inverted: never wrong data, and never silence about a data bit.

#include "tarvix/master/clsLIN.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeDevice.h"
#include "tests/support/SlaveAnswer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

namespace Tarvix {

using namespace Testing;
using Bytes = std::vector<std::uint8_t>;

namespace {

constexpr std::int32_t HeaderSamples = 104 + 168;

/// Data with its enhanced checksum for the identifier 0x7D.
const std::vector<Bytes> Frames = {
    {0x00, 0x82}, {0xFF, 0x82}, {0x12, 0x34, 0x3C}, {0x55, 0xAA, 0x82}, {1, 2, 4, 8, 16, 32, 64, 128, 0x82},
};

struct Bench {
    FakeDevice Device;
    clsLIN Master;

    Bench() { Master.Initialize(Device); }

    /// Lets the bus do as told, then inverts one of its samples.
    void Flip(std::int32_t Sample, BusFunction Answer)
    {
        Device.Bus = [Sample, Answer = std::move(Answer)](std::span<std::uint8_t> Stream) {
            if (Answer) {
                Answer(Stream);
            }
            std::uint8_t& Byte = Stream[static_cast<std::size_t>(Sample / 8)];
            Byte = static_cast<std::uint8_t>(Byte ^ 1 << Sample % 8);
        };
    }
};

/// The samples in the middle of the data bits of bytes without pauses between them.
std::set<std::int32_t> DataBitMiddles(std::int32_t First, std::size_t ByteCount)
{
    std::set<std::int32_t> Middles;
    for (std::int32_t Byte = 0; Byte < static_cast<std::int32_t>(ByteCount); ++Byte) {
        for (std::int32_t Bit = 0; Bit < 8; ++Bit) {
            Middles.insert(First + 80 * Byte + 8 + 8 * Bit + 4);
        }
    }
    return Middles;
}

/// Judges what one flip brought about.
void ExpectRightOrTold(const clsLIN& Master, const Failure& Raised, const Bytes& Sent, bool OnDataBit)
{
    const bool Told = Raised == RxChecksum || Raised == Framing || Raised == TxRxMismatch;
    if (OnDataBit) {
        EXPECT_TRUE(Told) << Raised;
    } else if (Raised == NoFailure) {
        const auto Record = Master.Data();
        EXPECT_EQ(Master.DataLength() + 1, static_cast<std::int32_t>(Sent.size()));
        EXPECT_TRUE(std::equal(Sent.begin(), Sent.end(), Record.begin()));
    }
}

} // namespace

TEST(SampleFlip, InAnAnswerIsHarmlessOrTold)
{
    for (const Bytes& Answer : Frames) {
        for (const std::int32_t First : {HeaderSamples, HeaderSamples + 13}) {
            const auto Middles = DataBitMiddles(First, Answer.size());
            for (std::int32_t Sample = 0; Sample < HeaderSamples + 14 * 80; ++Sample) {
                Bench Bus;
                Bus.Flip(Sample, Answering(Answer, First));
                bool Answered = false;
                const auto Length = static_cast<std::int32_t>(Answer.size()) - 1;
                const Failure Raised = FailureOf([&] { Answered = Bus.Master.ReadFrame(0x7D, Length); });
                ASSERT_TRUE(Answered || Raised != NoFailure) << "silence at sample " << Sample;
                ExpectRightOrTold(Bus.Master, Raised, Answer, Middles.count(Sample) == 1);
                ASSERT_FALSE(HasFailure()) << "sample " << Sample;
            }
        }
    }
}

TEST(SampleFlip, InAnEchoIsHarmlessOrTold)
{
    for (const Bytes& Sent : Frames) {
        const auto Length = static_cast<std::int32_t>(Sent.size());
        const auto Middles = DataBitMiddles(HeaderSamples, Sent.size());
        for (std::int32_t Sample = 0; Sample < HeaderSamples + 80 * Length; ++Sample) {
            Bench Bus;
            Bus.Flip(Sample, nullptr);
            const Failure Raised = FailureOf([&] { Bus.Master.WriteFrame(0x7D, Length - 1, Sent); });
            ExpectRightOrTold(Bus.Master, Raised, Sent, Middles.count(Sample) == 1);
            ASSERT_FALSE(HasFailure()) << "sample " << Sample;
        }
    }
}

} // namespace Tarvix
