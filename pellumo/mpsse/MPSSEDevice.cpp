#include "pellumo/mpsse/MPSSEDevice.h"

#include "pellumo/errPellumo.h"
#include "pellumo/mpsse/ClockDivisor.h"
#include "pellumo/mpsse/Commands.h"
#include "pellumo/mpsse/MakeCommands.h"
#include "pellumo/mpsse/RaiseForDevice.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <utility>

namespace Pellumo {

namespace {

using Tarvix::errGeneral;

// What USB and the host's scheduler may add to the time that the clocked bits take.
constexpr std::chrono::nanoseconds Margin = std::chrono::seconds(1);

// The shortest form that reads back as the same number, whatever the locale.
std::string RealText(double Value)
{
    std::array<char, 32> Text{};
    const auto Result = std::to_chars(Text.data(), Text.data() + Text.size(), Value);
    return {Text.data(), Result.ptr};
}

// For where another failure is on its way already, or nobody is left who could be told.
template <typename Action>
void KeepQuiet(Action Do) noexcept
{
    try {
        Do();
    } catch (...) { // NOLINT(bugprone-empty-catch): see above
    }
}

// Calls `Do` with one command's worth of samples at a time.
template <typename Byte, typename Action>
void ForEachCommand(std::span<Byte> Samples, Action Do)
{
    while (!Samples.empty()) {
        const auto Piece = Samples.first(std::min(Samples.size(), MostBytesPerCommand));
        Do(Piece);
        Samples = Samples.subspan(Piece.size());
    }
}

} // namespace

MPSSEDevice::MPSSEDevice(std::unique_ptr<Transport> Pipe, ChipFamily Family)
    : Transport_(std::move(Pipe)), HighSpeed_(FactsOf(Family).HighSpeed),
      MostQueuedBytes_(static_cast<std::int64_t>(2 * FactsOf(Family).BufferBytes))
{
    Transport_->Purge();
    Synchronise();
}

MPSSEDevice::~MPSSEDevice()
{
    KeepQuiet([this] { Close(); });
}

void MPSSEDevice::ConfigurePins(std::uint8_t Levels, std::uint8_t Directions)
{
    RequireOpen();
    Transfer(std::array{Commands::SetLowPins, Levels, Directions});
    Levels_ = Levels;
    Directions_ = Directions;
}

void MPSSEDevice::SetOption(std::int32_t Option)
{
    RequireOpen();
    if (Option != 0) {
        Fail(errPellumo::errUnsupported, "the option must be 0, the plain mode");
    }
    const std::span<const std::uint8_t> Mode = PlainModeCommands(HighSpeed_);
    Transfer(Mode);
    Mode_ = Mode;
}

std::int32_t MPSSEDevice::DivisorForFrequency(double Frequency)
{
    RequireOpen();
    const auto Divisor = NearestDivisor(Frequency, HighSpeed_);
    if (!Divisor) {
        Fail(errPellumo::errFrequency,
             std::string("no divisor gives a sample clock of ")
                 .append(RealText(Frequency))
                 .append(HighSpeed_ ? " Hz; it can be 457.8 Hz to 30 MHz" : " Hz; it can be 91.6 Hz to 6 MHz"));
    }
    return *Divisor;
}

void MPSSEDevice::SetClockDivisor(std::int32_t Divisor)
{
    RequireOpen();
    RequireDivisor(Divisor);
    Transfer(DivisorCommand(Divisor));
    Divisor_ = Divisor;
}

double MPSSEDevice::FrequencyForDivisor(std::int32_t Divisor)
{
    RequireOpen();
    RequireDivisor(Divisor);
    return FrequencyOf(Divisor, HighSpeed_);
}

void MPSSEDevice::SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                              std::int32_t WriteEdge)
{
    RequireOpen();
    RequireMode(LSBFirst, WriteEdge);
    const std::size_t Count = RequireCount(ByteCount, Samples.size());
    const std::uint8_t Opcode = ShiftOpcode(LSBFirst, WriteEdge);
    ForEachCommand(Samples.first(Count), [this, Opcode](std::span<const std::uint8_t> Piece) {
        Transfer(Frame(Opcode, Piece), {}, Piece.size());
    });
}

void MPSSEDevice::ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                                  std::int32_t WriteEdge, std::int32_t ReadEdge)
{
    RequireOpen();
    RequireMode(LSBFirst, WriteEdge);
    if (ReadEdge != 0) {
        Fail(errPellumo::errUnsupported,
             "ReadEdge must be 0: a sample is read on the edge after the one that put it out");
    }
    const std::size_t Count = RequireCount(ByteCount, Samples.size());
    const std::uint8_t Opcode = ReadOnOtherEdge(ShiftOpcode(LSBFirst, WriteEdge));
    ForEachCommand(Samples.first(Count), [this, Opcode](std::span<std::uint8_t> Piece) {
        Transfer(Frame(Opcode, Piece), Piece, Piece.size());
    });
}

void MPSSEDevice::Close()
{
    if (!Open_) {
        return;
    }
    Open_ = false;
    try {
        LeaveRecessive();
    } catch (...) {
        KeepQuiet([this] { Transport_->Close(); });
        throw;
    }
    Transport_->Close();
}

template <typename Enum>
void MPSSEDevice::Fail(Enum Number, std::string_view What) const
{
    RaiseForDevice(Number, "MPSSEDevice", Transport_->Name(), What);
}

