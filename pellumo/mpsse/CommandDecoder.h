/// @file
/// Takes a stream of MPSSE commands apart.
#pragma once

#include "pellumo/ChipFamily.h"
#include "pellumo/mpsse/Commands.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace Pellumo {

/// An opcode with its arguments; the bytes to shift are not part of it.
struct Command {
    std::uint8_t Opcode = 0;
    bool Known = false; ///< the chip has this command; else it answers `Commands::Bad`
    std::uint8_t ArgumentCount = 0;
    std::array<std::uint8_t, 2> Arguments{};

    /// It shifts data, or would if the chip knew it.
    constexpr bool Shifts() const noexcept { return Opcode < 0x80; }
    /// It has `Flag`, one of `Shift`.
    constexpr bool Has(std::uint8_t Flag) const noexcept { return (Opcode & Flag) != 0; }
    /// Both arguments as one number, low byte first: a divisor, or a count less one.
    constexpr std::uint16_t Word() const noexcept
    {
        return static_cast<std::uint16_t>(Arguments[0] | Arguments[1] << 8);
    }
};

/// The bytes to shift follow the arguments of this command.
constexpr bool HasPayload(const Command& Head) noexcept
{
    return Head.Known && Head.Shifts() && Head.Has(Shift::Write) && !Head.Has(Shift::Bits);
}

/// What the decoder found: a command once its arguments are there, with as many of the bytes to shift as there are,
/// then those that were missing.
struct CommandPiece {
    Command Head;
    bool First;                            ///< false: `Payload` goes on with the command of the piece before
    std::span<const std::uint8_t> Payload; ///< a part of the input
};

/// Remembers where in a command the stream stands, so that it may arrive in fragments of any size.
class CommandDecoder {
public:
    /// Knows the commands of `Family`.
    explicit CommandDecoder(ChipFamily Family) noexcept : HighSpeed_(FactsOf(Family).HighSpeed) {}

    /// Takes one piece off the front of `Bytes`; nothing when the next command is incomplete, and then `Bytes` is
    /// empty.
    std::optional<CommandPiece> Next(std::span<const std::uint8_t>& Bytes) noexcept;

    /// Forgets the command that is incomplete.
    void Reset() noexcept;

private:
    void Begin(std::uint8_t Opcode) noexcept;
    bool CompleteHead(std::span<const std::uint8_t>& Bytes) noexcept;

    bool HighSpeed_;
    Command Head_;
    bool InArguments_ = false;
    std::uint8_t ArgumentsRead_ = 0;
    std::size_t PayloadLeft_ = 0;
};

} // namespace Pellumo
