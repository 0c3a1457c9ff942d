#include "tools/tarvix/FrameMonitor.h"

#include "tools/tarvix/FrameFailure.h"

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

} // namespace

void FrameMonitor::OnEvent(const Pellumo::BusEvent& Event)
{
    Settle();
    if (Event.Kind == Pellumo::BusEventKind::Write || Event.Kind == Pellumo::BusEventKind::Read) {
        Waiting_ = ReportOf(Event);
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
