#include "tools/tarvix/FramePrinter.h"

#include "tests/support/DecimalCommaLocale.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace Tarvix::Tool {

namespace {

FrameReport Write()
{
    FrameReport Frame;
    Frame.Seconds = 0.02;
    Frame.Operation = FrameOperation::Write;
    Frame.ProtectedIdentifier = 0x20;
    Frame.Data = {0x01, 0x02};
    Frame.Checksum = 0xDC;
    return Frame;
}

FrameReport Read()
{
    FrameReport Frame;
    Frame.Seconds = 0.012345;
    Frame.ProtectedIdentifier = 0x7D;
    Frame.Data = {0x12, 0x34};
    Frame.Checksum = 0x3C;
    return Frame;
}

FrameReport Silence()
{
    FrameReport Frame;
    Frame.ProtectedIdentifier = 0x6A;
    Frame.Failure = Error(static_cast<std::int32_t>(0x8004C3D1), "clsLINScriptInterpreter", "No response");
    return Frame;
}

FrameReport Timed()
{
    FrameReport Frame = Read();
    Frame.Timing = Pellumo::AnswerTiming{2.0, 0.125, Pellumo::ClockEstimate{-1.25, 0.1}, 3};
    return Frame;
}

TEST(JSONLines, AreExact)
{
    const auto Printer = MakeJSONLines(false);
    EXPECT_EQ(Printer->Head(), "");
    EXPECT_EQ(Printer->Line(Read()), R"({"time":0.012345,"op":"read","id":"0x3D","pid":"0x7D","data":"12 34",)"
                                     R"("checksum":"0x3C","ok":true})"
                                     "\n");
    EXPECT_EQ(Printer->Line(Write()), R"({"time":0.020000,"op":"write","id":"0x20","pid":"0x20","data":"01 02",)"
                                      R"("checksum":"0xDC","ok":true})"
                                      "\n");
    EXPECT_EQ(Printer->Line(Silence()),
              R"({"time":0.000000,"op":"read","id":"0x2A","pid":"0x6A","data":null,"checksum":null,"ok":false,)"
              R"("error":{"number":"0x8004C3D1","source":"clsLINScriptInterpreter","description":)"
              R"("No response: header sent, no response within the 14 byte slots"}})"
              "\n");
}

TEST(JSONLines, TimingIsAnObjectOfAnswers)
{
    EXPECT_EQ(MakeJSONLines(false)->Line(Timed()).find("timing"), std::string::npos);
    EXPECT_EQ(MakeJSONLines(true)->Line(Silence()).find("timing"), std::string::npos);
    const auto Object = nlohmann::json::parse(MakeJSONLines(true)->Line(Timed()));
    EXPECT_EQ(Object["timing"].dump(),
              R"({"clock_deviation":-1.25,"longest_gap":0.125,"margin":3,"response_space":2.0})");

    FrameReport Unclear = Timed();
    Unclear.Timing->Clock.reset();
    const auto Null = nlohmann::json::parse(MakeJSONLines(true)->Line(Unclear));
    EXPECT_TRUE(Null["timing"]["clock_deviation"].is_null());
}

TEST(JSONLines, StayJSONWhateverADeviceSays)
{
    FrameReport Frame = Read();
    Frame.Failure = Error(5, "dev\"ice", "a\\b\n\x01\xFF");
    const auto Object = nlohmann::json::parse(MakeJSONLines(false)->Line(Frame));
    EXPECT_EQ(Object["error"]["number"], "5");
    EXPECT_EQ(Object["error"]["source"], "dev\"ice");
    EXPECT_EQ(Object["error"]["description"], "a\\b\n\x01\xEF\xBF\xBD");
}

TEST(CandumpLines, AreExact)
{
    const auto Printer = MakeCandumpLines();
    EXPECT_EQ(Printer->Line(Read()), "(0.012345) lin0 3D#1234\n");
    EXPECT_EQ(Printer->Line(Write()), "(0.020000) lin0 20#0102\n");
    EXPECT_EQ(Printer->Line(Silence()), "(0.000000) lin0 2A#R\n");
    FrameReport Lonely = Read(); // a checksum alone
    Lonely.Data.clear();
    EXPECT_EQ(Printer->Line(Lonely), "(0.012345) lin0 3D#\n");
}

TEST(FrameTable, ColumnsAreAligned)
{
    const auto Table = MakeTable({});
    EXPECT_EQ(Table->Head(), "    TIME/s  OP     ID    PID   DATA                     CHECKSUM  RESULT\n");
    EXPECT_EQ(Table->Line(Read()), "  0.012345  read   0x3D  0x7D  12 34                    0x3C      ok\n");
    EXPECT_EQ(Table->Line(Write()), "  0.020000  write  0x20  0x20  01 02                    0xDC      ok\n");
    EXPECT_EQ(Table->Line(Silence()), "  0.000000  read   0x2A  0x6A  -                        -         "
                                      "No response: header sent, no response within the 14 byte slots\n");
}

TEST(FrameTable, TimingHasItsColumns)
{
    const auto Table = MakeTable({.Timing = true});
    EXPECT_EQ(Table->Head(), "    TIME/s  OP     ID    PID   DATA                     CHECKSUM  "
                             "SPACE/bit  GAP/bit    CLOCK  MARGIN  RESULT\n");
    EXPECT_EQ(Table->Line(Timed()), "  0.012345  read   0x3D  0x7D  12 34                    0x3C      "
                                    "     2.00     0.12   -1.25%       3  ok\n");
    EXPECT_EQ(Table->Line(Write()), "  0.020000  write  0x20  0x20  01 02                    0xDC      "
                                    "        -        -        -       -  ok\n");
}

TEST(FrameTable, TheClockHasASignUnlessItIsExact)
{
    const auto Table = MakeTable({.Timing = true});
    FrameReport Frame = Timed();
    Frame.Timing->Clock->Deviation = 0.5;
    EXPECT_NE(Table->Line(Frame).find("  +0.50%  "), std::string::npos);
    Frame.Timing->Clock->Deviation = -0.001;
    EXPECT_NE(Table->Line(Frame).find("   0.00%  "), std::string::npos);
}

TEST(FrameTable, ScansTellLengthAndModel)
{
    const auto Table = MakeTable({.Scan = true});
    FrameReport Frame = Read();
    Frame.ChecksumModel = ChecksumVerdict::Enhanced;
    Frame.Remark = "remark";
    EXPECT_EQ(Table->Head(), "ID    PID   LEN  MODEL     DATA                     CHECKSUM  RESULT\n");
    EXPECT_EQ(Table->Line(Frame), "0x3D  0x7D    2  enhanced  12 34                    0x3C      ok; remark\n");
}

TEST(FrameTable, ColoursTheResult)
{
    const auto Table = MakeTable({.Colour = true});
    EXPECT_TRUE(Table->Head().starts_with("\x1B[1m"));
    EXPECT_TRUE(Table->Line(Read()).ends_with("\x1B[32mok\x1B[0m\n"));
    EXPECT_NE(Table->Line(Silence()).find("\x1B[31mNo response"), std::string::npos);
}

TEST(FramePrinters, KnowNoLocale)
{
    FrameReport Frame = Timed();
    Frame.Seconds = 12345.5;
    const std::string JSON = MakeJSONLines(true)->Line(Frame);
    const std::string Candump = MakeCandumpLines()->Line(Frame);
    const std::string Table = MakeTable({.Timing = true})->Line(Frame);
    const Testing::DecimalCommaLocale German;
    EXPECT_EQ(MakeJSONLines(true)->Line(Frame), JSON);
    EXPECT_EQ(MakeCandumpLines()->Line(Frame), Candump);
    EXPECT_EQ(MakeTable({.Timing = true})->Line(Frame), Table);
    EXPECT_EQ(Candump, "(12345.500000) lin0 3D#1234\n");
}

} // namespace

} // namespace Tarvix::Tool