void MPSSEDevice::RequireOpen() const
{
    if (!Open_) {
        Fail(errPellumo::errClosed, "the device has been closed. Open it again to go on");
    }
}

void MPSSEDevice::RequireDivisor(std::int32_t Divisor) const
{
    if (!IsDivisor(Divisor)) {
        Fail(errPellumo::errDivisor,
             std::string("the divisor ").append(std::to_string(Divisor)).append(" is not from 0 to 65535"));
    }
}

void MPSSEDevice::RequireMode(std::int32_t LSBFirst, std::int32_t WriteEdge) const
{
    if (LSBFirst != 0 && LSBFirst != 1) {
        Fail(errPellumo::errUnsupported, "LSBFirst must be 1 (bit 0 of a byte goes first) or 0 (bit 7)");
    }
    if (WriteEdge != 0 && WriteEdge != 1) {
        Fail(errPellumo::errUnsupported,
             "WriteEdge must be 0 (samples are put out on the rising edge) or 1 (falling edge)");
    }
}

std::size_t MPSSEDevice::RequireCount(std::int32_t ByteCount, std::size_t Available) const
{
    if (ByteCount < 0) {
        Fail(errGeneral::errInvalidArgument, "the number of bytes is negative");
    }
    const auto Count = static_cast<std::size_t>(ByteCount);
    if (Count > Available) {
        Fail(errGeneral::errIndexOutOfRange, "there are fewer samples than bytes to clock");
    }
    return Count;
}

// The answer to the last command comes when all before it are done.
void MPSSEDevice::LeaveRecessive()
{
    const auto Recessive = static_cast<std::uint8_t>(Levels_ | LowPin::DataOut);
    std::array<std::uint8_t, 1> PinLevels{};
    Transfer(std::array{Commands::SetLowPins, Recessive, Directions_, Commands::ReadLowPins, Commands::SendImmediate},
             PinLevels);
}

// The engine answers an opcode that it does not know with `Commands::Bad` and the opcode; nothing else at the other end
// of the pipe does.
void MPSSEDevice::Synchronise()
{
    std::array<std::uint8_t, 2> Answer{};
    try {
        Transport_->Transfer(std::array{Commands::Bogus, Commands::SendImmediate}, Answer, Limit());
    } catch (const Tarvix::Error& Failure) {
        if (!Failure.Is(errPellumo::errTimeout) && !Failure.Is(errPellumo::errShortAnswer)) {
            throw;
        }
        Answer = {};
    }
    if (Answer != std::array{Commands::Bad, Commands::Bogus}) {
        Fail(errPellumo::errNoEngine, "no MPSSE engine answers. Unplug the chip, plug it in and open it again");
    }
}

// After a failure the engine may stand inside a command or still owe an answer, and commands that it took without an
// answer may not have been executed: it begins anew, with the settings that it is supposed to have.
void MPSSEDevice::Recover()
{
    Transport_->Restart();
    ForgetQueued();
    Synchronise();
    RestoreSettings();
}

// Not in `Frame_`: there stands what the operation that comes next will send.
void MPSSEDevice::RestoreSettings()
{
    std::array<std::uint8_t, 3 + ExtrasOff.size() + 3> Settings{Commands::SetLowPins, Levels_, Directions_};
    std::uint8_t* End = std::copy(Mode_.begin(), Mode_.end(), Settings.data() + 3);
    if (Divisor_) {
        const auto Command = DivisorCommand(*Divisor_);
        End = std::copy(Command.begin(), Command.end(), End);
    }
    Transport_->Transfer({Settings.data(), End}, {}, Limit());
}

// An answer shows that all before it is done; without one, the chip holds no more than it has room for.
void MPSSEDevice::Transfer(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In, std::size_t SampleBytes)
{
    if (!InStep_) {
        Recover();
    }
    AddQueued(SampleBytes);
    InStep_ = false;
    Transport_->Transfer(Out, In, Limit());
    InStep_ = true;
    if (In.empty()) {
        Queued_ = std::min(Queued_, MostQueuedBytes_ * SlowestByte_);
    } else {
        ForgetQueued();
    }
}

// Until a divisor is set the clock is unknown: the slowest one is counted on.
void MPSSEDevice::AddQueued(std::size_t SampleBytes) noexcept
{
    if (SampleBytes > 0) {
        const Ticks Byte(8 * TicksPerCycle(HighSpeed_) * (1 + Divisor_.value_or(LargestDivisor)));
        Queued_ += static_cast<std::int64_t>(SampleBytes) * Byte;
        SlowestByte_ = std::max(SlowestByte_, Byte);
    }
}

void MPSSEDevice::ForgetQueued() noexcept
{
    Queued_ = SlowestByte_ = Ticks(0);
}

// An exchange is ended by the command that sends the answer at once; a frame that nobody reads goes without.
std::span<const std::uint8_t> MPSSEDevice::Frame(std::uint8_t Opcode, std::span<const std::uint8_t> Samples)
{
    const std::size_t CountLessOne = Samples.size() - 1;
    Frame_.assign({Opcode, LowByte(CountLessOne), HighByte(CountLessOne)});
    Frame_.insert(Frame_.end(), Samples.begin(), Samples.end());
    if ((Opcode & Shift::Read) != 0) {
        Frame_.push_back(Commands::SendImmediate);
    }
    return Frame_;
}

std::chrono::nanoseconds MPSSEDevice::Limit() const noexcept
{
    return Margin + std::chrono::ceil<std::chrono::nanoseconds>(Queued_);
}

} // namespace Pellumo
