#include "tarvix/master/clsLIN.h"
#include "tests/support/CollectingLog.h"
#include "tests/support/Errors.h"
#include "tests/support/FakeDevice.h"
#include "tests/support/SlaveAnswer.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace Tarvix {

using namespace Testing;
using Lines = std::vector<std::string>;

static_assert(std::is_copy_constructible_v<CollectingLog> && std::is_copy_assignable_v<CollectingLog>,
              "what a host derives from icLog is its own to copy");

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

} // namespace Tarvix
