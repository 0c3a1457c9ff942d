#include "pellumo/recording/SVGWriter.h"

#include "tests/pellumo/recording/StreamRecord.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <regex>
#include <sstream>

namespace Pellumo::Testing {

namespace {

std::string PictureOf(std::initializer_list<SampleStream> Streams, std::string_view Title = "Bus")
{
    std::ostringstream Out;
    SVGWriter Writer(Out, Title);
    for (const SampleStream& Stream : Streams) {
        Writer.OnStream(Stream);
    }
    Writer.Finish();
    return Out.str();
}

std::string PictureOf(const Bytes& Tx, const Bytes& Rx)
{
    return PictureOf({Exchanged(Tx, Rx)});
}

std::size_t CountOf(const std::string& Text, const std::string& Part)
{
    std::size_t Count = 0;
    for (auto At = Text.find(Part); At != std::string::npos; At = Text.find(Part, At + 1)) {
        ++Count;
    }
    return Count;
}

/// What is wrong with `Text` as XML; empty when elements nest, attributes are quoted and text is escaped.
std::string XMLFault(const std::string& Text)
{
    static const std::regex Tag(R"(<\?xml [^<>]*\?>|<(/?)([A-Za-z]+)((?: [A-Za-z:]+="[^"<>&]*")*)(/?)>)");
    static const std::regex Content(R"((?:[^<>&]|&(?:amp|lt|gt|quot);)*)");
    std::vector<std::string> Open;
    auto At = Text.cbegin();
    for (std::sregex_iterator i(Text.begin(), Text.end(), Tag), End; i != End; ++i) {
        const std::smatch& Match = *i;
        if (!std::regex_match(At, Match[0].first, Content)) {
            return "stray characters before " + Match.str();
        }
        At = Match[0].second;
        if (Match[1].length() > 0) {
            if (Open.empty() || Open.back() != Match[2]) {
                return "unexpected " + Match.str();
            }
            Open.pop_back();
        } else if (Match[2].length() > 0 && Match[4].length() == 0) {
            Open.push_back(Match[2]);
        }
    }
    return Open.empty() && std::all_of(At, Text.cend(), [](char c) { return c == '\n'; }) ? "" : "not closed";
}

/// Where the text stands in the first row that has it: its middle in tenths of a pixel.
std::optional<long> MiddleOf(const std::string& Picture, const std::string& Class, const std::string& Text)
{
    const std::regex Pattern("<text class=\"" + Class + "\" x=\"([0-9.]+)\" y=\"[0-9]+\">" + Text + "</text>");
    std::smatch Match;
    if (!std::regex_search(Picture, Match, Pattern)) {
        return std::nullopt;
    }
    return std::lround(10 * std::stod(Match[1]));
}

/// A sample is 0.8 pixels wide and the first one begins at 72.
long MiddleOfSamples(long First, long End)
{
    return 720 + 8 * (First + End) / 2;
}

const Bytes ReadTx = CommanderStream().Request(0x7D).Data();
Bytes Answer(const Bytes& Data, std::size_t SpaceBits)
{
    CommanderStream Stream;
    Stream.Header(0x7D).Idle(SpaceBits);
    for (const std::uint8_t Byte : Data) {
        Stream.Byte(Byte);
    }
    Bytes Samples = Stream.Data();
    Samples.resize(ReadTx.size(), 0xFF);
    return Samples;
}

} // namespace

