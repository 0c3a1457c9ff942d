#include "pellumo/recording/FrameNotes.h"

#include "pellumo/common/FrameBytes.h"
#include "pellumo/common/SampleRuns.h"
#include "pellumo/recording/AnswerTiming.h"
#include "pellumo/recording/SVGText.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace Pellumo {

namespace {

constexpr std::int64_t Bit = 8;
constexpr std::int64_t FramedByte = 10 * Bit;

std::string Hex(std::uint8_t Byte)
{
    return std::string("0x").append(TwoDigits(Byte));
}

bool IsComplete(const BusEvent& Event)
{
    return Event.Fault == ResponseFault::None && Event.Received.size() >= 2;
}

/// The bytes whose last one is the checksum; none where that cannot be said.
std::span<const std::uint8_t> Response(const BusEvent& Event)
{
    if (Event.Kind == BusEventKind::Write) {
        return Event.Sent;
    }
    return IsComplete(Event) ? Event.Received : std::span<const std::uint8_t>{};
}

enum class ChecksumModel : std::uint8_t { None, Classic, Enhanced };

ChecksumModel ModelOf(std::uint8_t ProtectedIdentifier, std::span<const std::uint8_t> Bytes)
{
    const auto Data = Bytes.first(Bytes.size() - 1);
    if (Bytes.back() == Checksum(ProtectedIdentifier, Data)) {
        return ChecksumModel::Enhanced;
    }
    return Bytes.back() == Checksum(0, Data) ? ChecksumModel::Classic : ChecksumModel::None;
}

bool HasWrongChecksum(const BusEvent& Event)
{
    const auto Bytes = Response(Event);
    return !Bytes.empty() && ModelOf(Event.ProtectedIdentifier, Bytes) == ChecksumModel::None;
}

bool HasWrongParity(const BusEvent& Event)
{
    return ProtectedIdentifier(Event.ProtectedIdentifier) != Event.ProtectedIdentifier;
}

void AddHeaderFields(const BusEvent& Event, std::vector<FrameField>& Fields)
{
    const std::int64_t Sync = Event.BreakSamples + Bit;
    const std::int64_t Identifier = Sync + FramedByte;
    Fields.push_back({Sync, Identifier, "sync", Hex(Event.SyncByte), false, Event.SyncByte != 0x55});
    Fields.push_back({Identifier, Identifier + FramedByte, "identifier", Hex(Event.ProtectedIdentifier), false,
                      HasWrongParity(Event)});
}

void AddSentFields(const BusEvent& Event, std::vector<FrameField>& Fields)
{
    for (std::size_t i = 0; i < Event.Sent.size(); ++i) {
        const std::int64_t First = Event.ResponseBegin + FramedByte * static_cast<std::int64_t>(i);
        const bool Missing = i >= Event.Received.size();
        const bool Differs = !Missing && Event.Received[i] != Event.Sent[i];
        std::string Value = Hex(Event.Sent[i]);
        if (Differs) {
            Value.append("\u2192").append(TwoDigits(Event.Received[i])); // sent, then seen
        }
        Fields.push_back({First, First + FramedByte, {}, std::move(Value), false, Missing || Differs});
    }
}

void AddReceivedFields(const BusEvent& Event, std::vector<FrameField>& Fields)
{
    for (std::size_t i = 0; i < Event.Received.size(); ++i) {
        const std::int64_t First = Event.StartEdges[i];
        const std::int64_t Next = i + 1 < Event.StartEdges.size() ? Event.StartEdges[i + 1] : Event.ResponseEnd;
        Fields.push_back({First, std::min(First + FramedByte, Next), {}, Hex(Event.Received[i]), true, false});
    }
    if (Event.Fault != ResponseFault::None) {
        Fields.push_back({Event.FaultStartEdge,
                          std::min(Event.FaultStartEdge + FramedByte, Event.ResponseEnd),
                          {},
                          "?",
                          true,
                          true});
    }
}

/// Names the fields from `First` on, of which the last is the checksum if there is one.
void NameBytes(const BusEvent& Event, std::size_t First, std::vector<FrameField>& Fields)
{
    for (std::size_t i = First; i < Fields.size(); ++i) {
        Fields[i].Name = std::string("data ").append(std::to_string(i - First + 1));
    }
    if (!Response(Event).empty()) {
        Fields.back().Name = "checksum";
        Fields.back().Faulty = Fields.back().Faulty || HasWrongChecksum(Event);
    }
}

std::string FaultText(const BusEvent& Event)
{
    const std::string At = std::string(" at bit ").append(BitTimes(Event.FaultSample));
    switch (Event.Fault) {
    case ResponseFault::StartBit: return std::string("framing: start bit recessive").append(At);
    case ResponseFault::StopBit: return std::string("framing: stop bit dominant").append(At);
    default: return std::string("cut off by the end of the stream").append(At);
    }
}

void AddTiming(const BusEvent& Event, std::vector<std::string>& Facts)
{
    const auto Timing = MeasureAnswer(Event.Stream.Rx, Event.ResponseBegin, Event.StartEdges);
    if (!Timing) {
        return;
    }
    Facts.push_back(std::string("response space ").append(Decimal(Timing->ResponseSpace, 1)).append(" bit"));
    if (Timing->Clock) {
        Facts.push_back(std::string("slave clock ")
                            .append(std::signbit(Timing->Clock->Deviation) ? "\u2212" : "+")
                            .append(Decimal(std::fabs(Timing->Clock->Deviation), 2))
                            .append(" \u00B1 ")
                            .append(Decimal(Timing->Clock->Accuracy, 2))
                            .append(" %"));
    }
    Facts.push_back(std::string("gap ").append(Decimal(Timing->LongestGap, 1)).append(" bit"));
    Facts.push_back(std::string("margin ").append(std::to_string(Timing->Margin)));
}

} // namespace

