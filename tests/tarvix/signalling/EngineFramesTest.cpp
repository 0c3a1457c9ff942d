#include "tarvix/signalling/clsLINViaFTDIMPSSE.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeDevice.h"
#include "tests/support/PlainBuffer.h"
#include "tests/support/Random.h"
#include "tests/support/SlaveAnswer.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Tarvix {

using namespace Testing;
using Bytes = std::vector<std::uint8_t>;

namespace {

constexpr std::int32_t Break = 104;
constexpr std::int32_t HeaderSamples = Break + 168;

struct Bench {
    FakeDevice Device;
    clsLINViaFTDIMPSSE Engine;
    Bytes RxData = Bytes(9, 0xEE);
    std::int32_t RxDataLen = -1;

    Bench() { Engine.AttachDevice(Device); }

    Failure Transmit(const Bytes& Data, std::int32_t Length)
    {
        return FailureOf([&] { Engine.LINTransmit(Break, 0x55, 0xC1, Data, Length); });
    }
    Failure Receive()
    {
        return FailureOf([&] { Engine.LINReceive(Break, 0x55, 0x7D, RxData, RxDataLen); });
    }
};

} // namespace

TEST(EngineFrames, TransmitSendsBreakDelimiterSyncIdentifierAndData)
{
    Bench Bus;
    EXPECT_EQ(Bus.Transmit({0x01, 0x80, 0x3B}, 3), NoFailure);
    EXPECT_EQ(Bus.Device.Calls.back(), "ExchangeSamples 64 1 0 0");
    Bytes Expected(13, 0x00);                                // break
    for (const int Level : {1,                               // delimiter
                            0, 1, 0, 1, 0, 1, 0, 1, 0, 1,    // sync field 0x55
                            0, 1, 0, 0, 0, 0, 0, 1, 1, 1,    // identifier 0xC1
                            0, 1, 0, 0, 0, 0, 0, 0, 0, 1,    // 0x01
                            0, 0, 0, 0, 0, 0, 0, 0, 1, 1,    // 0x80
                            0, 1, 1, 0, 1, 1, 1, 0, 0, 1}) { // 0x3B
        Expected.push_back(Level == 1 ? 0xFF : 0x00);
    }
    EXPECT_EQ(Bus.Device.Sent.back(), Expected);

    EXPECT_EQ(Bus.Transmit({}, 0), NoFailure) << "a header alone";
    EXPECT_EQ(Bus.Device.Sent.back(), Bytes(Expected.begin(), Expected.begin() + 34));
}

TEST(EngineFrames, TransmitJudgesEachBitByItsMiddle)
{
    struct Case {
        const char* What = "";
        std::int32_t First = 0;
        std::int32_t Count = 0;
        int Level = 0;
        Failure Expected;
    };
    const std::int32_t Data =
        HeaderSamples; // 0x01 0x80: start bit at 0, bit k at 8 + 8k, stop bit at 72; next byte at 80
    const Case Cases[] = {
        {"break, sync and identifier are not looked at", 0, HeaderSamples, 1, NoFailure},
        {"all of a bit but its middle", Data + 16, 4, 1, NoFailure},
        {"the rest of it", Data + 21, 3, 1, NoFailure},
        {"the middle alone", Data + 20, 1, 1, TxRxMismatch},
        {"a recessive bit pulled low", Data + 8, 8, 0, TxRxMismatch},
        {"a stop bit pulled low", Data + 72, 8, 0, Framing},
        {"framing is judged before the value", Data + 8, 72, 0, Framing},
        {"the middle of the stop bit alone", Data + 76, 1, 0, Framing},
        {"a start bit shorter than half", Data, 80, 1, TxRxMismatch},
        {"the middle of a start bit", Data + 84, 1, 1, Framing},
        {"dominant throughout", 0, Data + 160, 0, Framing},
        {"recessive throughout", 0, Data + 160, 1, TxRxMismatch},
        {"a byte lost at the end", Data + 80, 80, 1, TxRxMismatch},
    };
    for (const Case& Fault : Cases) {
        Bench Bus;
        Bus.Device.Bus = [&](std::span<std::uint8_t> Stream) {
            SetSamples(Stream, Fault.First, Fault.Count, Fault.Level);
        };
        EXPECT_EQ(Bus.Transmit({0x01, 0x80}, 2), Fault.Expected) << Fault.What;
        EXPECT_EQ(Bus.Device.Calls.back(), "ExchangeSamples 54 1 0 0");
    }
}

TEST(EngineFrames, TransmitComparesWithNothingBeyondItsData)
{
    Bench Bus;
    Bus.Device.Bus = [](std::span<std::uint8_t> Stream) { Answering({0x00, 0x80})(Stream); };
    // 0xFF keeps the bus recessive for 72 samples, so that a late byte of the bus fits in
    EXPECT_EQ(Bus.Transmit({0x00, 0x81}, 2), TxRxMismatch);
    Bus.Device.Bus = [](std::span<std::uint8_t> Stream) {
        std::fill(Stream.begin() + HeaderSamples / 8, Stream.end(), std::uint8_t{0xFF});
        Answering({0x12, 0x34})(Stream);
    };
    EXPECT_EQ(Bus.Transmit({0x12, 0x34}, 2), NoFailure);
    EXPECT_EQ(FailureOf([&] { Bus.Engine.LINTransmit(Break, 0x55, 0, Bytes{0x12}, 1); }), NoFailure);
}

