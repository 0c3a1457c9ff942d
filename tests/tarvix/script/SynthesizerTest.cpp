#include "tarvix/common/eLINChecksumMode.h"
#include "tarvix/script/clsLINScriptSynthesizer.h"
#include "tests/support/Errors.h"

#include <gtest/gtest.h>

#include <limits>

namespace Tarvix {

using Testing::FailureOf;

TEST(Synthesizer, WritesEachConfigurationChange)
{
    const clsLINScriptSynthesizer Synthesizer;
    EXPECT_EQ(Synthesizer.ScriptBaudrateTbit(1.0F / 19200.0F), "BAUDRATE 5.208333E-05;\r\n");
    EXPECT_EQ(Synthesizer.ScriptBaudrateBaudrateBd(9600), "BAUDRATE 9600 BD;\r\n");
    EXPECT_EQ(Synthesizer.ScriptBreakWidth(13.5F), "BREAK_WIDTH 13.5;\r\n");
    EXPECT_EQ(Synthesizer.ScriptSyncByte(0), "SYNC_BYTE (00);\r\n");
    EXPECT_EQ(Synthesizer.ScriptChecksumMode(elcLIN13), "CHKSUM_MODE LIN1_3;\r\n");
    EXPECT_EQ(Synthesizer.ScriptChecksumMode(elcLIN20), "CHKSUM_MODE LIN2_0;\r\n");
    EXPECT_EQ(FailureOf([&] { Synthesizer.ScriptBaudrateTbit(std::numeric_limits<float>::infinity()); }),
              Testing::Overflow);
}

TEST(Synthesizer, WritesEachBusOperation)
{
    const clsLINScriptSynthesizer Synthesizer;
    const std::vector<std::uint8_t> Data = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(Synthesizer.ScriptWait(10), "WAIT 10;\r\n");
    EXPECT_EQ(Synthesizer.ScriptGenerateBreak(), "BREAK;\r\n");
    EXPECT_EQ(Synthesizer.ScriptWriteFrame(0, 8, Data, std::nullopt),
              "WRITE_FRAME ID (00) LEN 8 TX (01 02 03 04 05 06 07 08);\r\n");
    EXPECT_EQ(Synthesizer.ScriptWriteFrame(0x3C, 2, Data, 165),
              "WRITE_FRAME ID (3C) LEN 2 TX (01 02) CHKSUM (A5);\r\n");
    EXPECT_EQ(Synthesizer.ScriptWriteFrame(0x3C, 1, Data, Variant("0")),
              "WRITE_FRAME ID (3C) LEN 1 TX (01) CHKSUM (00);\r\n");
    EXPECT_EQ(Synthesizer.ScriptReadFrame(0x7D, 8), "READ_FRAME ID (7D) LEN 8;\r\n");
}

TEST(Synthesizer, RefusesFramesThatCannotBeWritten)
{
    const clsLINScriptSynthesizer Synthesizer;
    const std::vector<std::uint8_t> Data = {1, 2};
    const auto Write = [&](std::int32_t Length, const Variant& Chksum) {
        return [&Synthesizer, &Data, Length, Chksum] { Synthesizer.ScriptWriteFrame(1, Length, Data, Chksum); };
    };
    EXPECT_EQ(FailureOf(Write(3, 256)), Testing::IndexOutOfRange); // the data stands before the checksum
    EXPECT_EQ(FailureOf(Write(2, 256)), Testing::Overflow);
    EXPECT_EQ(FailureOf(Write(2, -1)), Testing::Overflow);
    EXPECT_EQ(FailureOf(Write(2, "A5")), Testing::TypeMismatch);
    EXPECT_EQ(FailureOf(Write(2, Variant())), Testing::TypeMismatch);
}

} // namespace Tarvix
