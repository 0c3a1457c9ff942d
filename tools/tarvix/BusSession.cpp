#include "tools/tarvix/BusSession.h"

#include "pellumo/OpenDevice.h"
#include "tools/tarvix/FrameFailure.h"

#include <algorithm>
#include <csignal>
#include <string_view>

namespace Tarvix::Tool {

namespace {

struct LogLines final : icLog {
    void LogEntry(std::string_view LINScript) override { Lines.emplace_back(LINScript); }

    std::vector<std::string> Lines;
};

std::unique_ptr<FramePrinter> MakePrinter(const BusOptions& Options, bool Scan, bool Colour)
{
    switch (Options.Format) {
    case OutputFormat::JSON: return MakeJSONLines(Options.Timing);
    case OutputFormat::Candump: return MakeCandumpLines();
    case OutputFormat::Table: break;
    }
    return MakeTable({Scan, Options.Timing, Colour});
}

/// The failure as the program's end.
ProgramFailure EndedBy(ExitStatus Status, const std::string& What, const Error& Failure)
{
    std::string Text = What + Headline(Failure);
    if (const std::string_view Advice = AdviceFor(Failure); !Advice.empty()) {
        Text.append(" ").append(Advice);
    }
    return {Status, Text};
}

/// Prints the frame whose operation was over when the end came; nothing more can come of a failure.
void PrintLast(BusSession& Session)
{
    try {
        Session.Frames().Settle();
    } catch (const Interrupted&) { // the reader has gone, too
    } catch (const ProgramFailure& Failure) {
        Session.Output().Complain(Failure.what());
    }
}

} // namespace

BusSession::BusSession(const BusOptions& Options, bool Scan)
    : Output_(Options.Quiet), Printer_(MakePrinter(Options, Scan, Output_.Colour())),
      Frames_([this](const FrameReport& Frame) { Print(Frame); }),
      Decoder_([this](const Pellumo::BusEvent& Event) { Frames_.OnEvent(Event); })
{
    OpenDevice(Options.Device);
    CreateFiles(Options, Configure(Options));
}

void BusSession::OpenDevice(const std::string& URL)
{
    try {
        Device_ = Pellumo::OpenDevice(URL);
        Recorder_ = std::make_unique<Pellumo::Recorder>(*Device_);
        Interruptible_ = std::make_unique<InterruptibleDevice>(*Recorder_);
        Master_.Initialize(*Interruptible_);
    } catch (const Error& Failure) {
        throw EndedBy(NoDevice, "", Failure);
    }
    if (URL.starts_with("sim:")) {
        Output_.Note("The bus is simulated (" + URL + "); use -d to name a real device.");
    }
}

/// @return what was logged of it, for a file that is still to be created
std::vector<std::string> BusSession::Configure(const BusOptions& Options)
{
    LogLines Log;
    Master_.Log(&Log);
    try {
        Master_.BaudrateBd(Options.BitRate);
        if (Options.BreakWidth) {
            Master_.BreakWidth(*Options.BreakWidth);
        }
        if (Options.ChecksumModel) {
            Master_.ChecksumMode(*Options.ChecksumModel);
        }
    } catch (const Error& Failure) {
        throw EndedBy(SomethingFailed, "The bus cannot be set up: ", Failure);
    }
    Master_.Log(nullptr);
    return Log.Lines;
}

void BusSession::CreateFiles(const BusOptions& Options, const std::vector<std::string>& Logged)
{
    Files_.emplace(Options);
    Files_->ListenTo(*Recorder_);
    Recorder_->AddListener(Decoder_);
    if (icLog* const Record = Files_->Record()) {
        std::ranges::for_each(Logged, [Record](const std::string& Line) { Record->LogEntry(Line); });
        Master_.Log(Record);
    }
}

void BusSession::Print(const FrameReport& Frame)
{
    std::string Lines = HeadPrinted_ ? std::string() : Printer_->Head();
    HeadPrinted_ = true;
    Output_.Print(Lines.append(Printer_->Line(Frame)));
}

void BusSession::Finish()
{
    Output_.EndProgress();
    try {
        Master_.Terminate();
    } catch (const Error& Failure) {
        throw EndedBy(SomethingFailed, "The device did not close properly: ", Failure);
    }
    Files_->Finish();
}

int WithBus(const BusOptions& Options, bool Scan, const std::function<ExitStatus(BusSession&)>& Work)
{
    BusSession Session(Options, Scan);
    int Status = AllWell;
    try {
        Status = Work(Session);
    } catch (const Interrupted& Request) {
        Status = AfterSignal + Request.Signal;
        if (Request.Signal != SIGPIPE) {
            PrintLast(Session);
        }
    } catch (const ProgramFailure& Failure) {
        Session.Output().Complain(Failure.what());
        Status = Failure.Status();
    }
    if (Session.Frames().HearsNothing()) {
        Session.Output().Complain("Not even what was sent came back from the bus: check the transceiver's supply and "
                                  "enable pin, and the wires at its TXD and RXD.");
        Status = Status == AllWell ? SomethingFailed : Status;
    }
    Session.Finish();
    return Status;
}

} // namespace Tarvix::Tool
