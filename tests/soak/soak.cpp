// Keeps a master busy on simulated buses under random faults: `soak MINUTES`, of time on the bus. Ends with status 1
// when a frame without a fault goes wrong, when anything but the bus itself fails, or when memory grows.

#include "pellumo/emulation/EmulatedTransport.h"
#include "pellumo/mpsse/MPSSEDevice.h"
#include "pellumo/simulation/SimulatedBus.h"
#include "tarvix/common/Error.h"
#include "tarvix/common/ErrorNumbers.h"
#include "tarvix/master/clsLIN.h"
#include "tests/soak/RandomBus.h"
#include "tests/support/AllocationCounter.h"

#include <algorithm>
#include <array>
#include <exception>
#include <iomanip>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using namespace Pellumo;
using namespace Pellumo::Testing;
using Tarvix::clsLIN;
using Tarvix::Testing::Random;

constexpr std::int64_t TicksOfAMinute = 60LL * 60'000'000;
constexpr std::int16_t LongestPause = 400; // bit times

/// Passes everything on to a bus, and adds up the time.
class TimedPins final : public Pins {
public:
    TimedPins(Pins& Bus, std::int64_t& Ticks) noexcept : Bus_(Bus), Ticks_(Ticks) {}

    void Clock(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In, std::int64_t SampleTicks) override
    {
        Bus_.Clock(Out, In, SampleTicks);
        Ticks_ += static_cast<std::int64_t>(Out.size()) * 8 * SampleTicks;
    }
    void SetLevel(int Level) override { Bus_.SetLevel(Level); }

private:
    Pins& Bus_;
    std::int64_t& Ticks_;
};

/// What has come of the disturbed frames.
class Tally {
public:
    void InOrder() { ++Entries_[0].Count; }
    void Silence() { ++Entries_[1].Count; }
    /// False for what no bus can cause.
    bool Add(const Tarvix::Error& Raised)
    {
        auto* const Found = std::find_if(Entries_.begin() + 2, Entries_.end(),
                                         [&](const Entry& Each) { return Each.Number == Raised.Number(); });
        return Found != Entries_.end() && ++Found->Count > 0;
    }
    void Print() const
    {
        for (const Entry& Each : Entries_) {
            std::cout << std::setw(9) << Each.Count << "  " << Each.What << '\n';
        }
    }

private:
    struct Entry {
        const char* What;
        std::int32_t Number = 0;
        std::int64_t Count = 0;
    };
    template <typename Enum>
    static constexpr Entry Of(const char* What, Enum Number)
    {
        return {What, static_cast<std::int32_t>(Number)};
    }

    std::array<Entry, 8> Entries_ = {
        Entry{"in order"},
        Entry{"without an answer"},
        Of("framing error", Tarvix::errLINViaFTDIMPSSE::errFraming),
        Of("other bytes than sent", Tarvix::errLINViaFTDIMPSSE::errTxRxMismatch),
        Of("byte cut off by the end", Tarvix::errOversamplingBuffer::errNoMoreData),
        Of("wrong checksum", Tarvix::errLIN::errChksum),
        Of("wrong length", Tarvix::errLIN::errResponseLength),
        Of("more bytes than fit", Tarvix::errGeneral::errIndexOutOfRange),
    };
};

void Require(bool Condition, const char* What)
{
    if (!Condition) {
        throw std::runtime_error(What);
    }
}

/// A master at one bus.
class Bench {
public:
    Bench(Random& Any, std::int64_t& Ticks) : Any_(Any), Bus_(RandomBus(Any)), Wires_(Bus_, Ticks)
    {
        Master_.Initialize(Device_);
        Master_.BaudrateBd(19200);
        Master_.Wait(LongestPause); // the longest stream of all
    }

