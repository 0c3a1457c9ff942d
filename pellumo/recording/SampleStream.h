/// @file
/// What passes a recorder: one stream of samples after the other, each with its time.
#pragma once

#include "pellumo/Export.h"

#include <cstdint>
#include <span>

namespace Pellumo {

/// One stream as it was clocked. Sample n is bit (n mod 8) of byte (n div 8).
struct SampleStream {
    std::span<const std::uint8_t> Tx; ///< what the commander drove
    std::span<const std::uint8_t> Rx; ///< the bus as sampled, as long as `Tx`; `Tx` itself when nothing was read back
    bool ReadBack = false;            ///< whether the bus was sampled
    double Frequency = 0.0;           ///< samples per second; 0 before a clock was set: time unknown
    double EpochSeconds = 0.0;        ///< bus time at which this sample clock was set
    std::int64_t FirstSample = 0;     ///< samples clocked since then, up to this stream

    /// Bus time in seconds at which sample `n` of this stream begins. Every time is computed from the sample's index
    /// since the clock was set, so that rounding never adds up.
    double Seconds(std::int64_t n) const noexcept
    {
        return Frequency > 0.0 ? EpochSeconds + static_cast<double>(FirstSample + n) / Frequency : EpochSeconds;
    }
    /// Samples in this stream.
    std::int64_t Samples() const noexcept { return static_cast<std::int64_t>(Tx.size()) * 8; }
};

/// Is told of every stream that a recorder passes on.
class PELLUMO_API SampleListener {
public:
    virtual ~SampleListener();

    /// Called after the stream has been clocked; its spans are valid during the call. What it throws reaches the caller
    /// of the bus operation.
    virtual void OnStream(const SampleStream& Stream) = 0;

protected:
    SampleListener() = default;
    SampleListener(const SampleListener&) = default;
    SampleListener(SampleListener&&) = default;
    SampleListener& operator=(const SampleListener&) = default;
    SampleListener& operator=(SampleListener&&) = default;
};

} // namespace Pellumo