TEST(SVGWriter, LabelsFieldsWhereTheyAre)
{
    const Bytes Write = CommanderStream().Header(0x20).Byte(0x01).Byte(0x02).Byte(0xDC).Data();
    const std::string Picture = PictureOf(Write, Write);
    EXPECT_EQ(MiddleOf(Picture, "name", "break"), MiddleOfSamples(0, 104));
    EXPECT_EQ(MiddleOf(Picture, "value", "13 bit"), MiddleOfSamples(0, 104));
    EXPECT_EQ(MiddleOf(Picture, "name", "sync"), MiddleOfSamples(112, 192));
    EXPECT_EQ(MiddleOf(Picture, "value", "0x55"), MiddleOfSamples(112, 192));
    EXPECT_EQ(MiddleOf(Picture, "name", "identifier"), MiddleOfSamples(192, 272));
    EXPECT_EQ(MiddleOf(Picture, "value", "0x20"), MiddleOfSamples(192, 272));
    EXPECT_EQ(MiddleOf(Picture, "name", "data 2"), MiddleOfSamples(352, 432));
    EXPECT_EQ(MiddleOf(Picture, "value", "0x02"), MiddleOfSamples(352, 432));
    EXPECT_EQ(MiddleOf(Picture, "name", "checksum"), MiddleOfSamples(432, 512));
    EXPECT_EQ(MiddleOf(Picture, "value", "0xDC"), MiddleOfSamples(432, 512));
    EXPECT_EQ(MiddleOf(Picture, "number", "30"), MiddleOfSamples(240, 240));
    EXPECT_EQ(MiddleOf(Picture, "number", "3.000"), MiddleOfSamples(240, 240)) << "milliseconds at 10 kbit/s";
    EXPECT_NE(Picture.find(">enhanced checksum<"), std::string::npos);
    EXPECT_EQ(CountOf(Picture, "class=\"faulty\""), 1U) << "the one in the legend";
}

TEST(SVGWriter, TellsTheSlavesFieldsFromTheCommanders)
{
    const std::string Picture = PictureOf(ReadTx, Answer({0x12, 0x34, 0x3C}, 2));
    EXPECT_EQ(MiddleOf(Picture, "value", "0x12"), MiddleOfSamples(288, 368));
    EXPECT_EQ(MiddleOf(Picture, "name", "checksum"), MiddleOfSamples(448, 528));
    EXPECT_EQ(CountOf(Picture, "class=\"slave-band\""), 1U + 3U) << "legend and answer";
    EXPECT_EQ(CountOf(Picture, "class=\"commander-band\""), 1U + 3U) << "legend and header";
    EXPECT_NE(Picture.find("class=\"slave-level\" d=\"M302.4 62V82H315.2"), std::string::npos)
        << "from the start edge on, which falls from the idle level";
    EXPECT_NE(Picture.find(">Read 0x3D<"), std::string::npos);
    EXPECT_NE(Picture.find(">response space 2.0 bit<"), std::string::npos);
}

TEST(SVGWriter, DrawsNothingOfASlaveThatIsSilent)
{
    const std::string Picture = PictureOf(ReadTx, ReadTx);
    EXPECT_EQ(CountOf(Picture, "class=\"slave-level\""), 0U);
    EXPECT_EQ(CountOf(Picture, "class=\"slave-band\""), 1U) << "legend";
}

TEST(SVGWriter, NamesTheChecksumModel)
{
    EXPECT_NE(PictureOf(ReadTx, Answer({0x12, 0x34, 0x3C}, 1)).find(">enhanced checksum<"), std::string::npos);
    EXPECT_NE(PictureOf(ReadTx, Answer({0x12, 0x34, 0xB9}, 1)).find(">classic checksum<"), std::string::npos);
    EXPECT_EQ(PictureOf(ReadTx, Answer({0x12}, 1)).find("checksum<"), std::string::npos) << "a byte alone is neither";
}

TEST(SVGWriter, DrawsTheBusByItsEdges)
{
    const Bytes Break = CommanderStream().Break().Data();
    EXPECT_NE(PictureOf({Sent(Break)}).find("d=\"M72 82V82H155.2V62H161.6\""), std::string::npos);
}

