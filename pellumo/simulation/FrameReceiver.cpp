#include "pellumo/simulation/FrameReceiver.h"

namespace Pellumo {

bool FrameReceiver::Edge(int Level, Tick Now) noexcept
{
    if (Finder_.Edge(Level, Now)) {
        Part_ = Part::Identifier;
        NextSample_ = Never;
        return true;
    }
    if (Level == 0 && Part_ != Part::None && NextSample_ == Never) {
        Start_ = Now;
        NextSample_ = Now + EightBits() / 16;
        Bit_ = 0;
        Value_ = 0;
    }
    return false;
}

FrameReceiver::Heard FrameReceiver::TakeSamples(Tick To, int Level) noexcept
{
    while (NextSample_ < To) {
        if (Bit_ == 9) {
            return TakeStopBit(Level);
        }
        if (Bit_ == 0 && Level == 1) {
            NextSample_ = Never;
            return Heard::Nothing;
        }
        if (Bit_ > 0) {
            Value_ = static_cast<std::uint8_t>(Value_ | Level << (Bit_ - 1));
        }
        ++Bit_;
        NextSample_ = Start_ + (2 * Bit_ + 1) * EightBits() / 16;
    }
    return Heard::Nothing;
}

FrameReceiver::Heard FrameReceiver::TakeStopBit(int Level) noexcept
{
    NextSample_ = Never;
    if (Level == 0) {
        return Heard::BrokenByte;
    }
    const bool WasIdentifier = Part_ == Part::Identifier;
    Part_ = Part::Response;
    return WasIdentifier ? Heard::Identifier : Heard::Byte;
}

void FrameReceiver::Ignore() noexcept
{
    Part_ = Part::None;
    NextSample_ = Never;
}

} // namespace Pellumo
