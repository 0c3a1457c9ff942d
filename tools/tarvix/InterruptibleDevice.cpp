#include "tools/tarvix/InterruptibleDevice.h"

#include "tools/tarvix/Interrupts.h"

namespace Tarvix::Tool {

void InterruptibleDevice::ConfigurePins(std::uint8_t Levels, std::uint8_t Directions)
{
    Device_.ConfigurePins(Levels, Directions);
}

void InterruptibleDevice::SetOption(std::int32_t Option)
{
    Device_.SetOption(Option);
}

std::int32_t InterruptibleDevice::DivisorForFrequency(double Frequency)
{
    return Device_.DivisorForFrequency(Frequency);
}

void InterruptibleDevice::SetClockDivisor(std::int32_t Divisor)
{
    Device_.SetClockDivisor(Divisor);
}

double InterruptibleDevice::FrequencyForDivisor(std::int32_t Divisor)
{
    return Device_.FrequencyForDivisor(Divisor);
}

void InterruptibleDevice::SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount,
                                      std::int32_t LSBFirst, std::int32_t WriteEdge)
{
    ThrowIfInterrupted();
    Device_.SendSamples(Samples, ByteCount, LSBFirst, WriteEdge);
}

void InterruptibleDevice::ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount,
                                          std::int32_t LSBFirst, std::int32_t WriteEdge, std::int32_t ReadEdge)
{
    ThrowIfInterrupted();
    Device_.ExchangeSamples(Samples, ByteCount, LSBFirst, WriteEdge, ReadEdge);
}

void InterruptibleDevice::Close()
{
    Device_.Close();
}

} // namespace Tarvix::Tool
