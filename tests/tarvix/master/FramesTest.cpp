#include "tarvix/master/clsLIN.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeDevice.h"
#include "tests/support/SlaveAnswer.h"

#include <gtest/gtest.h>

#include <numeric>

namespace Tarvix {

using namespace Testing;
using Bytes = std::vector<std::uint8_t>;
using Frame = std::array<std::uint8_t, 9>;

namespace {

struct Bus {
    FakeDevice Device;
    clsLIN Master;
    Bus()
    {
        Master.Initialize(Device);
        Device.Calls.clear();
    }

    Failure Write(std::uint8_t ID, std::int32_t Length, const Bytes& Data,
                  const std::optional<Variant>& Checksum = std::nullopt)
    {
        return FailureOf([&] { Master.WriteFrame(ID, Length, Data, Checksum); });
    }
    // The bytes after the header of what was sent last, read from the middle of each bit.
    Bytes SentBytes() const
    {
        const Bytes& Stream = Device.Sent.back();
        Bytes Result;
        for (std::size_t Slot = 14; Slot + 10 <= Stream.size(); Slot += 10) {
            std::uint8_t Byte = 0;
            for (std::size_t k = 0; k < 8; ++k) {
                Byte = static_cast<std::uint8_t>(Byte | (Stream[Slot + 1 + k] >> 4 & 1) << k);
            }
            Result.push_back(Byte);
        }
        return Result;
    }
    void ExpectNoFrame() const
    {
        EXPECT_EQ(FailureOf([&] { Master.DataLength(); }), NoData);
        EXPECT_EQ(FailureOf([&] { Master.Data(); }), NoData);
        EXPECT_EQ(FailureOf([&] { Master.Checksum(); }), NoData);
        EXPECT_EQ(FailureOf([&] { Master.Data2(); }), NoData);
        EXPECT_EQ(FailureOf([&] { Master.CheckChksum(0, 0); }), NoData);
        EXPECT_EQ(FailureOf([&] { Master.CheckData(0, {}, {}); }), NoData);
        EXPECT_EQ(FailureOf([&] { Master.CheckData2(0, Variant(), Variant()); }), NoData);
    }
};

} // namespace

TEST(IDParity, SetsBothParityBitsAndIgnoresTheUpperOnes)
{
    struct Case {
        std::uint8_t ID, Protected;
    };
    for (const auto& [ID, Protected] : {Case{0x00, 0x80},
                                        {0x01, 0xC1},
                                        {0x02, 0x42},
                                        {0x04, 0xC4},
                                        {0x08, 0x08},
                                        {0x10, 0x50},
                                        {0x20, 0x20},
                                        {0x3C, 0x3C},
                                        {0x3D, 0x7D},
                                        {0x3E, 0xFE},
                                        {0x3F, 0xBF},
                                        {0xFF, 0xBF},
                                        {0xC1, 0xC1}}) {
        EXPECT_EQ(clsLIN::ComputeIDParity(ID), Protected) << int{ID};
    }
}

TEST(WriteFrame, SendsHeaderDataAndChecksumAsGiven)
{
    Bus Lin;
    EXPECT_EQ(Lin.Write(0xC1, 2, {0x01, 0x02, 0x99}), NoFailure);
    EXPECT_EQ(Lin.SentBytes(), (Bytes{0x55, 0xC1, 0x01, 0x02, 0x3B}));
    EXPECT_EQ(Lin.Master.ID(), 0xC1);
    EXPECT_EQ(Lin.Master.DataLength(), 2);
    EXPECT_EQ(Lin.Master.Checksum(), 0x3B);
    EXPECT_EQ(Lin.Master.Data(), (Frame{0x01, 0x02, 0x3B}));
    EXPECT_EQ(Lin.Master.Data2(), Variant::FromBytes(Bytes{0x01, 0x02}));
    EXPECT_TRUE(Lin.Master.Data2().Elements().at(0).IsByte());

    Lin.Master.SyncByte(0x12);
    EXPECT_EQ(Lin.Write(0x01, 1, {0xFF}), NoFailure) << "no parity bit is added";
    EXPECT_EQ(Lin.SentBytes(), (Bytes{0x12, 0x01, 0xFF, 0xFE}));
    EXPECT_EQ(Lin.Master.Data(), (Frame{0xFF, 0xFE, 0x3B})) << "the buffer is never cleared";
    Lin.Master.BreakWidth(10.0F);
    EXPECT_EQ(Lin.Write(0x01, 1, {0xFF}), NoFailure);
    EXPECT_EQ(Lin.Device.Sent.back().size(), 10U + 1 + 40);
}

TEST(WriteFrame, ComputesTheChecksumOfTheMode)
{
    struct Case {
        std::int32_t Mode;
        std::uint8_t ID;
        Bytes Data;
        std::uint8_t Checksum;
    };
    for (const Case& Sum : {Case{elcLIN13, 0xC1, {0x01, 0x02}, 0xFC},
                            {elcLIN13, 0xC1, {0xFF, 0x01}, 0xFE},
                            {elcLIN13, 0xC1, {0xFF, 0xFF}, 0x00},
                            {elcLIN13, 0xC1, {0x00}, 0xFF},
                            {elcLIN13, 0xC1, {0x4A, 0x55, 0x93, 0xE5}, 0xE6},
                            {elcLIN13, 0xC1, Bytes(8, 0x80), 0xFB},
                            {elcLIN20, 0xC1, {0x01, 0x02}, 0x3B},
                            {elcLIN20, 0x4A, {0x4A, 0x55, 0x93, 0xE5}, 0x9C},
                            {elcLIN20, 0xFF, Bytes(8, 0xFF), 0x00},
                            {elcLIN20, 0x3C, {0x01}, 0xC2}}) { // diagnostic identifiers are like any other
        Bus Lin;
        Lin.Master.ChecksumMode(Sum.Mode);
        EXPECT_EQ(Lin.Write(Sum.ID, static_cast<std::int32_t>(Sum.Data.size()), Sum.Data), NoFailure);
        EXPECT_EQ(Lin.SentBytes().back(), Sum.Checksum);
    }
}

TEST(WriteFrame, TakesAnyChecksumFromTheCaller)
{
    Bus Lin;
    struct Case {
        Variant Given;
        int Sent = 0;
    };
    for (const auto& [Given, Sent] : {Case{0, 0}, {255, 255}, {2.5, 2}, {" 3.5e0 ", 4}}) {
        EXPECT_EQ(Lin.Write(0xC1, 2, {1, 2}, Given), NoFailure);
        EXPECT_EQ(Lin.SentBytes().back(), Sent);
        EXPECT_EQ(Lin.Master.Checksum(), Sent);
    }
}

TEST(WriteFrame, WrongLengthLeavesTheLastFrame)
{
    Bus Lin;
    EXPECT_EQ(Lin.Write(0xC1, 2, {1, 2}), NoFailure);
    const std::size_t Calls = Lin.Device.Calls.size();
    for (const std::int32_t Length : {0, 9, -1, 0x7FFFFFFF}) {
        EXPECT_EQ(Lin.Write(0x42, Length, Bytes(9)), InvalidDataBytes);
        EXPECT_EQ(FailureOf([&] { Lin.Master.ReadFrame(0x42, Length); }), InvalidDataBytes);
    }
    EXPECT_EQ(Lin.Device.Calls.size(), Calls);
    EXPECT_EQ(Lin.Master.ID(), 0xC1);
    EXPECT_EQ(Lin.Master.DataLength(), 2);
}

TEST(WriteFrame, AnyLaterFailureLeavesNoFrame)
{
    struct Case {
        Bytes Data;
        std::optional<Variant> Checksum;
        Failure Expected;
    };
    for (const Case& Fault : {Case{{1}, std::nullopt, IndexOutOfRange},
                              {{1, 2}, 256, Overflow},
                              {{1, 2}, -1, Overflow},
                              {{1, 2}, "x", TypeMismatch},
                              {{1, 2}, Variant(), TypeMismatch}}) {
        Bus Lin;
        EXPECT_EQ(Lin.Write(0xC1, 2, {1, 2}), NoFailure);
        const std::size_t Calls = Lin.Device.Calls.size();
        EXPECT_EQ(Lin.Write(0x42, 2, Fault.Data, Fault.Checksum), Fault.Expected);
        EXPECT_EQ(Lin.Device.Calls.size(), Calls);
        EXPECT_EQ(FailureOf([&] { Lin.Master.ID(); }), NoData);
        Lin.ExpectNoFrame();
    }
    Bus Lin;
    Lin.Device.Bus = [](std::span<std::uint8_t> Stream) { Stream.back() = 0; };
    EXPECT_EQ(Lin.Write(0xC1, 2, {1, 2}), Framing);
    EXPECT_EQ(FailureOf([&] { Lin.Master.ID(); }), NoData);
    Lin.ExpectNoFrame();
}

TEST(ReadFrame, WithoutAnAnswerOnlyTheIdentifierIsKnown)
{
    Bus Lin;
    EXPECT_EQ(Lin.Write(0xC1, 2, {1, 2}), NoFailure);
    EXPECT_FALSE(Lin.Master.ReadFrame(0x7D, 2));
    EXPECT_EQ(Lin.Master.ID(), 0x7D);
    Lin.ExpectNoFrame();
}

TEST(ReadFrame, TakesAnAnswerOfTheExpectedLengthAndChecksum)
{
    for (std::int32_t Length = 1; Length <= 8; ++Length) {
        Bus Lin;
        Lin.Master.ChecksumMode(elcLIN13);
        Bytes Answer(static_cast<std::size_t>(Length));
        std::iota(Answer.begin(), Answer.end(), std::uint8_t{1});
        Answer.push_back(static_cast<std::uint8_t>(0xFF - Length * (Length + 1) / 2));
        Lin.Device.Bus = Answering(Answer, 300);
        EXPECT_TRUE(Lin.Master.ReadFrame(0xC1, Length));
        EXPECT_EQ(Lin.Master.DataLength(), Length);
        EXPECT_EQ(Lin.Master.Checksum(), Answer.back());
        EXPECT_EQ(Lin.Master.Data2().Elements().size(), static_cast<std::size_t>(Length));
    }
}

TEST(ReadFrame, ChecksTheChecksumOfTheModeUnlessToldNotTo)
{
    Bus Lin;
    Lin.Device.Bus = Answering({0x01, 0x02, 0x3B});
    EXPECT_TRUE(Lin.Master.ReadFrame(0xC1, 2));
    Lin.Master.ChecksumMode(elcLIN13);
    EXPECT_EQ(FailureOf([&] { Lin.Master.ReadFrame(0xC1, 2); }), RxChecksum);
    EXPECT_EQ(Lin.Master.Checksum(), 0x3B) << "the frame stays readable";
    EXPECT_EQ(Lin.Master.ID(), 0xC1);
    EXPECT_TRUE(Lin.Master.ReadFrame(0xC1, 2, false));
}

TEST(ReadFrame, AnAnswerOfAnotherLengthStaysReadable)
{
    Bus Lin;
    Lin.Device.Bus = Answering({0x11, 0x22, 0x33, 0x44});
    EXPECT_EQ(FailureOf([&] { Lin.Master.ReadFrame(0x42, 2); }), ResponseLength(4));
    EXPECT_EQ(Lin.Master.DataLength(), 3);
    EXPECT_EQ(Lin.Master.Checksum(), 0x44);
    EXPECT_EQ(Lin.Master.Data(), (Frame{0x11, 0x22, 0x33, 0x44}));

    Lin.Device.Bus = Answering({0x99});
    EXPECT_EQ(FailureOf([&] { Lin.Master.ReadFrame(0x42, 1, false); }), ResponseLength(1));
    EXPECT_EQ(Lin.Master.DataLength(), 0);
    EXPECT_EQ(Lin.Master.Checksum(), 0x99);
    EXPECT_EQ(Lin.Master.Data2(), Variant(Variant::Array{}));
    EXPECT_TRUE(Lin.Master.CheckData(0, {}, {}));
    EXPECT_TRUE(Lin.Master.CheckData2(0, Variant(), Variant())) << "arrays of no bytes are not looked at";

    Lin.Device.Bus = Answering(Bytes(9, 0x77));
    EXPECT_EQ(FailureOf([&] { Lin.Master.ReadFrame(0x42, 7); }), ResponseLength(9));
    EXPECT_EQ(Lin.Master.DataLength(), 8);
}

TEST(ReadFrame, AFailedExchangeLeavesNoFrame)
{
    Bus Lin;
    EXPECT_EQ(Lin.Write(0xC1, 2, {1, 2}), NoFailure);
    Lin.Device.Bus = Answering(Bytes(10, 0x77)); // one more than a frame can have
    EXPECT_EQ(FailureOf([&] { Lin.Master.ReadFrame(0x42, 8); }), IndexOutOfRange);
    EXPECT_EQ(FailureOf([&] { Lin.Master.ID(); }), NoData);
    Lin.ExpectNoFrame();
}

TEST(CheckData, ComparesUnderMasks)
{
    Bus Lin;
    Lin.Device.Bus = Answering({0x01, 0x02, 0x3B});
    ASSERT_TRUE(Lin.Master.ReadFrame(0xC1, 2));
    const auto Check = [&](const Bytes& Expected, const Bytes& Mask) {
        return Lin.Master.CheckData(2, Expected, Mask) &&
               Lin.Master.CheckData2(2, Variant::FromBytes(Expected), Variant::FromBytes(Mask));
    };
    EXPECT_TRUE(Check({0x01, 0x02}, {0xFF, 0xFF}));
    EXPECT_TRUE(Check({0x01, 0x03}, {0xFF, 0xFE}));
    EXPECT_FALSE(Check({0x01, 0x03}, {0xFF, 0xFF}));
    EXPECT_FALSE(Check({0x00, 0x02}, {0xFF, 0xFF}));
    EXPECT_TRUE(Check({0xAA, 0x55}, {0x00, 0x00}));
    EXPECT_EQ(FailureOf([&] { Lin.Master.CheckData(3, {}, {}); }), DataLengthMismatch);
    EXPECT_EQ(FailureOf([&] { Check({0x01}, {0xFF, 0xFF}); }), IndexOutOfRange);
    EXPECT_EQ(FailureOf([&] { Check({0x01, 0x02}, {0xFF}); }), IndexOutOfRange);

    EXPECT_TRUE(Lin.Master.CheckChksum(0x3F, 0xF0));
    EXPECT_FALSE(Lin.Master.CheckChksum(0x3F, 0xF4));
    EXPECT_TRUE(Lin.Master.CheckChksum(0xC4, 0x00));
}

TEST(Variants, ConversionFaultsComeBeforeAnythingElse)
{
    Bus Lin;
    EXPECT_EQ(Lin.Write(0xC1, 2, {1, 2}), NoFailure);
    struct Case {
        Variant Data;
        std::int32_t Length = 0;
        Failure Expected;
    };
    for (const Case& Fault : {Case{Variant::Array{1, 256}, 9, Overflow}, // before the length is judged
                              {Variant::Array{1}, 2, IndexOutOfRange},
                              {Variant::Array{256}, 2, Overflow},
                              {Variant::Array{"one", 2}, 2, TypeMismatch},
                              {5, 2, TypeMismatch},
                              {Variant(), 2, TypeMismatch},
                              {Variant(), 0, InvalidDataBytes}}) {
        EXPECT_EQ(FailureOf([&] { Lin.Master.WriteFrame2(0x42, Fault.Length, Fault.Data); }), Fault.Expected);
        EXPECT_EQ(Lin.Master.ID(), 0xC1);
    }
    const Variant Good = Variant::Array{1, 2};
    EXPECT_EQ(FailureOf([&] { Lin.Master.CheckData2(2, Variant::Array{1, 300}, Variant()); }), Overflow);
    EXPECT_EQ(FailureOf([&] { Lin.Master.CheckData2(2, Good, 1); }), TypeMismatch);
    EXPECT_EQ(FailureOf([&] { Lin.Master.CheckData2(3, Good, Good); }), IndexOutOfRange) << "before the lengths";

    Lin.Master.WriteFrame2(0x42, 2, Variant::Array{"17", 1.5, "not read"}, 7);
    EXPECT_EQ(Lin.SentBytes(), (Bytes{0x55, 0x42, 17, 2, 7}));
}

} // namespace Tarvix
