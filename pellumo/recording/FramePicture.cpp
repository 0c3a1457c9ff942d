#include "pellumo/recording/FramePicture.h"

#include "pellumo/common/SampleRuns.h"
#include "pellumo/recording/FrameNotes.h"
#include "pellumo/recording/SVGText.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

namespace Pellumo {

namespace {

constexpr std::int64_t Bit = 8;
constexpr std::int64_t BitsPerLabel = 10;

// Heights of the parts of a row, in pixels.
constexpr int HeadingLine = 14;
constexpr int BoxTop = 24;
constexpr int BoxHeight = 66;
constexpr int BandHeight = 4;
constexpr int NameLine = 40;
constexpr int ValueLine = 54;
constexpr int RecessiveLevel = 62;
constexpr int DominantLevel = 82;
constexpr int SamplingPoints = 86;
constexpr int AxisLine = 97;
constexpr int BitLine = 114;
constexpr int TimeLine = 127;

std::string X(std::int64_t Sample)
{
    return Tenths(FramePicture::LeftMargin + FramePicture::SampleWidth * Sample);
}

std::string Y(int Pixel)
{
    return std::to_string(Pixel);
}

struct Attribute {
    const char* Name;
    std::string Value;
};

/// `Element("text", {{"x", "5"}}, "content")`.
std::string Element(const char* Tag, std::initializer_list<Attribute> Attributes, const std::string& Content = {})
{
    std::string Markup = std::string("<").append(Tag);
    for (const auto& [Name, Value] : Attributes) {
        Markup.append(" ").append(Name).append("=\"").append(Value).append("\"");
    }
    if (Content.empty()) {
        return Markup.append("/>");
    }
    return Markup.append(">").append(Content).append("</").append(Tag).append(">");
}

std::string TextAt(const char* Class, const std::string& AtX, int AtY, const std::string& Content)
{
    return Element("text", {{"class", Class}, {"x", AtX}, {"y", Y(AtY)}}, EscapeXML(Content));
}

std::string Box(const char* Class, const FrameField& Field, int Top, int Height)
{
    return Element("rect", {{"class", Class},
                            {"x", X(Field.First)},
                            {"y", Y(Top)},
                            {"width", Tenths(FramePicture::SampleWidth * (Field.End - Field.First))},
                            {"height", Y(Height)}});
}

std::string DrawField(const FrameField& Field)
{
    const std::string Middle =
        Tenths(FramePicture::LeftMargin + FramePicture::SampleWidth * (Field.First + Field.End) / 2);
    std::string Markup = Box(Field.BySlave ? "slave" : "commander", Field, BoxTop, BoxHeight);
    Markup += Box(Field.BySlave ? "slave-band" : "commander-band", Field, BoxTop, BandHeight);
    Markup += TextAt("name", Middle, NameLine, Field.Name);
    Markup += TextAt(Field.Faulty ? "value fault" : "value", Middle, ValueLine, Field.Value);
    return Markup.append("\n");
}

/// The samples [First, End) as a line, from the level before them on.
std::string DrawLevel(const char* Class, std::span<const std::uint8_t> Samples, std::int64_t First, std::int64_t End)
{
    const auto LevelAt = [Samples](std::int64_t n) {
        return Y(SampleAt(Samples, static_cast<std::size_t>(n)) != 0 ? RecessiveLevel : DominantLevel);
    };
    if (First >= End) {
        return {};
    }
    std::string Path =
        std::string("M").append(X(First)).append(" ").append(LevelAt(std::max<std::int64_t>(First - 1, 0)));
    for (std::int64_t n = First; n < End;) {
        Path.append("V").append(LevelAt(n));
        n = std::min(End, static_cast<std::int64_t>(EndOfRun(Samples, static_cast<std::size_t>(n))));
        Path.append("H").append(X(n));
    }
    return Element("path", {{"class", Class}, {"d", Path}}).append("\n");
}

/// What the commander drove where the bus did not follow, from the first byte of samples that differs to the last.
std::string DrawDriven(const BusEvent& Event)
{
    const auto Tx = Event.Stream.Tx;
    const auto Rx = Event.Stream.Rx.first(
        Event.Kind == BusEventKind::Read ? static_cast<std::size_t>(Event.ResponseBegin) / 8 : Tx.size());
    const auto First = std::mismatch(Rx.begin(), Rx.end(), Tx.begin()).first - Rx.begin();
    auto End = static_cast<std::ptrdiff_t>(Rx.size());
    while (End > First && Rx[static_cast<std::size_t>(End) - 1] == Tx[static_cast<std::size_t>(End) - 1]) {
        --End;
    }
    return DrawLevel("driven", Tx, First * 8, End * 8);
}

/// The bus, each part in the manner of who was to drive it.
std::string DrawLevels(const BusEvent& Event, const FrameField& LastField, std::int64_t End)
{
    if (Event.Kind != BusEventKind::Read) {
        return DrawLevel("commander-level", Event.Stream.Rx, 0, End);
    }
    const std::int64_t CommanderEnd = Event.ResponseBegin;
    const auto FirstEdge = Event.StartEdges.empty() ? Event.FaultStartEdge : Event.StartEdges.front();
    const bool Answered = LastField.BySlave;
    const std::int64_t AnswerBegin = Answered ? FirstEdge : CommanderEnd;
    const std::int64_t AnswerEnd = Answered ? LastField.End : CommanderEnd;
    std::string Markup = DrawLevel("commander-level", Event.Stream.Rx, 0, CommanderEnd);
    Markup += DrawLevel("idle-level", Event.Stream.Rx, CommanderEnd, AnswerBegin);
    Markup += DrawLevel("slave-level", Event.Stream.Rx, AnswerBegin, AnswerEnd);
    return Markup + DrawLevel("idle-level", Event.Stream.Rx, AnswerEnd, End);
}

/// A short stroke for every sample that judged a bit of the response.
std::string DrawSamplingPoints(const BusEvent& Event)
{
    std::string Path;
    for (const std::int64_t StartEdge : Event.StartEdges) {
        for (int k = 0; k <= 9; ++k) {
            const std::int64_t Sample = StartEdge + Bit / 2 + Bit * k;
            const std::int64_t Middle = FramePicture::SampleWidth * Sample + FramePicture::SampleWidth / 2;
            Path.append("M").append(Tenths(FramePicture::LeftMargin + Middle)).append(" ").append(Y(SamplingPoints));
            Path.append("v4");
        }
    }
    return Path.empty() ? Path : Element("path", {{"class", "sampling"}, {"d", Path}}).append("\n");
}

/// Outlines of the fields at fault, and a cross at the sample that ended decoding.
std::string DrawFaults(const BusEvent& Event, std::span<const FrameField> Fields)
{
    std::string Markup;
    for (const FrameField& Field : Fields) {
        Markup += Field.Faulty ? Box("faulty", Field, BoxTop, BoxHeight).append("\n") : "";
    }
    if (Event.Fault == ResponseFault::None) {
        return Markup;
    }
    const int Middle = (RecessiveLevel + DominantLevel) / 2;
    const std::string Cross =
        std::string("M").append(X(Event.FaultSample)).append(" ").append(Y(Middle)).append("m-5-5l10 10m0-10l-10 10");
    return Markup + Element("path", {{"class", "cross"}, {"d", Cross}}).append("\n");
}

std::string DrawAxis(const SampleStream& Stream, std::int64_t End)
{
    const std::string Line = std::string("M").append(X(0)).append(" ").append(Y(AxisLine)).append("H").append(X(End));
    std::string Markup;
    for (const char* const Class : {"axis", "axis ticks", "axis marks"}) {
        Markup += Element("path", {{"class", Class}, {"d", Line}});
    }
    const std::string Left = Tenths(FramePicture::LeftMargin - 200);
    const std::string BesideLevel = Tenths(FramePicture::LeftMargin - 80);
    Markup += TextAt("unit", BesideLevel, RecessiveLevel + 3, "recessive");
    Markup += TextAt("unit", BesideLevel, DominantLevel + 3, "dominant");
    Markup += TextAt("unit", Left, BitLine, "bit");
    const bool ClockKnown = Stream.Frequency > 0.0;
    Markup += ClockKnown ? TextAt("unit", Left, TimeLine, "ms") : "";
    for (std::int64_t Sample = 0; Sample <= End; Sample += BitsPerLabel * Bit) {
        Markup += TextAt("number", X(Sample), BitLine, BitTimes(Sample));
        if (ClockKnown) {
            Markup += TextAt("number", X(Sample), TimeLine,
                             Decimal(1000.0 * static_cast<double>(Sample) / Stream.Frequency, 3));
        }
    }
    return Markup.append("\n");
}

/// Where the drawing ends: a little after the last dominant sample, or later to show that nobody answers.
std::int64_t DrawnSamples(const BusEvent& Event)
{
    auto Active = Event.Stream.Rx;
    while (!Active.empty() && Active.back() == 0xFF) {
        Active = Active.first(Active.size() - 1);
    }
    const std::int64_t Activity = static_cast<std::int64_t>(Active.size()) * 8;
    const std::int64_t Shown = std::max({Activity, Event.BreakSamples, Event.ResponseBegin});
    const bool Silent = Event.Kind == BusEventKind::Read && Event.Received.empty();
    return std::min(Event.Stream.Samples(), Shown + (Silent ? 20 * Bit : 4 * Bit));
}

const char* KindName(BusEventKind Kind)
{
    switch (Kind) {
    case BusEventKind::Break: return "Break";
    case BusEventKind::Write: return "Write";
    default: return "Read";
    }
}

/// What stands above a frame. Characters are counted to know how wide it is.
struct Heading {
    std::string Markup;
    std::size_t Characters = 0;