TEST(EngineFrames, ReceiveLeavesFourteenSlots)
{
    Bench Bus;
    EXPECT_EQ(Bus.Receive(), NoFailure);
    EXPECT_EQ(Bus.RxDataLen, 0);
    EXPECT_EQ(Bus.RxData, Bytes(9, 0xEE));
    EXPECT_EQ(Bus.Device.Calls.back(), "ExchangeSamples 174 1 0 0");
    const Bytes& Sent = Bus.Device.Sent.back();
    EXPECT_EQ(Bytes(Sent.begin() + 34, Sent.end()), Bytes(140, 0xFF));
}

TEST(EngineFrames, ReceiveFindsAnswersWhereverTheyStand)
{
    const Bytes Nine = {0x00, 0xFF, 0x55, 0xAA, 0x01, 0x80, 0x7F, 0xFE, 0x33};
    for (const std::int32_t First : {0, 1, 7, 8, 160, 320, 1120 - 9 * 80}) {
        Bench Bus;
        Bus.Device.Bus = Answering(Nine, HeaderSamples + First);
        EXPECT_EQ(Bus.Receive(), NoFailure) << First;
        EXPECT_EQ(Bus.RxDataLen, 9);
        EXPECT_EQ(Bus.RxData, Nine) << First;
    }
}

TEST(EngineFrames, ReceiveKeepsWhatCameBeforeAFault)
{
    struct Case {
        const char* What = "";
        std::int32_t First = 0;
        std::int32_t Count = 0;
        Failure Expected;
    };
    const std::int32_t Second = HeaderSamples + 80;
    const std::int32_t End = HeaderSamples + 1120;
    const Case Cases[] = {
        {"a glitch shorter than half a bit", Second, 4, Framing},
        {"a dominant bus", Second, 400, Framing},
        {"a start edge 76 samples before the end", End - 76, 76, NoMoreData},
        {"a start edge in the last sample", End - 1, 1, NoMoreData},
        {"stop bit in the very last samples", End - 77, 73, NoFailure},
    };
    for (const Case& Fault : Cases) {
        Bench Bus;
        Bus.Device.Bus = [&](std::span<std::uint8_t> Stream) {
            Answering({0x42})(Stream);
            SetSamples(Stream, Fault.First, Fault.Count, 0);
        };
        EXPECT_EQ(Bus.Receive(), Fault.Expected) << Fault.What;
        EXPECT_EQ(Bus.RxDataLen, Fault.Expected == NoFailure ? 2 : 1) << Fault.What;
        EXPECT_EQ(Bus.RxData[0], 0x42);
    }
}

TEST(EngineFrames, ReceiveWritesNothingOutsideItsArray)
{
    Bench Bus;
    Bus.RxData = {0xEE, 0xEE, 0xEE};
    Bus.Device.Bus = Answering({1, 2, 3, 4});
    EXPECT_EQ(FailureOf([&] { Bus.Engine.LINReceive(Break, 0x55, 0, std::span(Bus.RxData).first(2), Bus.RxDataLen); }),
              IndexOutOfRange);
    EXPECT_EQ(Bus.RxData, (Bytes{1, 2, 0xEE}));
    EXPECT_EQ(Bus.RxDataLen, 2);
}

// Random answers, glitches and break widths: the engine and the plain rules send the same, and decode the same.
TEST(EngineFrames, DoWhatTheSampleBySampleRulesDo)
{
    Random Any;
    for (int Round = 0; Round < 4000 && !testing::Test::HasFailure(); ++Round) {
        Bytes Noise(300, 0xFF);
        Bytes Answer(static_cast<std::size_t>(Any.Between(0, 10)));
        std::generate(Answer.begin(), Answer.end(), [&] { return Any.Byte(); });
        Answering(Answer, Any.Between(0, 1400))(Noise);
        for (int Glitches = Any.Between(0, 3); Glitches > 0; --Glitches) {
            SetSamples(Noise, Any.Between(0, 2000), Any.Between(1, 90), Any.Between(0, 1));
        }
        FakeDevice Fast;
        FakeDevice Slow;
        Fast.Bus = Slow.Bus = [&](std::span<std::uint8_t> Stream) {
            for (std::size_t i = 0; i < Stream.size(); ++i) {
                Stream[i] = static_cast<std::uint8_t>(Stream[i] & Noise[i]);
            }
        };
        clsLINViaFTDIMPSSE Engine;
        Engine.AttachDevice(Fast);
        PlainEngine Plain(Slow);

        const std::int32_t Width = Any.Between(0, 130);
        const std::uint8_t ID = Any.Byte();
        const std::int32_t Length = Any.Between(0, static_cast<std::int32_t>(Answer.size()));
        EXPECT_EQ(FailureOf([&] { Engine.LINTransmit(Width, 0x55, ID, Answer, Length); }),
                  FailureOf([&] { Plain.LINTransmit(Width, 0x55, ID, Answer, Length); }));

        Bytes FastData(9);
        Bytes SlowData(9);
        std::int32_t FastCount = 0;
        std::int32_t SlowCount = 0;
        EXPECT_EQ(FailureOf([&] { Engine.LINReceive(Width, 0x55, ID, FastData, FastCount); }),
                  FailureOf([&] { Plain.LINReceive(Width, 0x55, ID, SlowData, SlowCount); }));
        EXPECT_EQ(FastData, SlowData);
        EXPECT_EQ(FastCount, SlowCount);
        EXPECT_EQ(Fast.Sent, Slow.Sent);
    }
}

} // namespace Tarvix
