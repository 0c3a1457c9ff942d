/// @file
/// An MPSSE chip without the chip: command bytes in, answer bytes out, and in between what the chip does to its pins.
#pragma once

#include "pellumo/ChipFamily.h"
#include "pellumo/emulation/Pins.h"
#include "pellumo/mpsse/CommandDecoder.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace Pellumo {

/// Executes commands as they arrive, in virtual time: a sample lasts as long as the clock that the commands have set
/// says, and nothing passes between two commands.
///
/// The data output (bit 1 of the low pins) is the wire of `Pins`. While it is configured as an input it floats high.
/// Reading the low pins gives what is driven; the data input follows the data output, and other inputs are high.
/// Answers are kept until they are read.
///
/// The commands that wait for a pin are bad commands here, and adaptive clocking waits for nothing. What is shifted to
/// the mode-select pin takes its time and goes nowhere. Single bits reach the wires as eight samples of an eighth each.
class EmulatedChip {
public:
    /// Receives a line per command (`TextOf`) before it is executed.
    using Trace = std::function<void(std::string_view Line)>;

    /// @param Wires  held, not owned: it must outlive the chip
    EmulatedChip(ChipFamily Family, Pins& Wires);

    /// The engine as it is when it has just been switched on: between two commands, all pins inputs, 6 MHz, no answers.
    void Reset();

    /// Executes `Bytes`, which may begin and end anywhere inside a command.
    void Write(std::span<const std::uint8_t> Bytes);

    /// Takes the oldest answers away, as many as there are and `Answer` has room for.
    /// @return how many
    std::size_t Read(std::span<std::uint8_t> Answer);

    /// Answers that have not been read.
    std::size_t Pending() const noexcept { return Answers_.size() - AnswersRead_; }

    /// Throws away the answers that have not been read.
    void Purge() noexcept;

    /// From now on traces to `Value`; empty ends it.
    void TraceTo(Trace Value) { Trace_ = std::move(Value); }

private:
    struct PinByte {
        std::uint8_t Levels = 0;
        std::uint8_t Directions = 0;

        /// Outputs as they are driven, inputs pulled up.
        std::uint8_t Actual() const noexcept { return static_cast<std::uint8_t>(Levels | ~Directions); }
    };

    void Execute(const CommandPiece& Piece);
    void ExecuteSetting(const Command& Head);
    void SetLowPins(PinByte Value);
    std::uint8_t ReadLowPins() const noexcept;
    void ShiftBytes(const Command& Head, std::span<const std::uint8_t> Payload);
    void ShiftBits(const Command& Head);
    std::span<std::uint8_t> ClockBytes(std::span<const std::uint8_t> Out, bool Answered);
    int ClockBit(int Level, bool Answered);

    void Answer(std::uint8_t Byte) { NewAnswers(1)[0] = Byte; }
    std::span<std::uint8_t> NewAnswers(std::size_t Count);
    std::int64_t SampleTicks() const noexcept;
    bool DrivesData() const noexcept { return (Low_.Directions & LowPin::DataOut) != 0; }
    int DataLevel() const noexcept { return (Low_.Actual() & LowPin::DataOut) != 0 ? 1 : 0; }
    void KeepDataLevel(int Level) noexcept;

    Pins* Wires_;
    CommandDecoder Decoder_;
    Trace Trace_;

    PinByte Low_;
    PinByte High_;
    std::int32_t Divisor_ = 0;
    bool FastBase_ = false;
    bool ThreePhase_ = false;
    bool Loopback_ = false;
    std::int64_t OwedTicks_ = 0; // what single bits have lasted too short

    std::vector<std::uint8_t> Answers_;
    std::size_t AnswersRead_ = 0;
};

} // namespace Pellumo