    void Add(const char* Class, const std::string& Text)
    {
        Markup += Element("tspan", {{"class", Class}, {"dx", Characters == 0 ? "0" : "12"}}, EscapeXML(Text));
        Characters += Text.size() + 2;
    }
};

Heading HeadingOf(const BusEvent& Event)
{
    Heading Result;
    std::string Title = KindName(Event.Kind);
    if (Event.Kind != BusEventKind::Break) {
        Title.append(" 0x").append(TwoDigits(Event.ProtectedIdentifier & 0x3FU));
    }
    Result.Add("title", Title);
    if (Event.Stream.Frequency > 0.0) {
        Result.Add("fact", std::string("at ").append(Decimal(1000.0 * Event.Seconds, 3)).append(" ms"));
        Result.Add("fact", Decimal(Event.Stream.Frequency / static_cast<double>(Bit), 0).append(" bit/s"));
    }
    const FrameNotes Notes = NotesOn(Event);
    for (const std::string& Fault : Notes.Faults) {
        Result.Add("fault", std::string("\u2715 ").append(Fault));
    }
    for (const std::string& Fact : Notes.Facts) {
        Result.Add("fact", Fact);
    }
    return Result;
}

} // namespace

FramePicture DrawFrame(const BusEvent& Event)
{
    constexpr std::int64_t CharacterWidth = 64;
    constexpr std::int64_t RightMargin = 240;
    const std::int64_t End = DrawnSamples(Event);
    const Heading Above = HeadingOf(Event);
    const std::vector<FrameField> Fields = FieldsOf(Event);

    FramePicture Picture;
    Picture.Markup =
        Element("text", {{"class", "heading"}, {"x", "16"}, {"y", Y(HeadingLine)}}, Above.Markup).append("\n");
    for (const FrameField& Field : Fields) {
        Picture.Markup += DrawField(Field);
    }
    Picture.Markup += DrawLevels(Event, Fields.back(), End);
    if (Event.Kind != BusEventKind::Break && IsDisturbed(Event)) {
        Picture.Markup += DrawDriven(Event);
    }
    Picture.Markup += DrawSamplingPoints(Event);
    Picture.Markup += DrawFaults(Event, Fields);
    Picture.Markup += DrawAxis(Event.Stream, End);

    const std::int64_t Drawn = FramePicture::LeftMargin + FramePicture::SampleWidth * End;
    Picture.Width = RightMargin + std::max(Drawn, CharacterWidth * static_cast<std::int64_t>(Above.Characters));
    return Picture;
}

} // namespace Pellumo
