/// @file
/// Fuzzes the operation log: what a session of any operations has logged, run as a script, makes the same calls of the
/// device.
#include "tarvix/master/Checksums.h"
#include "tarvix/master/clsLIN.h"
#include "tarvix/script/clsLINScriptInterpreter.h"
#include "tarvix/script/icLog.h"
#include "tests/support/SlaveAnswer.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Fuzzing.h"
#include "fuzz/StreamDevice.h"

namespace {

using Tarvix::clsLIN;
using Tarvix::Variant;
using Tarvix::Fuzzing::Demand;
using Tarvix::Fuzzing::Input;
using Tarvix::Fuzzing::StreamDevice;
using Tarvix::Fuzzing::Succeeds;
using Tarvix::Testing::BusFunction;
using Bytes = std::vector<std::uint8_t>;

constexpr float LongestBreak = 1000.0F; // bit times

class ScriptLog final : public Tarvix::icLog {
public:
    std::string Script;
    void LogEntry(std::string_view LINScript) override { Script.append(LINScript); }
};

/// Plays the answers, one an exchange; an empty one is an echo.
class AnsweringBus {
public:
    explicit AnsweringBus(StreamDevice& Device)
    {
        Device.Bus = [this](std::span<std::uint8_t> Stream) {
            Demand(Next_ < Answers.size());
            if (const BusFunction& Answer = Answers[Next_++]) {
                Answer(Stream);
            }
        };
    }

    std::vector<BusFunction> Answers;

private:
    std::size_t Next_ = 0;
};

Bytes TakeData(Input& From)
{
    const std::size_t Length = From.Below(8) + 1U;
    const auto Taken = From.Bytes(Length);
    Bytes Data(Taken.begin(), Taken.end());
    Data.resize(Length);
    return Data;
}

std::uint32_t TakeNumber(Input& From, int Size)
{
    std::uint32_t Number = 0;
    for (int k = 0; k < Size; ++k) {
        Number = Number << 8 | From.Byte();
    }
    return Number;
}

/// A number as the log can tell it, with seven digits.
float TakeReal(Input& From)
{
    const float Value = std::bit_cast<float>(TakeNumber(From, 4));
    std::array<char, 32> Text{}; // ends with a zero whatever is written
    std::to_chars(Text.data(), Text.data() + Text.size() - 1, Value, std::chars_format::general, 7);
    return static_cast<float>(std::strtod(Text.data(), nullptr));
}

/// A master on a bus where every read is answered as it should be.
class Session {
public:
    Session()
    {
        Master_.Initialize(Device_);
        Master_.Log(&Log_);
    }

    /// Does what the input says until it ends or an operation fails, which is then as if it had never been called.
    void Run(Input From)
    {
        for (int k = 0; k < 50 && !From.Empty(); ++k) {
            const std::size_t Calls = Device_.Calls.size();
            if (!Succeeds([&] { Operate(From); })) {
                Device_.Calls.resize(Calls);
                return;
            }
        }
    }

    const std::vector<StreamDevice::Call>& Calls() const noexcept { return Device_.Calls; }
    const std::vector<BusFunction>& Answers() const noexcept { return Bus_.Answers; }
    const std::string& Script() const noexcept { return Log_.Script; }

private:
    void Operate(Input& From)
    {
        switch (From.Below(9)) {
        case 0: return Master_.Wait(From.Byte());
        case 1: return Master_.GenerateBreak();
        case 2: return Master_.BaudrateBd(static_cast<std::int32_t>(TakeNumber(From, 2)));
        case 3: return SetBitTime(TakeReal(From));
        case 4: return SetBreakWidth(TakeReal(From));
        case 5: return Master_.SyncByte(From.Byte());
        case 6: return Master_.ChecksumMode(From.Below(3));
        case 7: return Write(From);
        default: return Read(From);
        }
    }

    /// A script has no words for what is no number, and no device has bit times below 0.
    void SetBitTime(float Value)
    {
        if (std::isfinite(Value) && Value > 0.0F) {
            Master_.BaudrateTbit(Value);
        }
    }

    void SetBreakWidth(float Value)
    {
        if (Value <= LongestBreak) {
            Master_.BreakWidth(Value);
        }
    }

    void Write(Input& From)
    {
        const std::uint8_t ID = From.Byte();
        const Bytes Data = TakeData(From);
        const std::uint8_t Checksum = From.Byte();
        Bus_.Answers.emplace_back();
        Master_.WriteFrame(ID, static_cast<std::int32_t>(Data.size()), Data,
                           Checksum % 2 == 0 ? std::optional<Variant>(Checksum) : std::nullopt);
    }

    void Read(Input& From)
    {
        const std::uint8_t ID = From.Byte();
        Bytes Answer = TakeData(From);
        const auto Length = static_cast<std::int32_t>(Answer.size());
        Answer.push_back(Master_.ChecksumMode() == Tarvix::elcLIN13 ? Tarvix::ClassicChecksum(Length, Answer)
                                                                    : Tarvix::EnhancedChecksum(ID, Length, Answer));
        const auto Break = static_cast<std::int32_t>(Master_.BreakWidth() * 8);
        Bus_.Answers.push_back(Tarvix::Testing::Answering(Answer, Break + 168));
        Demand(Master_.ReadFrame(ID, Length));
    }

    StreamDevice Device_;
    AnsweringBus Bus_{Device_};
    ScriptLog Log_;
    clsLIN Master_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    Session First;
    First.Run({Data, Size});

    StreamDevice Device;
    AnsweringBus Bus(Device);
    Bus.Answers = First.Answers();
    ScriptLog Log;
    clsLIN Master;
    Master.Initialize(Device);
    Master.Log(&Log);
    Tarvix::clsLINScriptInterpreter Interpreter;
    Interpreter.Initialize(Master);
    Interpreter.ExecuteScript(std::string_view(First.Script()));
    Demand(Device.Calls == First.Calls());
    Demand(Log.Script == First.Script());
    return 0;
}
