/// @file
/// A device that lets others see every sample that passes it.
#pragma once

#include "pellumo/Export.h"
#include "pellumo/recording/SampleStream.h"
#include "tarvix/signalling/FTDIMPSSE.h"

#include <cstdint>
#include <vector>

namespace Pellumo {

/// Stands between a master and its device, be it real or simulated: passes every call on unchanged and tells listeners
/// of every stream that was clocked. Bus time passes only while samples are clocked. A stream whose exchange fails is
/// not told: nobody knows how much of it went out.
///
/// Without a recorder nothing is copied; with one, each exchange costs one copy of its samples.
class PELLUMO_API Recorder : public Tarvix::FTDIMPSSE {
public:
    /// @param Device  held, not owned: it must outlive the recorder's use
    explicit Recorder(Tarvix::FTDIMPSSE& Device) noexcept : Device_(Device) {}

    /// Adds a listener, held, not owned. Listeners are told in the order in which they were added.
    void AddListener(SampleListener& Listener) { Listeners_.push_back(&Listener); }

    /// Bus time in seconds: how long samples have been clocked.
    double Now() const noexcept;

    void ConfigurePins(std::uint8_t Levels, std::uint8_t Directions) override;
    void SetOption(std::int32_t Option) override;
    std::int32_t DivisorForFrequency(double Frequency) override;
    void SetClockDivisor(std::int32_t Divisor) override;
    double FrequencyForDivisor(std::int32_t Divisor) override;
    void SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                     std::int32_t WriteEdge) override;
    void ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                         std::int32_t WriteEdge, std::int32_t ReadEdge) override;
    void Close() override;

private:
    void Tell(std::span<const std::uint8_t> Tx, std::span<const std::uint8_t> Rx, bool ReadBack);

    Tarvix::FTDIMPSSE& Device_;
    std::vector<SampleListener*> Listeners_;
    std::vector<std::uint8_t> Tx_;
    double Frequency_ = 0.0;
    double EpochSeconds_ = 0.0;
    std::int64_t SamplesInEpoch_ = 0;
};

} // namespace Pellumo
