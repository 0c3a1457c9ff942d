#include "tools/tarvix/FrameMonitor.h"

#include "tools/tarvix/FrameFailure.h"

#include <algorithm>

namespace Tarvix::Tool {

namespace {

/// Splits a response that came to its end into data and checksum.
void SetResponse(FrameReport& Report, std::span<const std::uint8_t> Bytes, bool Complete)
{
    if (Complete && !Bytes.empty()) {
        Report.Checksum = Bytes.back();
        Bytes = Bytes.first(Bytes.size() - 1);
    }
    Report.Data.assign(Bytes.begin(), Bytes.end());
}

FrameReport ReportOf(const Pellumo::BusEvent& Event)
{
    FrameReport Report;
    Report.Seconds = Event.Seconds;
    Report.ProtectedIdentifier = Event.ProtectedIdentifier;
    if (Event.Kind == Pellumo::BusEventKind::Write) {
        Report.Operation = FrameOperation::Write;
        SetResponse(Report, Event.Sent, true);
    } else {
        SetResponse(Report, Event.Received, Event.Fault == Pellumo::ResponseFault::None);
        Report.Timing = Pellumo::MeasureAnswer(Event.Stream.Rx, Event.ResponseBegin, Event.StartEdges);
    }
    return Report;
}

bool HasDominantSamples(std::span<const std::uint8_t> Samples)
{
    return std::ranges::any_of(Samples, [](std::uint8_t Eight) { return Eight != 0xFF; });
}

} // namespace

void FrameMonitor::OnEvent(const Pellumo::BusEvent& Event)
{
    Settle();
    if (Event.Kind == Pellumo::BusEventKind::Write || Event.Kind == Pellumo::BusEventKind::Read) {
        Waiting_ = ReportOf(Event);
        Sent_ = true;
        Heard_ = Heard_ || HasDominantSamples(Event.Stream.Rx);
    }
}

void FrameMonitor::Settle()
{
    if (const auto Report = Take()) {
        OnFrame_(*Report);
    }
}

void FrameMonitor::Fail(const Error& Failure)
{
    if (auto Report = Take()) {
        if (TellsOf(Failure, *Report)) {
            Report->Failure = Failure;
        }
        OnFrame_(*Report);
    }
}

} // namespace Tarvix::Tool
