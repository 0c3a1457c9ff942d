#include "tarvix/master/clsLIN.h"

#include "tarvix/common/CheckedArithmetic.h"
#include "tarvix/common/FloatingPoint.h"
#include "tarvix/script/clsLINScriptSynthesizer.h"
#include "tarvix/signalling/clsLINViaFTDIMPSSE.h"

namespace Tarvix {

namespace {

[[noreturn]] void RaiseInvalidParameter()
{
    Raise(errLIN::errParameter, "clsLIN", "Invalid parameter");
}

} // namespace

clsLIN::clsLIN()
    : Engine_(std::make_unique<clsLINViaFTDIMPSSE>()), Synthesizer_(std::make_unique<clsLINScriptSynthesizer>())
{
}

clsLIN::~clsLIN() = default;

void clsLIN::Initialize(FTDIMPSSE& Device)
{
    clsLINViaFTDIMPSSE& Attaching = Engine(); // a terminated master takes no device
    Device_ = &Device;
    Attaching.AttachDevice(Device);
}

float clsLIN::BaudrateTbit() const
{
    return Engine().tBit();
}

void clsLIN::BaudrateTbit(float Value)
{
    Engine().SetBitPeriod(Value);
    if (Log_ != nullptr) {
        Log_->LogEntry(Synthesizer_->ScriptBaudrateTbit(Value));
    }
}

std::int32_t clsLIN::BaudrateBd() const
{
    return RoundTo<std::int32_t>(Quotient(1.0, Engine().tBit()));
}

void clsLIN::BaudrateBd(std::int32_t Value)
{
    const float tBit = NarrowToFloat(Quotient(1.0, Value));
    Engine().SetBitPeriod(tBit);
    if (Log_ != nullptr) {
        Log_->LogEntry(Synthesizer_->ScriptBaudrateBaudrateBd(Value));
    }
}

float clsLIN::BreakWidth() const noexcept
{
    return clsLINViaFTDIMPSSE::SamplesToBits(BreakSamples_);
}

void clsLIN::BreakWidth(float Tbits)
{
    if (!(Tbits > 0.0F)) { // true for not-a-number, too
        RaiseInvalidParameter();
    }
    BreakSamples_ = clsLINViaFTDIMPSSE::BitsToSamples(Tbits);
    if (Log_ != nullptr) {
        Log_->LogEntry(Synthesizer_->ScriptBreakWidth(Tbits));
    }
}

void clsLIN::SyncByte(std::uint8_t Value)
{
    SyncByte_ = Value;
    if (Log_ != nullptr) {
        Log_->LogEntry(Synthesizer_->ScriptSyncByte(Value));
    }
}

void clsLIN::ChecksumMode(std::int32_t Value)
{
    if (Value < elcLIN13 || Value > elcLIN20) {
        RaiseInvalidParameter();
    }
    ChecksumMode_ = Value;
    if (Log_ != nullptr) {
        Log_->LogEntry(Synthesizer_->ScriptChecksumMode(Value));
    }
}

void clsLIN::Wait(std::int16_t Tbits)
{
    Engine().LINWait(clsLINViaFTDIMPSSE::BitsToSamples(Tbits));
    if (Log_ != nullptr) {
        Log_->LogEntry(Synthesizer_->ScriptWait(Tbits));
    }
}

void clsLIN::GenerateBreak()
{
    Engine().LINBreak(BreakSamples_);
    if (Log_ != nullptr) {
        Log_->LogEntry(Synthesizer_->ScriptGenerateBreak());
    }
}

void clsLIN::Terminate()
{
    if (Engine_) {
        Engine_->ReleaseDevice();
        Engine_.reset();
    }
    if (Device_ != nullptr) {
        Device_->Close();
        Device_ = nullptr;
    }
    Log_ = nullptr;
}

clsLINViaFTDIMPSSE& clsLIN::Engine() const
{
    if (!Engine_) {
        Raise(errGeneral::errNotAttached);
    }
    return *Engine_;
}

} // namespace Tarvix
