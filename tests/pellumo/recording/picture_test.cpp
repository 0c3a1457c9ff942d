/// The picture as its reader sees it, in a browser: levels, boxes and labels must stand at the times and in the colours
/// of what was on the bus.

#include "pellumo/recording/SVGWriter.h"
#include "tests/pellumo/recording/Screenshot.h"
#include "tests/pellumo/recording/StreamRecord.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace Pellumo::Testing {

namespace {

constexpr double FirstBit = 72;
constexpr double BitWidth = 6.4;
constexpr double FirstRow = 74;
constexpr double RowHeight = 148;
// Below the top of a row.
constexpr double BandMiddle = 26;
constexpr double BoxEnd = 90;
constexpr double Recessive = 62;
constexpr double Dominant = 82;

struct Colors {
    ColorScheme Scheme;
    std::uint32_t Page, CommanderBox, SlaveBox, CommanderBand, HatchStroke, CommanderLevel, SlaveLevel, IdleLevel;
    std::uint32_t Text, FaintText;
};

constexpr Colors Light = {ColorScheme::Light, 0xFFFFFF, 0xDDF0FF, 0xFFF0D9, 0x2F78C4, 0xA85B00,
                          0x0B4F9E,           0x8A4500, 0x8C959F, 0x1F2328, 0x57606A};
constexpr Colors Dark = {ColorScheme::Dark, 0x0D1117, 0x12263F, 0x38260F, 0x4A90D9, 0xF0A04B,
                         0x7CB8FF,          0xFFB86B, 0x7D8590, 0xE6EDF3, 0x9AA4AF};

void PrintTo(const Colors& Value, std::ostream* Out)
{
    *Out << (Value.Scheme == ColorScheme::Light ? "light" : "dark");
}

/// A field as it was put on the bus.
struct Field {
    std::string Name;
    int First;
    int Bits;
    unsigned Levels; // bit k is the level of the field's bit k
    bool BySlave = false;

    double Left() const { return FirstBit + BitWidth * First; }
    double Right() const { return Left() + BitWidth * Bits; }
};

Field ByteField(const char* Name, int First, unsigned Value, bool BySlave = false)
{
    return {Name, First, 10, Value << 1U | 1U << 9U, BySlave};
}

using Fields = std::vector<Field>;

Fields FrameOf(unsigned ProtectedIdentifier, const Fields& Response)
{
    Fields Frame = {{"break", 0, 13, 0}, ByteField("sync", 14, 0x55), ByteField("identifier", 24, ProtectedIdentifier)};
    Frame.insert(Frame.end(), Response.begin(), Response.end());
    return Frame;
}

/// A write, a read with an answer and a read without, in the order of their rows.
const std::vector<Fields> Frames = {
    FrameOf(0x20, {ByteField("data 1", 34, 0x01), ByteField("data 2", 44, 0x02), ByteField("checksum", 54, 0xDC)}),
    FrameOf(0x7D, {ByteField("data 1", 36, 0x12, true), ByteField("data 2", 46, 0x34, true),
                   ByteField("checksum", 56, 0x3C, true)}),
    FrameOf(0x7D, {}),
};

std::string PictureOfFrames()
{
    const Bytes Write = CommanderStream().Header(0x20).Byte(0x01).Byte(0x02).Byte(0xDC).Data();
    const Bytes Request = CommanderStream().Request(0x7D).Data();
    const Bytes Answered = CommanderStream().Header(0x7D).Idle(2).Byte(0x12).Byte(0x34).Byte(0x3C).Idle(108).Data();
    std::ostringstream Out;
    SVGWriter Writer(Out);
    Writer.OnStream(Exchanged(Write, Write));
    Writer.OnStream(Exchanged(Request, Answered));
    Writer.OnStream(Exchanged(Request, Request));
    Writer.Finish();
    return Out.str();
}

struct Area {
    double Left, Top, Right, Bottom;
};

/// The smallest area that holds all ink, in steps of a pixel.
struct Ink {
    Area Bounds;
    bool FullColor; // whether some pixel has just the colour asked for
};

} // namespace

