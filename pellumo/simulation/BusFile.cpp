#include "pellumo/simulation/BusFile.h"

#include "pellumo/common/FrameBytes.h"
#include "pellumo/errPellumo.h"
#include "pellumo/simulation/BusFileFaults.h"
#include "pellumo/simulation/CheckedTable.h"
#include "tarvix/common/Formating.h"
#include "tarvix/common/Raise.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <functional>
#include <map>
#include <system_error>

namespace Pellumo {

namespace {

using Tarvix::FormatText;

/// Who answers an identifier, and where the file says so.
struct Answerer {
    std::string Slave;
    std::int64_t Line;
};
using Answerers = std::map<std::uint8_t, Answerer>;

void ReadChecksum(const CheckedTable& Table, FrameDescription& Frame)
{
    if (!Table.Has("checksum")) {
        return;
    }
    if (Table.IsText("checksum")) {
        constexpr std::array<std::string_view, 2> Models = {"classic", "enhanced"};
        Frame.Checksum = Table.OneOf("checksum", Models) == 0 ? Tarvix::elcLIN13 : Tarvix::elcLIN20;
    } else {
        Frame.FixedChecksum = static_cast<std::uint8_t>(Table.Whole("checksum", {0, 0xFF}));
    }
}

FrameDescription ReadFrame(const CheckedTable& Table)
{
    Table.AllowOnly({"id", "data", "copies", "checksum"});
    FrameDescription Frame;
    Frame.Identifier = ReadIdentifier(Table, "id");
    if (Table.Has("copies")) {
        if (Table.Has("data")) {
            Table.FailAt("copies", "a frame has either \"data\" or \"copies\", not both");
        }
        Frame.Copies = ReadIdentifier(Table, "copies");
    } else if (Table.Has("data")) {
        Frame.Data = Table.Bytes("data", MaximumDataBytes);
    } else {
        Table.Fail("[[slave.frame]] needs either \"data\" or \"copies\"");
    }
    ReadChecksum(Table, Frame);
    return Frame;
}

void RefuseASecondAnswer(const CheckedTable& Table, std::uint8_t Identifier, const std::string& Slave, Answerers& Known)
{
    const auto [First, Added] = Known.insert({Identifier, {Slave, Table.LineOf("id")}});
    if (!Added) {
        Table.FailAt("id", FormatText("identifier %1 is answered by \"%2\" already (line %3)",
                                      {HexByte(Identifier), First->second.Slave, First->second.Line}));
    }
}

void RefuseACopyOfOwnFrame(const CheckedTable& Table, const FrameDescription& Frame, const SlaveDescription& Slave)
{
    const bool Own = std::any_of(Slave.Frames.begin(), Slave.Frames.end(), [&Frame](const FrameDescription& Candidate) {
        return Frame.Copies == Candidate.Identifier;
    });
    if (Own) {
        Table.FailAt("copies", FormatText("identifier %1 is answered by this node itself: it would never receive it",
                                          {HexByte(Frame.Copies.value_or(0))}));
    }
}

SlaveDescription ReadSlave(const CheckedTable& Table, Answerers& Known)
{
    constexpr double LargestClockError = 20.0;
    Table.AllowOnly({"name", "clock_error", "response_space", "byte_space", "frame"});
    SlaveDescription Slave;
    Slave.Name = Table.Text("name");
    Slave.ClockError = Table.NumberOr("clock_error", Slave.ClockError, -LargestClockError, LargestClockError);
    Slave.ResponseSpace = ReadSpace(Table, "response_space", Slave.ResponseSpace);
    Slave.ByteSpace = ReadSpace(Table, "byte_space", Slave.ByteSpace);
    const auto Frames = Table.Tables("frame", "[[slave.frame]]");
    for (const CheckedTable& Frame : Frames) {
        Slave.Frames.push_back(ReadFrame(Frame));
        RefuseASecondAnswer(Frame, Slave.Frames.back().Identifier, Slave.Name, Known);
    }
    for (std::size_t k = 0; k < Frames.size(); ++k) {
        RefuseACopyOfOwnFrame(Frames[k], Slave.Frames[k], Slave);
    }
    return Slave;
}

BusDescription ReadBus(const CheckedTable& File)
{
    File.AllowOnly({"slave", "fault", "seed"});
    BusDescription Bus;
    Answerers Known;
    for (const CheckedTable& Slave : File.Tables("slave", "[[slave]]")) {
        Bus.Slaves.push_back(ReadSlave(Slave, Known));
    }
    for (const CheckedTable& Fault : File.Tables("fault", "[[fault]]")) {
        ReadFault(Fault, Bus);
    }
    Bus.Seed = static_cast<std::uint64_t>(File.WholeOr("seed", static_cast<std::int64_t>(Bus.Seed), {}));
    return Bus;
}

constexpr bool IsASCII(char Byte) noexcept
{
    return static_cast<unsigned char>(Byte) < 0x80;
}

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

/// The text with "?", which no TOML has outside quotes and comments, for every byte that is not ASCII.
std::string WithQuestionMarks(std::string_view Text)
{
    std::string Masked(Text);
    std::replace_if(Masked.begin(), Masked.end(), std::not_fn(IsASCII), '?');
    return Masked;
}

/// A line of the text, counted from 1.
std::string_view LineOf(std::string_view Text, std::size_t Number)
{
    for (; Number > 1; --Number) {
        Text.remove_prefix(std::min(Text.find('\n'), Text.size() - 1) + 1);
    }
    return Text.substr(0, Text.find('\n'));
}

/// True when a letter that is not ASCII stands at `Place`, whose column counts bytes.
bool HasLetterAt(std::string_view Text, const toml::source_position& Place)
{
    const std::string_view Line = LineOf(Text, Place.line);
    return Place.column >= 1 && Place.column <= Line.size() && !IsASCII(Line[Place.column - 1]);
}

[[noreturn]] void FailAtMistake(const toml::parse_error& Mistake, std::string_view Name, std::string_view Hint)
{
    FailInFile(Name, static_cast<std::int64_t>(Mistake.source().begin.line),
               std::string(Mistake.description()).append(Hint));
}

/// toml++ 3.3 has undefined behaviour for letters that are not ASCII where no TOML has them, so it looks for mistakes
/// in a text without such letters.
/// @param Text  without a byte-order mark
toml::table ParseTOML(std::string_view Text, std::string_view Name)
{
    const std::string Masked = WithQuestionMarks(Text);
    try {
        (void)toml::parse(Masked);
    } catch (const toml::parse_error& Mistake) {
        const bool IsLetter = HasLetterAt(Text, Mistake.source().begin);
        FailAtMistake(Mistake, Name,
                      IsLetter ? "; letters that are not ASCII may stand only in quotes and comments" : "");
    }
    try {
        return toml::parse(Text);
    } catch (const toml::parse_error& Mistake) {
        FailAtMistake(Mistake, Name, "; save the file as UTF-8");
    }
}

} // namespace

BusDescription ReadBusFile(const std::string& Path)
{
    std::ifstream File(Path, std::ios::binary);
    std::string Text;
    std::array<char, 4096> Block{};
    while (File.read(Block.data(), Block.size()) || File.gcount() > 0) {
        Text.append(Block.data(), static_cast<std::size_t>(File.gcount()));
    }
    if (!File.is_open() || File.bad()) {
        Tarvix::Raise(errPellumo::errBusFile, "BusFile",
                      FormatText("%1: cannot be read (%2)", {Path, std::generic_category().message(errno)}));
    }
    return ParseBusFile(Text, Path);
}

BusDescription ParseBusFile(std::string_view Text, std::string_view Name)
{
    Text.remove_prefix(Text.starts_with(ByteOrderMark) ? ByteOrderMark.size() : 0);
    const toml::table File = ParseTOML(Text, Name);
    return ReadBus(CheckedTable(File, Name, "the file"));
}

} // namespace Pellumo
