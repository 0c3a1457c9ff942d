#include "pellumo/simulation/SlaveNode.h"

#include "pellumo/simulation/FrameBytes.h"

#include <algorithm>
#include <cmath>

namespace Pellumo {

SlaveNode::SlaveNode(const SlaveDescription& Description)
    : ClockErrorPPM_(std::llround(Description.ClockError * 10'000)),
      ResponseSpaceMicrobits_(std::llround(Description.ResponseSpace * 1'000'000))
{
    for (const FrameDescription& Frame : Description.Frames) {
        Frames_.push_back({Frame, Frame.Copies ? Bytes{} : Frame.Data});
    }
}

Tick SlaveNode::NextEvent() const noexcept
{
    return std::min(Transmitter_.NextChange(), Receiver_.EndOfIdentifier());
}

void SlaveNode::SeeEdge(int BusLevel)
{
    BusLevel_ = BusLevel;
    if (Receiver_.Edge(BusLevel, Now_)) {
        EndResponse();
        Transmitter_.Stop();
    }
}

void SlaveNode::Hear(FrameReceiver::Heard Heard)
{
    switch (Heard) {
    case FrameReceiver::Heard::Nothing: break;
    case FrameReceiver::Heard::Identifier: HearIdentifier(); break;
    case FrameReceiver::Heard::Byte: HearByte(); break;
    case FrameReceiver::Heard::BrokenByte:
        if (Receiver_.Value() != 0) {
            Response_.clear();
        }
        EndResponse();
        Receiver_.Ignore();
        break;
    }
}

void SlaveNode::HearIdentifier()
{
    ProtectedIdentifier_ = Receiver_.Value();
    const std::uint8_t Identifier = ProtectedIdentifier_ & 0x3F;
    const bool ParityHolds = ProtectedIdentifier(Identifier) == ProtectedIdentifier_;
    if (ParityHolds && CopiesFrom(Identifier)) {
        return; // and receives the response
    }
    const auto Frame = std::find_if(Frames_.begin(), Frames_.end(), [Identifier](const AnsweredFrame& Candidate) {
        return Candidate.Description.Identifier == Identifier;
    });
    if (ParityHolds && Frame != Frames_.end()) {
        Answer(*Frame);
    }
    Receiver_.Ignore();
}

bool SlaveNode::CopiesFrom(std::uint8_t Identifier) const noexcept
{
    return std::any_of(Frames_.begin(), Frames_.end(),
                       [Identifier](const AnsweredFrame& Frame) { return Frame.Description.Copies == Identifier; });
}

void SlaveNode::Answer(const AnsweredFrame& Frame)
{
    if (Frame.Data.empty()) {
        return;
    }
    const bool Enhanced = Frame.Description.Checksum == Tarvix::elcLIN20;
    Answer_ = Frame.Data;
    Answer_.push_back(
        Frame.Description.FixedChecksum.value_or(Checksum(Enhanced ? ProtectedIdentifier_ : 0, Frame.Data)));
    const NodeClock Clock(Receiver_.EightBits(), ClockErrorPPM_);
    Transmitter_.Start(Answer_, Receiver_.EndOfByte() + Clock.Span(ResponseSpaceMicrobits_), Clock);
}

void SlaveNode::HearByte()
{
    Response_.push_back(Receiver_.Value());
    if (Response_.size() > MaximumDataBytes + 1) {
        Response_.clear();
        Receiver_.Ignore();
    }
}

void SlaveNode::EndResponse()
{
    if (Response_.size() >= 2) {
        const auto Data = std::span<const std::uint8_t>(Response_).first(Response_.size() - 1);
        const std::uint8_t Received = Response_.back();
        if (Received == Checksum(ProtectedIdentifier_, Data) || Received == Checksum(0, Data)) {
            for (AnsweredFrame& Frame : Frames_) {
                if (Frame.Description.Copies == (ProtectedIdentifier_ & 0x3F)) {
                    Frame.Data.assign(Data.begin(), Data.end());
                }
            }
        }
    }
    Response_.clear();
}

} // namespace Pellumo
