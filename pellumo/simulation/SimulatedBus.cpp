#include "pellumo/simulation/SimulatedBus.h"

#include "pellumo/simulation/SampleRuns.h"

#include <algorithm>

namespace Pellumo {

namespace {

/// What the commander drives during one stream.
class Commander {
public:
    Commander(std::span<const std::uint8_t> Samples, Tick Start, Tick SampleTicks) noexcept
        : Samples_(Samples), Start_(Start), SampleTicks_(SampleTicks)
    {
        BeginRun(0);
    }

    int Level() const noexcept { return Level_; }
    Tick NextChange() const noexcept { return NextChange_; }
    Tick End() const noexcept { return StartOf(Samples_.size() * 8); }

    void AdvanceTo(Tick Now) noexcept
    {
        if (Now == NextChange_ && Now < End()) {
            BeginRun(EndOfRun_);
        }
    }

    /// How many samples of the stream have been read before `Now`: each is read in its middle.
    std::size_t SamplesReadBefore(Tick Now) const noexcept
    {
        return static_cast<std::size_t>((Now - Start_ - SampleTicks_ / 2 + SampleTicks_ - 1) / SampleTicks_);
    }

private:
    Tick StartOf(std::size_t Sample) const noexcept { return Start_ + static_cast<Tick>(Sample) * SampleTicks_; }

    void BeginRun(std::size_t First) noexcept
    {
        Level_ = SampleAt(Samples_, First);
        EndOfRun_ = EndOfRun(Samples_, First);
        NextChange_ = StartOf(EndOfRun_);
    }

    std::span<const std::uint8_t> Samples_;
    Tick Start_;
    Tick SampleTicks_;
    int Level_ = 1;
    std::size_t EndOfRun_ = 0;
    Tick NextChange_ = Never;
};

} // namespace

SimulatedBus::SimulatedBus(const BusDescription& Description)
    : Nodes_(Description.Slaves.begin(), Description.Slaves.end())
{
}

void SimulatedBus::Clock(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In, std::int64_t SampleTicks)
{
    if (Out.empty()) {
        return;
    }
    Commander Driver(Out, Now_, SampleTicks);
    std::size_t Read = 0;
    while (Now_ < Driver.End()) {
        const int Level = Driver.Level() & DrivenByNodes();
        Tick To = Driver.NextChange();
        for (SlaveNode& Node : Nodes_) {
            Node.See(Level);
            To = std::min(To, Node.NextEvent());
        }
        for (SlaveNode& Node : Nodes_) {
            Node.AdvanceTo(To);
        }
        Driver.AdvanceTo(To);
        if (!In.empty()) {
            const std::size_t ReadBefore = Driver.SamplesReadBefore(To);
            FillSamples(In, Read, ReadBefore, Level);
            Read = ReadBefore;
        }
        Now_ = To;
    }
}

void SimulatedBus::SetLevel(int /*Level*/) {}

int SimulatedBus::DrivenByNodes() const noexcept
{
    int Level = 1;
    for (const SlaveNode& Node : Nodes_) {
        Level &= Node.Level();
    }
    return Level;
}

} // namespace Pellumo
