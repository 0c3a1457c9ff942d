#include "pellumo/recording/Recorder.h"

#include <cstddef>

namespace Pellumo {

SampleListener::~SampleListener() = default;

double Recorder::Now() const noexcept
{
    return SampleStream{{}, {}, false, Frequency_, EpochSeconds_, SamplesInEpoch_}.Seconds(0);
}

void Recorder::ConfigurePins(std::uint8_t Levels, std::uint8_t Directions)
{
    Device_.ConfigurePins(Levels, Directions);
}

void Recorder::SetOption(std::int32_t Option)
{
    Device_.SetOption(Option);
}

std::int32_t Recorder::DivisorForFrequency(double Frequency)
{
    return Device_.DivisorForFrequency(Frequency);
}

void Recorder::SetClockDivisor(std::int32_t Divisor)
{
    Device_.SetClockDivisor(Divisor);
    const double Frequency = Device_.FrequencyForDivisor(Divisor);
    EpochSeconds_ = Now();
    SamplesInEpoch_ = 0;
    Frequency_ = Frequency;
}

double Recorder::FrequencyForDivisor(std::int32_t Divisor)
{
    return Device_.FrequencyForDivisor(Divisor);
}

void Recorder::SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                           std::int32_t WriteEdge)
{
    Device_.SendSamples(Samples, ByteCount, LSBFirst, WriteEdge);
    const auto Driven = Samples.first(static_cast<std::size_t>(ByteCount));
    Tell(Driven, Driven, false);
}

void Recorder::ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                               std::int32_t WriteEdge, std::int32_t ReadEdge)
{
    Tx_.assign(Samples.begin(), Samples.end());
    Device_.ExchangeSamples(Samples, ByteCount, LSBFirst, WriteEdge, ReadEdge);
    const auto Count = static_cast<std::size_t>(ByteCount);
    Tell(std::span(Tx_).first(Count), Samples.first(Count), true);
}

void Recorder::Close()
{
    Device_.Close();
}

void Recorder::Tell(std::span<const std::uint8_t> Tx, std::span<const std::uint8_t> Rx, bool ReadBack)
{
    const SampleStream Stream{Tx, Rx, ReadBack, Frequency_, EpochSeconds_, SamplesInEpoch_};
    SamplesInEpoch_ += Stream.Samples();
    for (SampleListener* const Listener : Listeners_) {
        Listener->OnStream(Stream);
    }
}

} // namespace Pellumo
