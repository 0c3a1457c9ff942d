#include "tarvix/master/clsLIN.h"
#include "tests/support/CollectingLog.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeDevice.h"
#include "tests/support/SlaveAnswer.h"

#include <gtest/gtest.h>

namespace Tarvix {

using namespace Testing;
using Lines = std::vector<std::string>;

namespace {

const std::array<std::uint8_t, 2> Data = {1, 2};

struct Logged {
    FakeDevice Device;
    CollectingLog Log;
    clsLIN Master;
    Logged()
    {
        Master.Initialize(Device);
        Master.Log(&Log);
        Device.Calls.clear();
    }
};

} // namespace

TEST(OperationLog, WritesWhatTheHostPassed)
{
    Logged Lin;
    Lin.Master.BaudrateTbit(5.208333E-05F);
    Lin.Master.BaudrateBd(19200);
    Lin.Master.BreakWidth(13.3F);
    Lin.Master.SyncByte(0x55);
    Lin.Master.ChecksumMode(elcLIN13);
    Lin.Master.ChecksumMode(elcLIN20);
    Lin.Master.Wait(10);
    Lin.Master.GenerateBreak();
    Lin.Master.WriteFrame(0x3C, 2, Data);
    Lin.Master.WriteFrame(0x3C, 2, Data, 0);
    Lin.Master.WriteFrame2(0x3C, 1, Variant::Array{"165", 3}, 164.5);
    Lin.Device.Bus = Answering({1, 2, 0x7F});
    Lin.Master.ReadFrame(0x7D, 2);
    EXPECT_EQ(
        Lin.Log.Lines,
        (Lines{"BAUDRATE 5.208333E-05;\r\n", "BAUDRATE 19200 BD;\r\n", "BREAK_WIDTH 13.3;\r\n", "SYNC_BYTE (55);\r\n",
               "CHKSUM_MODE LIN1_3;\r\n", "CHKSUM_MODE LIN2_0;\r\n", "WAIT 10;\r\n", "BREAK;\r\n",
               "WRITE_FRAME ID (3C) LEN 2 TX (01 02);\r\n", "WRITE_FRAME ID (3C) LEN 2 TX (01 02) CHKSUM (00);\r\n",
               "WRITE_FRAME ID (3C) LEN 1 TX (A5) CHKSUM (A4);\r\n", "READ_FRAME ID (7D) LEN 2;\r\n"}));
}

TEST(OperationLog, IsSilentAboutReadsChecksAndFailures)
{
    Logged Lin;
    EXPECT_EQ(FailureOf([&] { Lin.Master.BaudrateBd(0); }), DivisionByZero);
    EXPECT_EQ(FailureOf([&] { Lin.Master.BreakWidth(0.0F); }), InvalidParameter);
    EXPECT_EQ(FailureOf([&] { Lin.Master.ChecksumMode(2); }), InvalidParameter);
    EXPECT_EQ(FailureOf([&] { Lin.Master.Wait(-1); }), InvalidArgument);
    EXPECT_EQ(FailureOf([&] { Lin.Master.WriteFrame(0x3C, 9, Data); }), InvalidDataBytes);
    EXPECT_FALSE(Lin.Master.ReadFrame(0x7D, 2)); // no answer
    Lin.Device.Bus = Answering({1, 2, 3, 4});
    EXPECT_EQ(FailureOf([&] { Lin.Master.ReadFrame(0x7D, 2); }), ResponseLength(4));
    EXPECT_EQ(FailureOf([&] { Lin.Master.WriteFrame(0x3C, 2, Data); }), TxRxMismatch);
    Lin.Master.Log(&Lin.Log);
    EXPECT_EQ(Lin.Master.Log(), &Lin.Log);
    Lin.Master.Initialize(Lin.Device);
    EXPECT_EQ(Lin.Log.Lines, Lines{});

    Lin.Device.Bus = Answering({1, 2, 3});
    EXPECT_EQ(FailureOf([&] { Lin.Master.ReadFrame(0x7D, 2); }), RxChecksum);
    EXPECT_EQ(Lin.Log.Lines, Lines{"READ_FRAME ID (7D) LEN 2;\r\n"}) << "logged before the checksum is judged";
}

TEST(OperationLog, StopsWhenDetached)
{
    Logged Lin;
    Lin.Master.GenerateBreak();
    Lin.Master.Log(nullptr);
    Lin.Master.GenerateBreak();
    EXPECT_EQ(Lin.Log.Lines, Lines{"BREAK;\r\n"});
    Lin.Master.Log(&Lin.Log);
    Lin.Master.Terminate();
    EXPECT_EQ(Lin.Master.Log(), nullptr);
    EXPECT_EQ(Lin.Log.Lines.size(), 1U);
}

TEST(OperationLog, AFailingLogObjectFindsTheWorkDone)
{
    Logged Lin;
    Lin.Log.Fails = true;
    EXPECT_THROW(Lin.Master.BaudrateBd(9600), int);
    EXPECT_THROW(Lin.Master.BreakWidth(20.0F), int);
    EXPECT_THROW(Lin.Master.SyncByte(0x12), int);
    EXPECT_THROW(Lin.Master.ChecksumMode(elcLIN13), int);
    EXPECT_THROW(Lin.Master.Wait(1), int);
    EXPECT_THROW(Lin.Master.GenerateBreak(), int);
    EXPECT_THROW(Lin.Master.WriteFrame(0x3C, 2, Data), int);
    EXPECT_EQ(Lin.Master.BaudrateBd(), 9591);
    EXPECT_EQ(Lin.Master.BreakWidth(), 20.0F);
    EXPECT_EQ(Lin.Master.SyncByte(), 0x12);
    EXPECT_EQ(Lin.Master.ChecksumMode(), elcLIN13);
    EXPECT_EQ(Lin.Master.Checksum(), 0xFC);
    EXPECT_EQ(Lin.Device.Sent.size(), 3U);

    Lin.Device.Bus = Answering({1, 2, 3}, 20 * 8 + 168);
    EXPECT_THROW(Lin.Master.ReadFrame(0x7D, 2), int) << "before the wrong checksum is judged";
    EXPECT_EQ(Lin.Master.Checksum(), 3);
}

// A session of every operation, in which the device fails at one call after the other: the failure arrives untouched,
// whatever its type, and a failing Close can be repeated.
TEST(Master, DeviceFailuresArriveUntouchedAtEveryCall)
{
    struct Unplugged {
        std::size_t Call;
    };
    const auto Session = [](FakeDevice& Device, CollectingLog& Log) {
        clsLIN Master;
        Master.Initialize(Device);
        Master.Log(&Log);
        Master.BaudrateBd(19200);
        Master.Wait(1);
        Master.GenerateBreak();
        Master.WriteFrame(0x3C, 2, Data);
        Master.ReadFrame(0x7D, 2);
        try {
            Master.Terminate();
        } catch (const Unplugged&) {
            EXPECT_EQ(Master.Log(), &Log);
            Device.BeforeCall = nullptr;
            Master.Terminate();
            EXPECT_EQ(Master.Log(), nullptr);
            throw;
        }
    };
    constexpr std::size_t CallsOfASession = 10;
    const Lines LinesBefore = {"BAUDRATE 19200 BD;\r\n", "WAIT 1;\r\n", "BREAK;\r\n",
                               "WRITE_FRAME ID (3C) LEN 2 TX (01 02);\r\n"};
    const std::size_t LinesAt[CallsOfASession] = {0, 0, 0, 0, 0, 1, 2, 3, 4, 4};
    for (std::size_t Failing = 0; Failing < CallsOfASession; ++Failing) {
        FakeDevice Device;
        CollectingLog Log;
        Device.BeforeCall = [Failing](std::size_t Call) {
            if (Call == Failing) {
                throw Unplugged{Call};
            }
        };
        EXPECT_THROW(Session(Device, Log), Unplugged) << Failing;
        EXPECT_EQ(Log.Lines,
                  Lines(LinesBefore.begin(), LinesBefore.begin() + static_cast<std::ptrdiff_t>(LinesAt[Failing])))
            << Failing;
    }
}

} // namespace Tarvix