class Picture : public testing::TestWithParam<Colors> {
protected:
    /// The colour at a place in a row.
    std::uint32_t At(std::size_t Row, double X, double Y) const
    {
        return Shown_.At(X, FirstRow + RowHeight * static_cast<double>(Row) + Y);
    }

    static int PixelAt(double Length) { return static_cast<int>(std::lround(Length * Screenshot::Scale)); }

    /// What differs from the background in an area of a row.
    std::optional<Ink> InkIn(std::size_t Row, const Area& Where, std::uint32_t Background, std::uint32_t Color) const
    {
        constexpr double Pixel = 1.0 / Screenshot::Scale;
        std::optional<Ink> Found;
        for (int Line = PixelAt(Where.Top); Line < PixelAt(Where.Bottom); ++Line) {
            for (int Column = PixelAt(Where.Left); Column < PixelAt(Where.Right); ++Column) {
                const double X = Column * Pixel;
                const double Y = Line * Pixel;
                const std::uint32_t Seen = At(Row, X, Y);
                if (Seen == Background) {
                    continue;
                }
                const Area Old = Found ? Found->Bounds : Area{X, Y, X, Y};
                Found = {{std::min(Old.Left, X), std::min(Old.Top, Y), std::max(Old.Right, X + Pixel),
                          std::max(Old.Bottom, Y + Pixel)},
                         Seen == Color || (Found && Found->FullColor)};
            }
        }
        return Found;
    }

    std::uint32_t BoxOf(const Field& Field) const { return Field.BySlave ? Is_.SlaveBox : Is_.CommanderBox; }

    void ExpectLevel(std::size_t Row, int Bit, bool IsRecessive, std::uint32_t Line, std::uint32_t Background) const
    {
        const double Middle = FirstBit + BitWidth * (Bit + 0.5);
        EXPECT_EQ(At(Row, Middle, Recessive), IsRecessive ? Line : Background) << "row " << Row << ", bit " << Bit;
        EXPECT_EQ(At(Row, Middle, Dominant), IsRecessive ? Background : Line) << "row " << Row << ", bit " << Bit;
    }

    /// Text in its colour, around the middle of its box, with its lower end at the given height.
    void ExpectCentredText(std::size_t Row, const Field& Field, double Top, double Baseline, double Descent,
                           std::uint32_t Color) const
    {
        const auto Text = InkIn(Row, {Field.Left() + 1, Top, Field.Right() - 1, Baseline + 3}, BoxOf(Field), Color);
        ASSERT_TRUE(Text.has_value());
        EXPECT_TRUE(Text->FullColor);
        EXPECT_NEAR((Text->Bounds.Left + Text->Bounds.Right) / 2, (Field.Left() + Field.Right()) / 2, 1.5);
        EXPECT_GT(Text->Bounds.Right - Text->Bounds.Left, 18) << "too narrow for a word";
        EXPECT_LT(Text->Bounds.Right - Text->Bounds.Left, Field.Right() - Field.Left() - 6) << "too wide for the box";
        EXPECT_GT(Text->Bounds.Top, Top) << "something stands above";
        EXPECT_NEAR(Text->Bounds.Bottom, Baseline + Descent, 0.75);
    }

    // NOLINTNEXTLINE(cppcoreguidelines-avoid-const-or-ref-data-members): the parameter outlives the test
    const Colors& Is_ = GetParam();
    Screenshot Shown_{PictureOfFrames(), Is_.Scheme, 900, 600};
};

TEST_P(Picture, ShowsTheLevelOfEveryBit)
{
    for (std::size_t Row = 0; Row < Frames.size(); ++Row) {
        ExpectLevel(Row, 13, true, Is_.CommanderLevel, Is_.Page); // the delimiter
        for (const Field& Field : Frames[Row]) {
            for (int k = 0; k < Field.Bits; ++k) {
                ExpectLevel(Row, Field.First + k, (Field.Levels >> k & 1U) != 0,
                            Field.BySlave ? Is_.SlaveLevel : Is_.CommanderLevel, BoxOf(Field));
            }
        }
    }
    for (const int Bit : {34, 35, 66, 68}) {
        ExpectLevel(1, Bit, true, Is_.IdleLevel, Is_.Page); // response space, and after the answer
    }
    for (int Bit = 34; Bit < 54; ++Bit) {
        ExpectLevel(2, Bit, true, Is_.IdleLevel, Is_.Page); // nobody answers
    }
}

