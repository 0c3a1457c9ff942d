#include "pellumo/emulation/EmulatedChip.h"

#include "pellumo/emulation/CommandTrace.h"

#include <algorithm>
#include <array>

namespace Pellumo {

namespace {

constexpr std::uint8_t Reversed(std::uint8_t Byte) noexcept
{
    unsigned Bits = Byte;
    Bits = (Bits & 0x0F) << 4 | Bits >> 4;
    Bits = (Bits & 0x33) << 2 | (Bits >> 2 & 0x33);
    Bits = (Bits & 0x55) << 1 | (Bits >> 1 & 0x55);
    return static_cast<std::uint8_t>(Bits);
}

constexpr std::uint8_t EightTimes(int Level) noexcept
{
    return Level != 0 ? 0xFF : 0x00;
}

} // namespace

EmulatedChip::EmulatedChip(ChipFamily Family, Pins& Wires) : Wires_(&Wires), Decoder_(Family) {}

void EmulatedChip::Reset()
{
    Decoder_.Reset();
    High_ = {};
    Divisor_ = 0;
    FastBase_ = false;
    ThreePhase_ = false;
    Loopback_ = false;
    OwedTicks_ = 0;
    Purge();
    SetLowPins({});
}

void EmulatedChip::Write(std::span<const std::uint8_t> Bytes)
{
    while (const auto Piece = Decoder_.Next(Bytes)) {
        Execute(*Piece);
    }
}

std::size_t EmulatedChip::Read(std::span<std::uint8_t> Answer)
{
    const auto Ready = std::span(Answers_).subspan(AnswersRead_);
    const auto Taken = Ready.first(std::min(Ready.size(), Answer.size()));
    std::copy(Taken.begin(), Taken.end(), Answer.begin());
    AnswersRead_ += Taken.size();
    return Taken.size();
}

void EmulatedChip::Purge() noexcept
{
    Answers_.clear();
    AnswersRead_ = 0;
}

void EmulatedChip::Execute(const CommandPiece& Piece)
{
    const Command& Head = Piece.Head;
    if (Piece.First && Trace_) {
        Trace_(TextOf(Head));
    }
    if (!Head.Known) {
        Answer(Commands::Bad);
        Answer(Head.Opcode);
    } else if (!Head.Shifts()) {
        ExecuteSetting(Head);
    } else if (Head.Has(Shift::Bits)) {
        ShiftBits(Head);
    } else {
        ShiftBytes(Head, Piece.Payload);
    }
}

void EmulatedChip::ExecuteSetting(const Command& Head)
{
    switch (Head.Opcode) {
    case Commands::SetLowPins: SetLowPins({Head.Arguments[0], Head.Arguments[1]}); break;
    case Commands::SetHighPins: High_ = {Head.Arguments[0], Head.Arguments[1]}; break;
    case Commands::ReadLowPins: Answer(ReadLowPins()); break;
    case Commands::ReadHighPins: Answer(High_.Actual()); break;
    case Commands::LoopbackOn: Loopback_ = true; break;
    case Commands::LoopbackOff: Loopback_ = false; break;
    case Commands::SetDivisor: Divisor_ = Head.Word(); break;
    case Commands::DivideBy5Off: FastBase_ = true; break;
    case Commands::DivideBy5On: FastBase_ = false; break;
    case Commands::ThreePhaseOn: ThreePhase_ = true; break;
    case Commands::ThreePhaseOff: ThreePhase_ = false; break;
    case Commands::ClockBits: ShiftBits({Shift::Bits, true, 1, Head.Arguments}); break;
    case Commands::ClockBytes: ShiftBytes({0, true, 2, Head.Arguments}, {}); break;
    default: break; // answers are never held back here, and nothing delays the clock
    }
}

void EmulatedChip::SetLowPins(PinByte Value)
{
    Low_ = Value;
    Wires_->SetLevel(DataLevel());
}

std::uint8_t EmulatedChip::ReadLowPins() const noexcept
{
    const int Levels = Low_.Actual() & ~LowPin::DataIn;
    return static_cast<std::uint8_t>(Levels | (DataLevel() != 0 ? LowPin::DataIn : 0));
}

// Bytes whose bit 0 goes first are in the order of the wires already, and go there without a copy.
void EmulatedChip::ShiftBytes(const Command& Head, std::span<const std::uint8_t> Payload)
{
    const bool Writes = Head.Has(Shift::Write) && DrivesData();
    const bool Reads = Head.Has(Shift::Read);
    if (Writes && Head.Has(Shift::LSBFirst)) {
        ClockBytes(Payload, Reads);
        return;
    }
    std::array<std::uint8_t, 256> Block{};
    Block.fill(EightTimes(DataLevel()));
    std::size_t Left = Head.Has(Shift::Write) ? Payload.size() : std::size_t{Head.Word()} + 1;
    while (Left > 0) {
        const auto Part = std::span(Block).first(std::min(Left, Block.size()));
        if (Writes) {
            std::transform(Payload.end() - static_cast<std::ptrdiff_t>(Left),
                           Payload.end() - static_cast<std::ptrdiff_t>(Left - Part.size()), Part.begin(), Reversed);
        }
        const auto In = ClockBytes(Part, Reads);
        if (!Head.Has(Shift::LSBFirst)) {
            std::transform(In.begin(), In.end(), In.begin(), Reversed);
        }
        Left -= Part.size();
    }
}

// Bits that are read move in from the far end, so fewer than eight lie at the top (bit 0 first) or the bottom of the
// answer. With the mode-select pin written, the data output takes bit 7 and keeps it.
void EmulatedChip::ShiftBits(const Command& Head)
{
    const bool LSBFirst = Head.Has(Shift::LSBFirst);
    const std::uint8_t Data = LSBFirst ? Head.Arguments[1] : Reversed(Head.Arguments[1]);
    const int Count = (Head.Arguments[0] & 7) + 1;
    if (Head.Has(Shift::WriteTMS)) {
        KeepDataLevel(Data >> 7);
    }
    std::uint8_t In = 0;
    for (int k = 0; k < Count; ++k) {
        if (Head.Has(Shift::Write)) {
            KeepDataLevel(Data >> k & 1);
        }
        In = static_cast<std::uint8_t>(In >> 1 | ClockBit(DataLevel(), Head.Has(Shift::Read)) << 7);
    }
    if (Head.Has(Shift::Read)) {
        Answer(LSBFirst ? In : Reversed(In));
    }
}

// Drives `Out` and gives what was answered, nothing unless `Answered`.
std::span<std::uint8_t> EmulatedChip::ClockBytes(std::span<const std::uint8_t> Out, bool Answered)
{
    if (Out.empty()) {
        return {};
    }
    const auto In = NewAnswers(Answered ? Out.size() : 0);
    if (Loopback_) {
        Wires_->Clock(Out, {}, SampleTicks());
        std::copy_n(Out.begin(), In.size(), In.begin());
    } else {
        Wires_->Clock(Out, In, SampleTicks());
    }
    KeepDataLevel(Out.back() >> 7);
    return In;
}

// The wires take whole bytes, so a single sample goes there as eight, each an eighth as long (but a tick at least), and
// is read in its second half; the ticks that do not divide by eight are made up for by the next bit.
int EmulatedChip::ClockBit(int Level, bool Answered)
{
    const std::int64_t Wanted = std::max<std::int64_t>(SampleTicks() + OwedTicks_, 8);
    OwedTicks_ = Wanted % 8;
    const std::array Out{EightTimes(Level)};
    std::array<std::uint8_t, 1> In = Out;
    Wires_->Clock(Out, std::span(In).first(Answered && !Loopback_ ? 1 : 0), Wanted / 8);
    return In[0] >> 4 & 1;
}

std::span<std::uint8_t> EmulatedChip::NewAnswers(std::size_t Count)
{
    if (AnswersRead_ > Answers_.size() / 2) {
        Answers_.erase(Answers_.begin(), Answers_.begin() + static_cast<std::ptrdiff_t>(AnswersRead_));
        AnswersRead_ = 0;
    }
    Answers_.resize(Answers_.size() + Count);
    return std::span(Answers_).last(Count);
}

std::int64_t EmulatedChip::SampleTicks() const noexcept
{
    const std::int64_t Ticks = TicksPerCycle(FastBase_) * (1 + Divisor_);
    return ThreePhase_ ? Ticks * 3 / 2 : Ticks;
}

void EmulatedChip::KeepDataLevel(int Level) noexcept
{
    const int Others = Low_.Levels & ~LowPin::DataOut;
    Low_.Levels = static_cast<std::uint8_t>(Others | (Level != 0 ? LowPin::DataOut : 0));
}

} // namespace Pellumo