std::vector<FrameField> FieldsOf(const BusEvent& Event)
{
    std::vector<FrameField> Fields;
    if (Event.BreakSamples > 0) {
        Fields.push_back({0, Event.BreakSamples, "break", BitTimes(Event.BreakSamples).append(" bit"), false, false});
    }
    if (Event.Kind == BusEventKind::Break) {
        return Fields;
    }
    AddHeaderFields(Event, Fields);
    const std::size_t FirstByte = Fields.size();
    if (Event.Kind == BusEventKind::Write) {
        AddSentFields(Event, Fields);
    } else {
        AddReceivedFields(Event, Fields);
    }
    NameBytes(Event, FirstByte, Fields);
    return Fields;
}

FrameNotes NotesOn(const BusEvent& Event)
{
    FrameNotes Notes;
    if (Event.Kind == BusEventKind::Break) {
        return Notes;
    }
    if (Event.SyncByte != 0x55) {
        Notes.Faults.emplace_back("sync byte is not 0x55");
    }
    if (HasWrongParity(Event)) {
        Notes.Faults.emplace_back("identifier parity wrong");
    }
    if (IsDisturbed(Event)) {
        Notes.Faults.emplace_back("bus not as sent");
    }
    if (Event.Fault != ResponseFault::None) {
        Notes.Faults.push_back(FaultText(Event));
    }
    const bool IsRead = Event.Kind == BusEventKind::Read;
    if (IsRead && Event.Received.empty() && Event.Fault == ResponseFault::None) {
        Notes.Faults.emplace_back("no answer");
    }
    if (HasWrongChecksum(Event)) {
        Notes.Faults.emplace_back("checksum fits neither model");
    } else if (const auto Bytes = Response(Event); !Bytes.empty()) {
        const bool Enhanced = ModelOf(Event.ProtectedIdentifier, Bytes) == ChecksumModel::Enhanced;
        Notes.Facts.emplace_back(Enhanced ? "enhanced checksum" : "classic checksum");
    }
    if (IsRead) {
        AddTiming(Event, Notes.Facts);
    }
    return Notes;
}

bool IsDisturbed(const BusEvent& Event)
{
    const std::int64_t End = Event.Kind == BusEventKind::Write ? Event.ResponseEnd : Event.ResponseBegin;
    const auto Differs = [&Stream = Event.Stream](std::int64_t Sample) {
        const auto Index = static_cast<std::size_t>(Sample);
        return SampleAt(Stream.Tx, Index) != SampleAt(Stream.Rx, Index);
    };
    bool Disturbed = Event.BreakSamples > 0 && Differs(Event.BreakSamples / 2);
    for (std::int64_t Middle = Event.BreakSamples + Bit / 2; Middle < End; Middle += Bit) {
        Disturbed = Disturbed || Differs(Middle);
    }
    return Disturbed;
}

} // namespace Pellumo