TEST_P(Picture, TintsEachFieldInTheColourOfItsSender)
{
    for (std::size_t Row = 0; Row < Frames.size(); ++Row) {
        for (const Field& Field : Frames[Row]) {
            SCOPED_TRACE("row " + std::to_string(Row) + ", " + Field.Name);
            for (const double X : {Field.Left() + 1.5, Field.Right() - 1.5}) {
                EXPECT_EQ(At(Row, X, 30), BoxOf(Field));
                EXPECT_EQ(At(Row, X, BoxEnd - 1.5), BoxOf(Field));
                EXPECT_EQ(At(Row, X, BoxEnd + 1.5), Is_.Page);
            }
            const Area Band = {Field.Left() + 1, BandMiddle - 1, Field.Right() - 1, BandMiddle + 1};
            const auto Stroke = InkIn(Row, Band, Is_.SlaveBox, Field.BySlave ? Is_.HatchStroke : Is_.CommanderBand);
            ASSERT_TRUE(Stroke.has_value());
            EXPECT_TRUE(Stroke->FullColor);
        }
        for (const double Y : {30.0, BoxEnd - 1.5}) { // the delimiter lies between boxes
            EXPECT_EQ(At(Row, FirstBit + BitWidth * 13 + 1.5, Y), Is_.Page);
            EXPECT_EQ(At(Row, FirstBit + BitWidth * 14 - 1.5, Y), Is_.Page);
        }
    }
    for (const double Height : {BandMiddle, 40.0, 54.0, BoxEnd - 1.5}) {
        EXPECT_EQ(At(1, FirstBit + BitWidth * 35, Height), Is_.Page) << "response space";
        EXPECT_EQ(At(2, FirstBit + BitWidth * 40, Height), Is_.Page) << "no answer, no field";
    }
}

TEST_P(Picture, LabelsFieldsAndLevelsWhereTheyAre)
{
    for (std::size_t Row = 0; Row < Frames.size(); ++Row) {
        for (const Field& Field : Frames[Row]) {
            SCOPED_TRACE("row " + std::to_string(Row) + ", " + Field.Name);
            const double Descent = Field.Name == "sync" ? 2 : 0;
            ExpectCentredText(Row, Field, 30, 40, Descent, Is_.FaintText);
            ExpectCentredText(Row, Field, 43, 54, 0, Is_.Text);
        }
        for (const double Level : {Recessive, Dominant}) {
            const auto Label = InkIn(Row, {8, Level - 8, FirstBit - 4, Level + 8}, Is_.Page, Is_.FaintText);
            ASSERT_TRUE(Label.has_value());
            EXPECT_TRUE(Label->FullColor);
            EXPECT_NEAR(Label->Bounds.Right, FirstBit - 8, 1);
            EXPECT_NEAR((Label->Bounds.Top + Label->Bounds.Bottom) / 2, Level, 1.5) << "beside its level";
        }
        for (int Bit = 0; Bit <= 50; Bit += 10) {
            const double X = FirstBit + BitWidth * Bit;
            const auto Number = InkIn(Row, {X - 15, 104, X + 15, 117}, Is_.Page, Is_.FaintText);
            ASSERT_TRUE(Number.has_value()) << "bit " << Bit;
            EXPECT_NEAR((Number->Bounds.Left + Number->Bounds.Right) / 2, X, 1) << "bit " << Bit;
        }
        const auto Title = InkIn(Row, {8, 0, 90, 20}, Is_.Page, Is_.Text);
        ASSERT_TRUE(Title.has_value());
        EXPECT_TRUE(Title->FullColor);
        EXPECT_NEAR(Title->Bounds.Left, 16, 2);
    }
}

INSTANTIATE_TEST_SUITE_P(Schemes, Picture, testing::Values(Light, Dark),
                         [](const auto& Info) { return Info.param.Scheme == ColorScheme::Light ? "Light" : "Dark"; });

} // namespace Pellumo::Testing
