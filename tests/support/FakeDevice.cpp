#include "tests/support/FakeDevice.h"

#include <cmath>
#include <sstream>

namespace Tarvix::Testing {

namespace {

template <typename... Arguments>
std::string Text(const char* Operation, Arguments... Values)
{
    std::ostringstream Stream;
    Stream.imbue(std::locale::classic());
    Stream << Operation;
    ((Stream << ' ' << static_cast<std::int64_t>(Values)), ...);
    return Stream.str();
}

} // namespace

void FakeDevice::Record(std::string Call)
{
    if (BeforeCall) {
        BeforeCall(Calls.size());
    }
    Calls.push_back(std::move(Call));
}

void FakeDevice::ConfigurePins(std::uint8_t Levels, std::uint8_t Directions)
{
    Record(Text("ConfigurePins", Levels, Directions));
}

void FakeDevice::SetOption(std::int32_t Option)
{
    Record(Text("SetOption", Option));
}

std::int32_t FakeDevice::DivisorForFrequency(double Frequency)
{
    Record("DivisorForFrequency");
    Frequencies.push_back(Frequency);
    if (!(Frequency > 0.0)) { // true for not-a-number, too
        return 0;
    }
    const double Divisor = std::nearbyint(30e6 / Frequency - 1.0);
    return Divisor >= 0.0 && Divisor <= 65535.0 ? static_cast<std::int32_t>(Divisor) : 0;
}

void FakeDevice::SetClockDivisor(std::int32_t Divisor)
{
    Record(Text("SetClockDivisor", Divisor));
}

double FakeDevice::FrequencyForDivisor(std::int32_t Divisor)
{
    Record(Text("FrequencyForDivisor", Divisor));
    return ClockOf(Divisor);
}

void FakeDevice::SendSamples(std::span<const std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                             std::int32_t WriteEdge)
{
    Record(Text("SendSamples", ByteCount, LSBFirst, WriteEdge));
    Sent.emplace_back(Samples.begin(), Samples.end());
}

void FakeDevice::ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t ByteCount, std::int32_t LSBFirst,
                                 std::int32_t WriteEdge, std::int32_t ReadEdge)
{
    Record(Text("ExchangeSamples", ByteCount, LSBFirst, WriteEdge, ReadEdge));
    Sent.emplace_back(Samples.begin(), Samples.end());
    if (Bus) {
        Bus(Samples.first(static_cast<std::size_t>(ByteCount)));
    }
}

void FakeDevice::Close()
{
    Record("Close");
}

} // namespace Tarvix::Testing
