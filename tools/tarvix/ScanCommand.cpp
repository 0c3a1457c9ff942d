#include "tools/tarvix/BusSession.h"
#include "tools/tarvix/Commands.h"
#include "tools/tarvix/FrameFailure.h"

namespace Tarvix::Tool {

namespace {

constexpr std::uint8_t Identifiers = 0x40;
constexpr std::uint8_t FirstDiagnostic = 0x3C; ///< the commander's request
constexpr std::uint8_t LastDiagnostic = 0x3D;  ///< the node's response

/// What the user should know about an answer whose checksum model is known.
const char* RemarkOn(const FrameReport& Frame)
{
    const bool Diagnostic = Frame.Identifier() >= FirstDiagnostic && Frame.Identifier() <= LastDiagnostic;
    if (Diagnostic && Frame.ChecksumModel == ChecksumVerdict::Enhanced) {
        return "diagnostic frames have a classic checksum by the standard";
    }
    return "";
}

/// Judges an answer from what came, whatever was expected.
void Judge(FrameReport& Frame)
{
    if (!Frame.Checksum) {
        return; // decoding failed
    }
    Frame.ChecksumModel = JudgeChecksum(Frame.ProtectedIdentifier, Frame.Data, *Frame.Checksum);
    Frame.Remark = RemarkOn(Frame);
    if (Frame.ChecksumModel == ChecksumVerdict::Neither && !Frame.Failure) {
        Frame.Failure = Error(static_cast<std::int32_t>(errLIN::errChksum), "tarvix",
                              "The checksum fits neither the classic nor the enhanced model");
    }
}

/// Asks one identifier; returns the answer, right or wrong, or nothing when nobody answered.
std::optional<FrameReport> Ask(BusSession& Session, std::uint8_t Identifier)
{
    constexpr std::int32_t LongestLength = 8;
    try {
        if (!Session.Master().ReadFrame(clsLIN::ComputeIDParity(Identifier), LongestLength, false)) {
            Session.Frames().Take();
            return std::nullopt;
        }
    } catch (const Error& Failure) {
        std::optional<FrameReport> Frame = Session.Frames().Take();
        if (!Frame || !TellsOf(Failure, *Frame)) {
            throw; // of the device: it would meet every further read
        }
        if (!Failure.Is(errLIN::errResponseLength)) { // any length is welcome
            Frame->Failure = Failure;
        }
        return Frame;
    }
    return Session.Frames().Take();
}

std::string Summary(int Answers, int Faults)
{
    std::string Text = std::to_string(Answers).append(" of 64 identifiers answered");
    if (Faults > 0) {
        return Text.append(", ").append(std::to_string(Faults)).append(" of them not as they should.");
    }
    return Text.append(Answers > 0 ? "."
                                   : ". Check that the nodes are powered and wired, and that the bit rate is right.");
}

ExitStatus Scan(BusSession& Session)
{
    int Answers = 0;
    int Faults = 0;
    try {
        for (std::uint8_t Identifier = 0; Identifier < Identifiers; ++Identifier) {
            Session.Output().Progress(static_cast<double>(Identifier) / Identifiers);
            if (auto Frame = Ask(Session, Identifier)) {
                Judge(*Frame);
                Session.Print(*Frame);
                ++Answers;
                Faults += Frame->Failure ? 1 : 0;
            }
        }
    } catch (const Error& Failure) {
        Session.Output().Complain(std::string("The scan ended early: ").append(Headline(Failure)));
        return SomethingFailed;
    }
    Session.Output().Note(Summary(Answers, Faults));
    return Faults > 0 ? SomethingFailed : AllWell;
}

} // namespace

int Execute(const ScanArguments& Arguments)
{
    return WithBus(Arguments.Bus, true, Scan);
}

} // namespace Tarvix::Tool
