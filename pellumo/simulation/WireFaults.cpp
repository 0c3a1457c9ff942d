#include "pellumo/simulation/WireFaults.h"

#include "pellumo/common/FrameBytes.h"
#include "pellumo/simulation/RandomBits.h"

#include <algorithm>
#include <cmath>

namespace Pellumo {

WireDisturbance::WireDisturbance(const WireFault& Fault, std::uint64_t Seed)
    : Fault_(Fault), Seed_(Seed), Threshold_(static_cast<std::uint64_t>(std::ldexp(Fault.Probability, 53)))
{
    if (!Fault.Place.Frame) {
        Trigger(0, 0);
    }
}

bool WireDisturbance::BelongsHere() const noexcept
{
    return Fault_.Place.Occurrence == 0 || Fault_.Place.Occurrence == Frames_;
}

void WireDisturbance::Trigger(std::int64_t Sample, std::int64_t Now)
{
    if (!Stretches_.empty() && Stretches_.back().End == NoSample) {
        return; // for good already
    }
    std::erase_if(Stretches_, [Now](const Stretch& Each) { return Each.End <= Now; });
    const std::int64_t Begin = Sample + Fault_.Place.Sample;
    Stretches_.push_back({Begin, Fault_.Length ? Begin + *Fault_.Length : NoSample});
}

bool WireDisturbance::Covers(std::int64_t Sample) const noexcept
{
    return std::ranges::any_of(Stretches_,
                               [Sample](const Stretch& Each) { return Sample >= Each.Begin && Sample < Each.End; });
}

bool WireDisturbance::ActsOn(std::int64_t Sample) const noexcept
{
    return Covers(Sample) && (Fault_.Kind != WireFault::Effect::Noise || Inverts(Sample));
}

std::int64_t WireDisturbance::NextChange(std::int64_t Sample) const noexcept
{
    std::int64_t Edge = NoSample;
    for (const auto& [Begin, End] : Stretches_) {
        Edge = std::min(Edge, Begin > Sample ? Begin : End > Sample ? End : NoSample);
    }
    if (Fault_.Kind != WireFault::Effect::Noise || !Covers(Sample)) {
        return Edge;
    }
    constexpr std::int64_t LookAhead = 64;
    const std::int64_t Last = std::min(Sample + LookAhead, Edge);
    std::int64_t Next = Sample + 1;
    while (Next < Last && !Inverts(Sample) && !Inverts(Next)) {
        ++Next;
    }
    return Next;
}

bool WireDisturbance::Inverts(std::int64_t Sample) const noexcept
{
    return RandomBits(Seed_, static_cast<std::uint64_t>(Sample)) >> 11 < Threshold_;
}

WireFaults::WireFaults(std::span<const WireFault> Faults, std::uint64_t Seed)
{
    for (std::size_t k = 0; k < Faults.size(); ++k) {
        Disturbances_.emplace_back(Faults[k], RandomBits(Seed, k));
    }
}

void WireFaults::See(int Wire, Tick Now)
{
    if (Wire != Wire_) {
        Wire_ = Wire;
        if (Receiver_.Edge(Wire, Now)) {
            InResponse_ = false;
        } else if (InResponse_ && Wire == 0 && Receiver_.StartOfByte() == Now) {
            BeginByte(Now);
        }
    }
    Sample_ = Grid_.SampleAt(Now);
}

int WireFaults::OnBus() const noexcept
{
    int Level = Wire_;
    for (const WireDisturbance& Disturbance : Disturbances_) {
        if (!Disturbance.ActsOn(Sample_)) {
            continue;
        }
        switch (Disturbance.Fault().Kind) {
        case WireFault::Effect::Dominant: Level = 0; break;
        case WireFault::Effect::Recessive: Level = 1; break;
        case WireFault::Effect::Noise: Level ^= 1; break;
        case WireFault::Effect::NoEcho: break;
        }
    }
    return Level;
}

int WireFaults::Read() const noexcept
{
    const bool Deaf = std::any_of(Disturbances_.begin(), Disturbances_.end(), [this](const WireDisturbance& Candidate) {
        return Candidate.Fault().Kind == WireFault::Effect::NoEcho && Candidate.ActsOn(Sample_);
    });
    return Deaf ? 1 : OnBus();
}

Tick WireFaults::NextEvent() const noexcept
{
    std::int64_t Next = WireDisturbance::NoSample;
    for (const WireDisturbance& Disturbance : Disturbances_) {
        Next = std::min(Next, Disturbance.NextChange(Sample_));
    }
    const Tick Change = Next == WireDisturbance::NoSample ? Never : Grid_.Begin(Next);
    return std::min(Change, Receiver_.EndOfIdentifier());
}

void WireFaults::AdvanceTo(Tick To)
{
    switch (Receiver_.AdvanceTo(To, Wire_)) {
    case FrameReceiver::Heard::Nothing: break;
    case FrameReceiver::Heard::Identifier: BeginFrame(); break;
    case FrameReceiver::Heard::Byte: ++Byte_; break;
    case FrameReceiver::Heard::BrokenByte: InResponse_ = false; break;
    }
}

void WireFaults::BeginFrame()
{
    Identifier_ = Receiver_.Value() & 0x3F;
    InResponse_ = ProtectedIdentifier(Identifier_) == Receiver_.Value();
    Byte_ = 0;
    for (WireDisturbance& Disturbance : Disturbances_) {
        const FaultPlace& Place = Disturbance.Fault().Place;
        if (!InResponse_ || Place.Frame != Identifier_) {
            continue;
        }
        Disturbance.CountFrame();
        if (Disturbance.BelongsHere() && !Place.Byte) {
            Disturbance.Trigger(Grid_.SampleFrom(Receiver_.EndOfByte()), Sample_);
        }
    }
}

void WireFaults::BeginByte(Tick Now)
{
    for (WireDisturbance& Disturbance : Disturbances_) {
        const FaultPlace& Place = Disturbance.Fault().Place;
        if (Place.Frame == Identifier_ && Place.Byte == Byte_ && Disturbance.BelongsHere()) {
            Disturbance.Trigger(Grid_.SampleFrom(Now), Sample_);
        }
    }
}

} // namespace Pellumo
