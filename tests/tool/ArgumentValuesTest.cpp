#include "tools/tarvix/ArgumentValues.h"

#include "tools/tarvix/CommandLine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Tarvix::Tool {

namespace {

/// "refused", or the parsed value.
template <typename Parser>
std::string Tried(Parser Parse, const std::string& Text)
{
    try {
        return std::to_string(Parse(Text));
    } catch (const ArgumentError&) {
        return "refused";
    }
}

struct ValueCase {
    std::string Text;
    std::string Result;
};

TEST(ArgumentValues, IdentifiersAreHexadecimalUpTo3F)
{
    for (const auto& [Text, Result] : std::vector<ValueCase>{{"0", "0"},
                                                             {"3F", "63"},
                                                             {"0x3d", "61"},
                                                             {"0X20", "32"},
                                                             {"40", "refused"},
                                                             {"0x", "refused"},
                                                             {"", "refused"},
                                                             {"-1", "refused"},
                                                             {"0x-1", "refused"},
                                                             {"+1", "refused"},
                                                             {"1 ", "refused"},
                                                             {"020", "refused"},
                                                             {"3G", "refused"}}) {
        EXPECT_EQ(Tried(ParseIdentifier, Text), Result) << '"' << Text << '"';
    }
}

TEST(ArgumentValues, AProtectedIdentifierIsRecognised)
{
    try {
        ParseIdentifier("7D");
        FAIL();
    } catch (const ArgumentError& Refusal) {
        EXPECT_NE(std::string(Refusal.what()).find("protected form of 0x3D"), std::string::npos) << Refusal.what();
    }
    try {
        ParseIdentifier("BD"); // wrong parity
        FAIL();
    } catch (const ArgumentError& Refusal) {
        EXPECT_EQ(std::string(Refusal.what()).find("protected form"), std::string::npos) << Refusal.what();
    }
}

TEST(ArgumentValues, BytesAreOneOrTwoHexadecimalDigits)
{
    for (const auto& [Text, Result] : std::vector<ValueCase>{
             {"0", "0"}, {"FF", "255"}, {"0xa5", "165"}, {"100", "refused"}, {"0x0FF", "refused"}, {"g", "refused"}}) {
        EXPECT_EQ(Tried(ParseByte, Text), Result) << Text;
    }
}

TEST(ArgumentValues, OthersAreDecimalAndHaveLimits)
{
    for (const auto& [Text, Result] : std::vector<ValueCase>{
             {"1", "1"}, {"8", "8"}, {"0", "refused"}, {"9", "refused"}, {"0x2", "refused"}, {"2.0", "refused"}}) {
        EXPECT_EQ(Tried(ParseDataLength, Text), Result) << Text;
    }
    for (const auto& [Text, Result] : std::vector<ValueCase>{{"1", "1"},
                                                             {"2147483647", "2147483647"},
                                                             {"2147483648", "refused"},
                                                             {"0", "refused"},
                                                             {"-9600", "refused"},
                                                             {"9600.5", "refused"}}) {
        EXPECT_EQ(Tried(ParseBitRate, Text), Result) << Text;
    }
    for (const auto& [Text, Result] : std::vector<ValueCase>{{"13", "13.000000"},
                                                             {"13.5", "13.500000"},
                                                             {"0.125", "0.125000"},
                                                             {"1000", "1000.000000"},
                                                             {"0.124", "refused"},
                                                             {"1001", "refused"},
                                                             {"13,5", "refused"},
                                                             {"nan", "refused"},
                                                             {"inf", "refused"}}) {
        EXPECT_EQ(Tried(ParseBreakWidth, Text), Result) << Text;
    }
}

TEST(CommandLine, KeepsWhatWasGiven)
{
    const Command Parsed =
        ParseCommandLine({"write",         "0x20", "01",         "A5",      "-d",       "ftdi:///1", "-b",    "9600",
                          "--break-width", "14.5", "--checksum", "classic", "--vcd",    "a",         "--svg", "b",
                          "--record",      "c",    "--format",   "json",    "--timing", "-q"});
    const auto& Write = std::get<WriteArguments>(Parsed);
    EXPECT_EQ(Write.Identifier, 0x20);
    EXPECT_EQ(Write.Data, (std::vector<std::uint8_t>{0x01, 0xA5}));
    EXPECT_EQ(Write.Bus.Device, "ftdi:///1");
    EXPECT_EQ(Write.Bus.BitRate, 9600);
    EXPECT_EQ(Write.Bus.BreakWidth, 14.5F);
    EXPECT_EQ(Write.Bus.ChecksumModel, elcLIN13);
    EXPECT_EQ(Write.Bus.VCDFile, "a");
    EXPECT_EQ(Write.Bus.SVGFile, "b");
    EXPECT_EQ(Write.Bus.RecordFile, "c");
    EXPECT_EQ(Write.Bus.Format, OutputFormat::JSON);
    EXPECT_TRUE(Write.Bus.Timing);
    EXPECT_TRUE(Write.Bus.Quiet);
}

TEST(CommandLine, HasDefaults)
{
    const Command Parsed = ParseCommandLine({"read", "3D", "2"});
    const auto& Read = std::get<ReadArguments>(Parsed);
    EXPECT_EQ(Read.Identifier, 0x3D);
    EXPECT_EQ(Read.Length, 2);
    EXPECT_EQ(Read.Bus.Device, "sim:");
    EXPECT_EQ(Read.Bus.BitRate, 19200);
    EXPECT_FALSE(Read.Bus.BreakWidth);
    EXPECT_FALSE(Read.Bus.ChecksumModel);
    EXPECT_EQ(Read.Bus.Format, OutputFormat::Table);
    EXPECT_FALSE(Read.Bus.Timing);
    EXPECT_FALSE(Read.Bus.Quiet);
}

TEST(CommandLine, TheStandardInputIsAScriptAmongOthers)
{
    const Command Parsed = ParseCommandLine({"run", "a.lin", "-", "b.lin"});
    EXPECT_EQ(std::get<RunArguments>(Parsed).Scripts, (std::vector<std::string>{"a.lin", "-", "b.lin"}));
}

} // namespace

} // namespace Tarvix::Tool
