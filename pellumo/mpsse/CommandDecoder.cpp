#include "pellumo/mpsse/CommandDecoder.h"

#include <algorithm>

namespace Pellumo {

namespace {

struct Shape {
    bool Known;
    std::uint8_t Arguments;
};

constexpr Shape ShapeOfShift(std::uint8_t Opcode) noexcept
{
    const auto Has = [Opcode](std::uint8_t Flag) { return (Opcode & Flag) != 0; };
    if (Has(Shift::WriteTMS)) {
        return {Has(Shift::Bits) && Has(Shift::LSBFirst) && !Has(Shift::Write), 2};
    }
    if (Has(Shift::Bits)) {
        return {Has(Shift::Write) || Has(Shift::Read), static_cast<std::uint8_t>(Has(Shift::Write) ? 2 : 1)};
    }
    return {Has(Shift::Write) || Has(Shift::Read), 2};
}

constexpr Shape ShapeOf(std::uint8_t Opcode, bool HighSpeed) noexcept
{
    if (Opcode < 0x80) {
        return ShapeOfShift(Opcode);
    }
    switch (Opcode) {
    case Commands::SetLowPins:
    case Commands::SetHighPins:
    case Commands::SetDivisor: return {true, 2};
    case Commands::ReadLowPins:
    case Commands::ReadHighPins:
    case Commands::LoopbackOn:
    case Commands::LoopbackOff:
    case Commands::SendImmediate: return {true, 0};
    case Commands::ClockBytes: return {HighSpeed, 2};
    case Commands::ClockBits: return {HighSpeed, 1};
    case Commands::DivideBy5Off:
    case Commands::DivideBy5On:
    case Commands::ThreePhaseOn:
    case Commands::ThreePhaseOff:
    case Commands::AdaptiveClockingOn:
    case Commands::AdaptiveClockingOff: return {HighSpeed, 0};
    default: return {false, 0};
    }
}

} // namespace

void CommandDecoder::Begin(std::uint8_t Opcode) noexcept
{
    const auto [Known, Arguments] = ShapeOf(Opcode, HighSpeed_);
    Head_ = {.Opcode = Opcode, .Known = Known, .ArgumentCount = Known ? Arguments : std::uint8_t{0}, .Arguments = {}};
    ArgumentsRead_ = 0;
    InArguments_ = true;
}

// Gathers the opcode and the arguments; false while some are missing.
bool CommandDecoder::CompleteHead(std::span<const std::uint8_t>& Bytes) noexcept
{
    if (!InArguments_) {
        Begin(Bytes.front());
        Bytes = Bytes.subspan(1);
    }
    while (ArgumentsRead_ < Head_.ArgumentCount && !Bytes.empty()) {
        Head_.Arguments[ArgumentsRead_++] = Bytes.front();
        Bytes = Bytes.subspan(1);
    }
    InArguments_ = ArgumentsRead_ < Head_.ArgumentCount;
    return !InArguments_;
}

std::optional<CommandPiece> CommandDecoder::Next(std::span<const std::uint8_t>& Bytes) noexcept
{
    if (Bytes.empty()) {
        return std::nullopt;
    }
    const bool First = PayloadLeft_ == 0;
    if (First) {
        if (!CompleteHead(Bytes)) {
            return std::nullopt;
        }
        PayloadLeft_ = HasPayload(Head_) ? std::size_t{Head_.Word()} + 1 : 0;
    }
    const auto Payload = Bytes.first(std::min(PayloadLeft_, Bytes.size()));
    Bytes = Bytes.subspan(Payload.size());
    PayloadLeft_ -= Payload.size();
    return CommandPiece{Head_, First, Payload};
}

void CommandDecoder::Reset() noexcept
{
    InArguments_ = false;
    PayloadLeft_ = 0;
}

} // namespace Pellumo
