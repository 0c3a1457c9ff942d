#include "pellumo/simulation/BusFileFaults.h"

#include "pellumo/common/FrameBytes.h"
#include "pellumo/simulation/CheckedTable.h"
#include "tarvix/common/Formating.h"

#include <algorithm>
#include <array>
#include <limits>

namespace Pellumo {

namespace {

using Tarvix::FormatText;

constexpr WholeRange SampleRange{0, 1'000'000'000'000};
constexpr WholeRange OccurrenceRange{1, 1'000'000'000};

constexpr std::array<std::string_view, 2> LevelNames = {"dominant", "recessive"};
constexpr std::array Levels = {WireFault::Effect::Dominant, WireFault::Effect::Recessive};

std::int32_t ReadOccurrence(const CheckedTable& Table)
{
    return static_cast<std::int32_t>(Table.WholeOr("occurrence", 0, OccurrenceRange));
}

FaultPlace ReadPlace(const CheckedTable& Table)
{
    FaultPlace Place;
    if (Table.Has("frame")) {
        Place.Frame = ReadIdentifier(Table, "frame");
    }
    for (const std::string_view Key : {"byte", "occurrence"}) {
        if (Table.Has(Key) && !Place.Frame) {
            Table.FailAt(Key, FormatText("\"%1\" needs \"frame\"", {std::string(Key)}));
        }
    }
    if (Table.Has("byte")) {
        Place.Byte = static_cast<std::int32_t>(Table.Whole("byte", {0, 255}));
    }
    Place.Sample = Table.WholeOr("sample", 0, SampleRange);
    Place.Occurrence = ReadOccurrence(Table);
    return Place;
}

/// A fault of the wire that lasts for good unless the file tells its length.
WireFault ReadWireFault(const CheckedTable& Table, WireFault::Effect Kind)
{
    WireFault Fault{.Kind = Kind, .Place = ReadPlace(Table)};
    if (Table.Has("length")) {
        Fault.Length = Table.Whole("length", {1, SampleRange.Most});
    }
    return Fault;
}

void ReadGlitch(const CheckedTable& Table, BusDescription& Bus)
{
    Table.AllowOnly({"kind", "level", "frame", "byte", "occurrence", "sample", "length"});
    WireFault Fault = ReadWireFault(Table, Levels[Table.OneOf("level", LevelNames)]);
    Fault.Length = Fault.Length.value_or(1);
    Bus.WireFaults.push_back(Fault);
}

void ReadStuck(const CheckedTable& Table, BusDescription& Bus)
{
    Table.AllowOnly({"kind", "level", "frame", "byte", "occurrence", "sample", "length"});
    Bus.WireFaults.push_back(ReadWireFault(Table, Levels[Table.OneOf("level", LevelNames)]));
}

void ReadMissingEcho(const CheckedTable& Table, BusDescription& Bus)
{
    Table.AllowOnly({"kind", "frame", "byte", "occurrence", "sample", "length"});
    Bus.WireFaults.push_back(ReadWireFault(Table, WireFault::Effect::NoEcho));
}

void ReadNoise(const CheckedTable& Table, BusDescription& Bus)
{
    Table.AllowOnly({"kind", "probability", "frame", "byte", "occurrence", "sample", "length"});
    WireFault Fault = ReadWireFault(Table, WireFault::Effect::Noise);
    Fault.Probability = Table.Number("probability", 0.0, 1.0);
    Bus.WireFaults.push_back(Fault);
}

/// The frame of a fault that spoils an answer: somebody must answer it.
AnswerFault ReadAnswerFault(const CheckedTable& Table, const BusDescription& Bus, AnswerFault::Effect Kind)
{
    const AnswerFault Fault{.Kind = Kind, .Frame = ReadIdentifier(Table, "frame"), .Occurrence = ReadOccurrence(Table)};
    const auto Answers = [&Fault](const SlaveDescription& Slave) {
        return std::any_of(Slave.Frames.begin(), Slave.Frames.end(),
                           [&Fault](const FrameDescription& Frame) { return Frame.Identifier == Fault.Frame; });
    };
    if (std::none_of(Bus.Slaves.begin(), Bus.Slaves.end(), Answers)) {
        Table.FailAt("frame", FormatText("no slave answers identifier %1", {HexByte(Fault.Frame)}));
    }
    return Fault;
}

void ReadWrongChecksum(const CheckedTable& Table, BusDescription& Bus)
{
    Table.AllowOnly({"kind", "frame", "occurrence"});
    Bus.AnswerFaults.push_back(ReadAnswerFault(Table, Bus, AnswerFault::Effect::WrongChecksum));
}

void ReadLengthFault(const CheckedTable& Table, BusDescription& Bus, AnswerFault::Effect Kind)
{
    constexpr WholeRange ByteRange{1, 16};
    Table.AllowOnly({"kind", "frame", "occurrence", "bytes"});
    AnswerFault Fault = ReadAnswerFault(Table, Bus, Kind);
    Fault.Bytes = static_cast<std::int32_t>(Table.WholeOr("bytes", 1, ByteRange));
    Bus.AnswerFaults.push_back(Fault);
}

void ReadCollision(const CheckedTable& Table, BusDescription& Bus)
{
    Table.AllowOnly({"kind", "frame", "occurrence", "data", "response_space"});
    CollisionFault Fault{.Frame = ReadIdentifier(Table, "frame"), .Occurrence = ReadOccurrence(Table)};
    if (Table.Has("data")) {
        Fault.Data = Table.Bytes("data", MaximumDataBytes);
    }
    Fault.ResponseSpace = ReadSpace(Table, "response_space", Fault.ResponseSpace);
    Bus.Collisions.push_back(Fault);
}

struct Kind {
    std::string_view Name;
    void (*Read)(const CheckedTable&, BusDescription&);
};

constexpr std::array<Kind, 8> Kinds = {{
    {"glitch", ReadGlitch},
    {"stuck", ReadStuck},
    {"missing_echo", ReadMissingEcho},
    {"noise", ReadNoise},
    {"wrong_checksum", ReadWrongChecksum},
    {"short_answer",
     [](const CheckedTable& Table, BusDescription& Bus) { ReadLengthFault(Table, Bus, AnswerFault::Effect::Short); }},
    {"long_answer",
     [](const CheckedTable& Table, BusDescription& Bus) { ReadLengthFault(Table, Bus, AnswerFault::Effect::Long); }},
    {"collision", ReadCollision},
}};

} // namespace

void ReadFault(const CheckedTable& Table, BusDescription& Bus)
{
    std::array<std::string_view, Kinds.size()> Names;
    std::transform(Kinds.begin(), Kinds.end(), Names.begin(), [](const Kind& Known) { return Known.Name; });
    Kinds[Table.OneOf("kind", Names)].Read(Table, Bus);
}

std::uint8_t ReadIdentifier(const CheckedTable& Table, std::string_view Key)
{
    constexpr WholeRange Any{std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
    const std::int64_t Identifier = Table.Whole(Key, Any);
    if (Identifier < 0 || Identifier > 0x3F) {
        Table.FailAt(Key, FormatText("\"%1\" must be a frame identifier from 0x00 to 0x3F", {std::string(Key)}));
    }
    return static_cast<std::uint8_t>(Identifier);
}

double ReadSpace(const CheckedTable& Table, std::string_view Key, double Otherwise)
{
    constexpr double Longest = 1000.0;
    return Table.NumberOr(Key, Otherwise, 0.0, Longest);
}

} // namespace Pellumo