    /// A frame that goes wrong as it likes, a pause, and frames that must not.
    void Exchange(Tally& Outcomes)
    {
        try {
            Disturbed() ? Outcomes.InOrder() : Outcomes.Silence();
        } catch (const Tarvix::Error& Raised) {
            Require(Outcomes.Add(Raised), Raised.what());
        }
        Master_.Wait(static_cast<std::int16_t>(Any_.Between(LongestPause / 2, LongestPause)));
        ReadSteady();
        WriteSteady();
    }

private:
    bool Disturbed()
    {
        const auto Identifier = static_cast<std::uint8_t>(FirstDisturbedFrame + Any_.Between(0, DisturbedFrames - 1));
        const std::uint8_t ID = clsLIN::ComputeIDParity(Identifier);
        if (Any_.Between(0, 3) > 0) {
            return Master_.ReadFrame(ID, Any_.Between(1, 8));
        }
        Master_.WriteFrame(ID, 8, std::array<std::uint8_t, 8>{1, 2, 3, 4, 5, 6, 7, 8});
        return true;
    }

    void ReadSteady()
    {
        const auto Identifier = static_cast<std::uint8_t>(Any_.Between(0, SteadyFrames - 1));
        ExpectAnswer(Identifier, SteadyData(Identifier));
    }

    void WriteSteady()
    {
        std::array<std::uint8_t, 8> Data{};
        std::generate(Data.begin(), Data.end(), [this] { return Any_.Byte(); });
        const std::int32_t Length = Any_.Between(1, 8);
        Master_.WriteFrame(clsLIN::ComputeIDParity(WrittenFrame), Length, Data);
        ExpectAnswer(CopyingFrame, std::span(Data).first(static_cast<std::size_t>(Length)));
    }

    void ExpectAnswer(std::uint8_t Identifier, std::span<const std::uint8_t> Expected)
    {
        const auto Length = static_cast<std::int32_t>(Expected.size());
        Require(Master_.ReadFrame(clsLIN::ComputeIDParity(Identifier), Length), "a node in order did not answer");
        Require(std::equal(Expected.begin(), Expected.end(), Master_.Data().begin()), "a node in order is misread");
    }

    Random& Any_;
    SimulatedBus Bus_;
    TimedPins Wires_;
    MPSSEDevice Device_{
        std::make_unique<EmulatedTransport>(std::make_shared<EmulatedChip>(ChipFamily::FT232H, Wires_), "sim:"),
        ChipFamily::FT232H};
    clsLIN Master_;
};

/// One bus for one minute. Memory may grow in its first half, in which everything has come about that a bus can do.
void RunMinute(Random& Any, Tally& Outcomes)
{
    std::int64_t Ticks = 0;
    Bench Lin(Any, Ticks);
    while (Ticks < TicksOfAMinute / 2) {
        Lin.Exchange(Outcomes);
    }
    const std::size_t Warm = Tarvix::Testing::LiveBytes();
    while (Ticks < TicksOfAMinute) {
        Lin.Exchange(Outcomes);
    }
    Require(Tarvix::Testing::LiveBytes() == Warm, "memory grew in the second half of a minute");
}

int Soak(int Minutes)
{
    Random Any;
    Tally Outcomes;
    RunMinute(Any, Outcomes); // the first of them; all that lives longer than its bus has its size now
    Tarvix::Testing::ResetPeak();
    const std::size_t Live = Tarvix::Testing::LiveBytes();
    for (int Minute = 1; Minute < Minutes; ++Minute) {
        RunMinute(Any, Outcomes);
        Require(Tarvix::Testing::LiveBytes() == Live, "memory grew from bus to bus");
    }

    std::cout << Minutes << " minutes on the bus; of the disturbed frames were\n";
    Outcomes.Print();
    std::cout << "memory: " << Tarvix::Testing::PeakBytes() << " bytes at the most, " << Live << " between two buses\n";
    return 0;
}

} // namespace

int main(int Count, char** Arguments)
{
    try {
        const int Minutes = Count == 2 ? std::stoi(Arguments[1]) : 0;
        if (Minutes < 1) {
            std::cerr << "usage: soak MINUTES\n";
            return 2;
        }
        return Soak(Minutes);
    } catch (const std::exception& Failure) {
        std::cerr << "soak: " << Failure.what() << '\n';
        return 1;
    }
}
