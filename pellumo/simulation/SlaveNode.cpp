#include "pellumo/simulation/SlaveNode.h"

#include "pellumo/simulation/FrameBytes.h"
#include "pellumo/simulation/RandomBits.h"

#include <algorithm>
#include <cmath>

namespace Pellumo {

namespace {

/// True when `Occurrence` (0 for each of them) is about the frame's request of this number.
constexpr bool Concerns(std::int32_t Occurrence, std::int32_t Request) noexcept
{
    return Occurrence == 0 || Occurrence == Request;
}

} // namespace

SlaveNode::SlaveNode(const SlaveDescription& Description, std::span<const AnswerFault> Faults, std::uint64_t Seed)
    : Faults_(Faults.begin(), Faults.end()), Seed_(Seed), ClockErrorPPM_(std::llround(Description.ClockError * 10'000)),
      ResponseSpaceMicrobits_(std::llround(Description.ResponseSpace * 1'000'000)),
      ByteSpaceMicrobits_(std::llround(Description.ByteSpace * 1'000'000))
{
    for (const FrameDescription& Frame : Description.Frames) {
        Frames_.push_back({Frame, Frame.Copies ? Bytes{} : Frame.Data, 0});
    }
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

void SlaveNode::Answer(AnsweredFrame& Frame)
{
    ++Frame.Requests;
    const FrameDescription& Description = Frame.Description;
    if (Frame.Data.empty() || !Concerns(Description.OnlyRequest, Frame.Requests)) {
        return;
    }
    const bool Enhanced = Description.Checksum == Tarvix::elcLIN20;
    Answer_ = Frame.Data;
    Answer_.push_back(Description.FixedChecksum.value_or(Checksum(Enhanced ? ProtectedIdentifier_ : 0, Frame.Data)));
    for (const AnswerFault& Fault : Faults_) {
        if (Fault.Frame == Description.Identifier && Concerns(Fault.Occurrence, Frame.Requests)) {
            Spoil(Fault);
        }
    }
    if (!Answer_.empty()) {
        const NodeClock Clock(Receiver_.EightBits(), ClockErrorPPM_);
        Transmitter_.Start(Answer_, Receiver_.EndOfByte() + Clock.Span(ResponseSpaceMicrobits_), Clock,
                           ByteSpaceMicrobits_);
    }
}

void SlaveNode::Spoil(const AnswerFault& Fault)
{
    const auto Count = static_cast<std::size_t>(Fault.Bytes);
    switch (Fault.Kind) {
    case AnswerFault::Effect::WrongChecksum:
        if (!Answer_.empty()) {
            Answer_.back() = static_cast<std::uint8_t>(~Answer_.back());
        }
        break;
    case AnswerFault::Effect::Short: Answer_.resize(Answer_.size() - std::min(Count, Answer_.size())); break;
    case AnswerFault::Effect::Long:
        for (std::size_t k = 0; k < Count; ++k) {
            Answer_.push_back(static_cast<std::uint8_t>(RandomBits(Seed_, RandomBytes_++)));
        }
        break;
    }
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
