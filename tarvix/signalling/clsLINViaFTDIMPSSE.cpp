#include "tarvix/signalling/clsLINViaFTDIMPSSE.h"

#include "tarvix/common/CheckedArithmetic.h"
#include "tarvix/common/FloatingPoint.h"
#include "tarvix/signalling/eBit.h"

namespace Tarvix {

namespace {

// Data out and clock idle high, so that the bus stays recessive; chip select is an output, too.
constexpr std::uint8_t PinLevels = 0x03;
constexpr std::uint8_t PinDirections = 0x0B;
constexpr std::int32_t PlainMode = 0;

constexpr std::int32_t LSBFirst = 1;
constexpr std::int32_t WriteOnRisingEdge = 0;
constexpr std::int32_t ReadHalfAPeriodLater = 0;

} // namespace

clsLINViaFTDIMPSSE::clsLINViaFTDIMPSSE()
{
    Buffer_.Initialize(SamplesPerBit, eb1);
}

void clsLINViaFTDIMPSSE::AttachDevice(FTDIMPSSE& Device)
{
    Device_ = &Device;
    Device.ConfigurePins(PinLevels, PinDirections);
    Device.SetOption(PlainMode);
}

void clsLINViaFTDIMPSSE::SetBitPeriod(float tBit)
{
    const float TargetPeriod = tBit / SamplesPerBit;
    const double RequestedClock = Quotient(1.0, TargetPeriod);
    FTDIMPSSE& Chip = Device();
    const std::int32_t Divisor = Chip.DivisorForFrequency(RequestedClock);
    Chip.SetClockDivisor(Divisor);
    const double AchievedClock = Chip.FrequencyForDivisor(Divisor);
    SamplePeriod_ = NarrowToFloat(Quotient(1.0, AchievedClock));
}

std::int32_t clsLINViaFTDIMPSSE::BitsToSamples(float Bits)
{
    return RoundTo<std::int32_t>(double{Bits} * SamplesPerBit);
}

float clsLINViaFTDIMPSSE::SamplesToBits(std::int32_t Samples) noexcept
{
    return NarrowToFloat(static_cast<double>(Samples) / SamplesPerBit);
}

void clsLINViaFTDIMPSSE::LINWait(std::int32_t Length)
{
    Buffer_.InitializeData(Length, 0);
    Buffer_.WriteSamples(Length, eb1);
    SendStream();
}

void clsLINViaFTDIMPSSE::LINBreak(std::int32_t BreakWidth)
{
    Buffer_.InitializeData(BreakWidth, 1);
    WriteBreak(BreakWidth);
    SendStream();
}

FTDIMPSSE& clsLINViaFTDIMPSSE::Device() const
{
    if (Device_ == nullptr) {
        Raise(errGeneral::errNotAttached);
    }
    return *Device_;
}

void clsLINViaFTDIMPSSE::WriteBreak(std::int32_t BreakWidth)
{
    Buffer_.WriteSamples(BreakWidth, eb0);
    Buffer_.WriteBit(eb1);
}

void clsLINViaFTDIMPSSE::SendStream()
{
    Device().SendSamples(Buffer_.Stream(), Buffer_.DataLengthBytes(), LSBFirst, WriteOnRisingEdge);
}

void clsLINViaFTDIMPSSE::ExchangeStream(std::int32_t StartSamplePoint)
{
    Device().ExchangeSamples(Buffer_.Stream(), Buffer_.DataLengthBytes(), LSBFirst, WriteOnRisingEdge,
                             ReadHalfAPeriodLater);
    Buffer_.RewindTo(StartSamplePoint);
}

} // namespace Tarvix
