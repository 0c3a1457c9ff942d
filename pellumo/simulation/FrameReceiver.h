/// @file
/// What a node hears on the bus: headers and the bytes that follow them.
#pragma once

#include "pellumo/simulation/HeaderFinder.h"
#include "pellumo/simulation/Tick.h"

#include <cstdint>

namespace Pellumo {

/// Receives frames from nothing but the level of the bus over time. After a break and sync field it receives bytes like
/// any UART: a falling edge starts a byte, every bit is judged by the level in its middle, and a start bit that is over
/// before its middle was none. The bit time is the one measured in the sync field.
///
/// A byte is known half a bit time before its stop bit ends.
class FrameReceiver {
public:
    /// What was heard in a stretch of time.
    enum class Heard : std::uint8_t {
        Nothing,
        Identifier, ///< the byte after the sync field, as it was on the bus
        Byte,       ///< a byte after the identifier
        BrokenByte  ///< a byte whose stop bit was dominant: the next break, if it is 0x00
    };

    /// The level of the bus changes.
    /// @param Level  from now on
    /// @return true when a break and sync field are complete: whatever was received before has ended
    bool Edge(int Level, Tick Now) noexcept;

    /// The bus kept `Level` until `To`.
    Heard AdvanceTo(Tick To, int Level) noexcept { return NextSample_ < To ? TakeSamples(To, Level) : Heard::Nothing; }

    /// Hears nothing more until the next header.
    void Ignore() noexcept;

    /// The byte that was heard last.
    std::uint8_t Value() const noexcept { return Value_; }
    /// The falling edge with which the byte began that is being received or was heard last.
    Tick StartOfByte() const noexcept { return Start_; }
    /// The end of that byte's stop bit.
    Tick EndOfByte() const noexcept { return Start_ + 5 * EightBits() / 4; }
    /// The end of the identifier's stop bit while the identifier is being received, else `Never`.
    Tick EndOfIdentifier() const noexcept
    {
        return Part_ == Part::Identifier && NextSample_ != Never ? EndOfByte() : Never;
    }
    /// Eight bit times as measured in the last sync field.
    Tick EightBits() const noexcept { return Finder_.EightBits(); }

private:
    enum class Part : std::uint8_t { None, Identifier, Response };

    Heard TakeSamples(Tick To, int Level) noexcept;
    Heard TakeStopBit(int Level) noexcept;

    HeaderFinder Finder_;
    Part Part_ = Part::None;
    Tick Start_ = 0;
    Tick NextSample_ = Never; // Never between bytes
    int Bit_ = 0;             // the one that is sampled next: 0 start bit, 1 to 8 data, 9 stop bit
    std::uint8_t Value_ = 0;
};

} // namespace Pellumo