TEST(SVGWriter, PointsOutFaults)
{
    struct Case {
        const char* What;
        Bytes Tx, Rx;
        std::string Note;
        std::size_t Fields; // outlined
    };
    const auto Write = [](std::uint8_t Identifier, const Bytes& Data) {
        CommanderStream Stream;
        Stream.Header(Identifier);
        for (const std::uint8_t Byte : Data) {
            Stream.Byte(Byte);
        }
        return Stream.Data();
    };
    const Bytes Good = Write(0x20, {1, 2, 0xDC});
    const Bytes Silent(Good.size(), 0xFF);
    Bytes LateGlitch = Answer({0x12, 0x34, 0x3C}, 1);
    LateGlitch[100] = 0xC3;
    const Bytes WrongSync = CommanderStream().Break().Byte(0x54).Byte(0x20).Byte(1).Byte(0xDE).Data();
    const Case Cases[] = {
        {"no answer", ReadTx, ReadTx, "no answer", 0},
        {"wrong checksum of a slave", ReadTx, Answer({0x12, 0x34, 0x3D}, 1), "checksum fits neither model", 1},
        {"wrong checksum of the commander", Write(0x20, {1, 2, 0}), Write(0x20, {1, 2, 0}),
         "checksum fits neither model", 1},
        {"parity", Write(0x21, {1, 0xDD}), Write(0x21, {1, 0xDD}), "identifier parity wrong", 1},
        {"sync byte", WrongSync, WrongSync, "sync byte is not 0x55", 1},
        {"byte changed", Good, Write(0x20, {1, 0, 0xDC}), "bus not as sent", 1},
        {"no echo", Good, Silent, "bus not as sent", 3},
        {"glitch", ReadTx, LateGlitch, "framing: start bit recessive at bit 100.75", 1},
    };
    for (const Case& c : Cases) {
        const std::string Picture = PictureOf(c.Tx, c.Rx);
        EXPECT_NE(Picture.find("class=\"fault\" dx=\"12\">\u2715 " + c.Note + "</tspan>"), std::string::npos) << c.What;
        EXPECT_EQ(CountOf(Picture, "class=\"faulty\""), 1 + c.Fields) << c.What;
        EXPECT_EQ(XMLFault(Picture), "") << c.What;
    }
    EXPECT_NE(PictureOf(Good, Write(0x20, {1, 0, 0xDC})).find("0x02\u219200"), std::string::npos) << "sent, then seen";
}

TEST(SVGWriter, GivesFramesAndBreaksRowsThatFitThePicture)
{
    const Bytes Break = CommanderStream().Break().Data();
    const Bytes Wait(50, 0xFF);
    std::ostringstream Out;
    SVGWriter Writer(Out);
    for (int i = 0; i < 300; ++i) {
        Writer.OnStream(Sent(Wait));
        Writer.OnStream(i % 2 == 0 ? Sent(Break) : Exchanged(ReadTx, Answer({0x12, 0x34, 0x3C}, 1)));
    }
    Writer.Finish();
    EXPECT_EQ(CountOf(Out.str(), "<g "), 300U) << "no row for a pause";
    EXPECT_NE(Out.str().find("height=\"44474\" viewBox"), std::string::npos) << "74 and 148 for each row";
    EXPECT_NE(Out.str().find("translate(0 44326)"), std::string::npos) << "the last row";
}

TEST(SVGWriter, EscapesTheTitle)
{
    const std::string Picture = PictureOf({}, "Front <left> & \"rear\"\n\x01");
    EXPECT_NE(Picture.find("<title>Front &lt;left&gt; &amp; &quot;rear&quot;  </title>"), std::string::npos);
    EXPECT_EQ(XMLFault(Picture), "");
}

TEST(SVGWriter, HoldsNoScriptsAndFollowsThePage)
{
    const std::string Picture = PictureOf({});
    EXPECT_EQ(Picture.find("<script"), std::string::npos);
    EXPECT_NE(Picture.find("@media (prefers-color-scheme:dark)"), std::string::npos);
}

TEST(SVGWriter, EndsOnceAndInItsDestructorIfNeedBe)
{
    std::ostringstream Out;
    {
        SVGWriter Writer(Out);
    }
    EXPECT_EQ(XMLFault(Out.str()), "");
    EXPECT_EQ(CountOf(Out.str(), "</svg>"), 1U);

    std::ostringstream Again;
    SVGWriter Writer(Again);
    Writer.Finish();
    const std::string Once = Again.str();
    Writer.OnStream(Sent({0x00, 0xFF}));
    Writer.Finish();
    EXPECT_EQ(Again.str(), Once);
}

} // namespace Pellumo::Testing
