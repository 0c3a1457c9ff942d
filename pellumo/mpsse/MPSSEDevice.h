/// @file
/// The device that the library drives: an MPSSE engine behind a transport.
///
/// Every operation becomes the engine's own commands and one transfer. An exchange is
///
///     3C  n-1 low  n-1 high   n bytes of samples   87
///
/// which clocks n bytes out on the rising edge and in on the falling edge, bit 0 first, and sends the answer at once.
/// Streams longer than one command's 65,536 bytes go as several such transfers; between them the line keeps its level.
#pragma once

#include "pellumo/ChipFamily.h"
#include "pellumo/mpsse/Transport.h"
#include "tarvix/signalling/FTDIMPSSE.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <ratio>
#include <span>
#include <string_view>
#include <vector>

namespace Pellumo {

/// An MPSSE engine as `Tarvix::FTDIMPSSE`.
///
/// Whatever the transport raises reaches the caller unchanged. The next operation after such a failure first restarts
/// the engine, makes sure that it answers and gives it back its settings. After `Close` every operation raises
/// errClosed.
class MPSSEDevice final : public Tarvix::FTDIMPSSE {
public:
    /// Throws away old answers and makes sure that an engine answers.
    /// @param Pipe    a chip whose engine is switched on
    /// @param Family  what the chip at its other end is
    /// @throws Tarvix::Error  errNoEngine when the chip does not answer as an engine does
    MPSSEDevice(std::unique_ptr<Transport> Pipe, ChipFamily Family);

    /// As `Close`, but a failure is kept quiet.
    ~MPSSEDevice() override;

    MPSSEDevice(const MPSSEDevice&) = delete;
    MPSSEDevice& operator=(const MPSSEDevice&) = delete;

    void ConfigurePins(std::uint8_t Levels, std::uint8_t Directions) override;

    /// @param Option  0: the plain mode, without divided base clock, adaptive clocking, three-phase clocking or
    ///                loopback
    /// @throws Tarvix::Error  errUnsupported for every other value
    void SetOption(std::int32_t Option) override;

    /// The nearest divisor; halfway between two, the even one.
    /// @throws Tarvix::Error  errFrequency when no divisor comes near, for 0, negative values, NaN and the infinities
    std::int32_t DivisorForFrequency(double Frequency) override;

    /// @param Divisor  0 to 65535
    /// @throws Tarvix::Error  errDivisor
    void SetClockDivisor(std::int32_t Divisor) override;

    /// @param Divisor  0 to 65535
    /// @throws Tarvix::Error  errDivisor
    double FrequencyForDivisor(std::int32_t Divisor) override;

    /// Returns when the chip has taken the samples; they may not all have left the pins.
    /// @param LSBFirst   1, or 0: bit 7 of each byte goes first
    /// @param WriteEdge  0 rising, 1 falling
    /// @throws Tarvix::Error  errUnsupported for another mode, errInvalidArgument for a negative count,
    ///                        errIndexOutOfRange for a count beyond the samples; nothing is sent then
    void SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                     std::int32_t WriteEdge) override;

    /// As `SendSamples`; returns when all samples have left the pins.
    /// @param ReadEdge  0: the edge after the one that puts the sample out
    /// @throws Tarvix::Error  as `SendSamples`; the contents of `Samples` are unspecified when a transfer fails
    void ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                         std::int32_t WriteEdge, std::int32_t ReadEdge) override;

    /// Waits until everything has left the pins, leaves the line recessive and closes the transport, this also when the
    /// waiting fails. A second call does nothing.
    void Close() override;

private:
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 60'000'000>>;

    template <typename Enum>
    [[noreturn]] void Fail(Enum Number, std::string_view What) const;
    void RequireOpen() const;
    void RequireDivisor(std::int32_t Divisor) const;
    void RequireMode(std::int32_t LSBFirst, std::int32_t WriteEdge) const;
    std::size_t RequireCount(std::int32_t ByteCount, std::size_t Available) const;

    void Synchronise();
    void Recover();
    void RestoreSettings();
    void LeaveRecessive();
    void Transfer(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In = {}, std::size_t SampleBytes = 0);
    void AddQueued(std::size_t SampleBytes) noexcept;
    void ForgetQueued() noexcept;
    std::span<const std::uint8_t> Frame(std::uint8_t Opcode, std::span<const std::uint8_t> Samples);
    std::chrono::nanoseconds Limit() const noexcept;

    std::unique_ptr<Transport> Transport_;
    bool HighSpeed_;
    std::int64_t MostQueuedBytes_; // in the buffer of the chip, and as many in the packets before it
    bool Open_ = true;
    bool InStep_ = true;                 // the engine stands between two commands and owes no answer
    std::uint8_t Levels_ = 0;            // of the pins, as configured
    std::uint8_t Directions_ = 0;        // inputs, as after a reset
    std::span<const std::uint8_t> Mode_; // the commands of the option; none until it is set
    std::optional<std::int32_t> Divisor_;
    Ticks Queued_{};                  // clocks that were sent and may not have left the pins
    Ticks SlowestByte_{};             // of those sent since the last answer
    std::vector<std::uint8_t> Frame_; // reused, so that a frame allocates nothing
};

} // namespace Pellumo
