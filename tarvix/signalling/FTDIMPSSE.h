/// @file
/// The device interface: what the library asks of an MPSSE chip, and all that it knows of the outside.
///
/// A host creates a device (`Pellumo::OpenDevice`, or a class of its own), opens it, and hands it to
/// `clsLIN::Initialize`. The library never owns it; `clsLIN::Terminate` closes it.
///
/// A *sample* is one bit of a byte array: sample n is bit (n mod 8) of byte (n div 8), least significant bit first;
/// 1 is recessive (high), 0 dominant (low). One sample takes one period of the sample clock, and there are 8 samples to
/// a bit of the bus. Operations reach the bus in call order.
///
/// Every operation may raise whatever it likes on failure: the library catches nothing of it.
#pragma once

#include "tarvix/common/Export.h"

#include <cstdint>
#include <span>

namespace Tarvix {

/// A chip that clocks samples out to a LIN transceiver and samples the bus back.
class TARVIX_API FTDIMPSSE {
public:
    virtual ~FTDIMPSSE();

    /// Sets the pins of the engine's low byte. The library calls it once when the device is attached, with 0x03 (clock
    /// and data out high, so the bus idles recessive) and 0x0B (clock, data out and chip select are outputs).
    /// @param Levels      one bit a pin, 1 is high
    /// @param Directions  one bit a pin, 1 is an output
    virtual void ConfigurePins(std::uint8_t Levels, std::uint8_t Directions) = 0;

    /// Sets the engine's mode. The library passes 0, right after `ConfigurePins`: the plain mode that the exchanges of
    /// this interface need.
    virtual void SetOption(std::int32_t Option) = 0;

    /// The divisor whose clock comes nearest to `Frequency`; changes nothing.
    /// @param Frequency  wanted sample clock in Hz
    virtual std::int32_t DivisorForFrequency(double Frequency) = 0;

    /// From now on there is one sample per period of the clock that `Divisor` gives.
    virtual void SetClockDivisor(std::int32_t Divisor) = 0;

    /// The sample clock in Hz that `Divisor` really gives; greater than 0.
    virtual double FrequencyForDivisor(std::int32_t Divisor) = 0;

    /// Drives the first `ByteCount` * 8 samples on the bus.
    /// @param Samples    at least `ByteCount` bytes
    /// @param ByteCount  0 is allowed: nothing is driven
    /// @param LSBFirst   the library passes 1: sample 0 of a byte goes first
    /// @param WriteEdge  the library passes 0: a sample is put out on the rising clock edge (the clock idles high)
    virtual void SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                             std::int32_t WriteEdge) = 0;

    /// As `SendSamples`, and reads the bus level once per sample.
    /// @param Samples    at least `ByteCount` bytes; on return they hold what was read, at the same indexes
    /// @param ByteCount  0 is allowed: nothing is driven
    /// @param LSBFirst   the library passes 1: sample 0 of a byte goes first
    /// @param WriteEdge  the library passes 0: a sample is put out on the rising clock edge
    /// @param ReadEdge   the library passes 0: a sample is read half a clock period after it was put out
    virtual void ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                                 std::int32_t WriteEdge, std::int32_t ReadEdge) = 0;

    /// Ends the use of the device: everything queued has left the pins and the bus is recessive.
    virtual void Close() = 0;

protected:
    FTDIMPSSE() = default;
    FTDIMPSSE(const FTDIMPSSE&) = default;
    FTDIMPSSE(FTDIMPSSE&&) = default;
    FTDIMPSSE& operator=(const FTDIMPSSE&) = default;
    FTDIMPSSE& operator=(FTDIMPSSE&&) = default;
};

} // namespace Tarvix
