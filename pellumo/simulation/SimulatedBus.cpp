#include "pellumo/simulation/SimulatedBus.h"

#include "pellumo/common/FrameBytes.h"
#include "pellumo/common/SampleRuns.h"
#include "pellumo/simulation/RandomBits.h"

#include <algorithm>

namespace Pellumo {

namespace {

/// What the commander drives during one stream.
class Commander {
public:
    Commander(std::span<const std::uint8_t> Samples, Tick Start, Tick SampleTicks) noexcept
        : Samples_(Samples), Start_(Start), SampleTicks_(SampleTicks), End_(BeginOf(Samples.size() * 8))
    {
        BeginRun(0);
    }

    Tick End() const noexcept { return End_; }
    int Level() const noexcept { return Level_; }
    Tick NextChange() const noexcept { return NextChange_; }

    void AdvanceTo(Tick Now) noexcept
    {
        if (Now == NextChange_ && Now < End_) {
            BeginRun(EndOfRun_);
        }
    }

    /// How many samples of the stream have been read before `Now`: each is read in its middle.
    std::size_t SamplesReadBefore(Tick Now) const noexcept
    {
        return static_cast<std::size_t>((Now - Start_ - SampleTicks_ / 2 + SampleTicks_ - 1) / SampleTicks_);
    }

private:
    Tick BeginOf(std::size_t Sample) const noexcept { return Start_ + static_cast<Tick>(Sample) * SampleTicks_; }

    void BeginRun(std::size_t First) noexcept
    {
        Level_ = SampleAt(Samples_, First);
        EndOfRun_ = EndOfRun(Samples_, First);
        NextChange_ = BeginOf(EndOfRun_);
    }

    std::span<const std::uint8_t> Samples_;
    Tick Start_;
    Tick SampleTicks_;
    Tick End_;
    int Level_ = 1;
    std::size_t EndOfRun_ = 0;
    Tick NextChange_ = Never;
};

/// The node that speaks where it should not.
SlaveDescription Intruder(const CollisionFault& Collision, std::uint64_t Seed)
{
    std::vector<std::uint8_t> Data = Collision.Data;
    for (std::uint64_t k = 0; Collision.Data.empty() && k < MaximumDataBytes; ++k) {
        Data.push_back(static_cast<std::uint8_t>(RandomBits(Seed, k)));
    }
    return {.Name = "collision",
            .ResponseSpace = Collision.ResponseSpace,
            .Frames = {{.Identifier = Collision.Frame, .Data = std::move(Data), .OnlyRequest = Collision.Occurrence}}};
}

} // namespace

SimulatedBus::SimulatedBus(const BusDescription& Description)
    : Faults_(Description.WireFaults, RandomBits(Description.Seed, 0))
{
    const std::uint64_t SlaveSeed = RandomBits(Description.Seed, 1);
    const std::uint64_t CollisionSeed = RandomBits(Description.Seed, 2);
    for (const SlaveDescription& Slave : Description.Slaves) {
        Nodes_.emplace_back(Slave, Description.AnswerFaults, RandomBits(SlaveSeed, Nodes_.size()));
    }
    for (const CollisionFault& Collision : Description.Collisions) {
        Nodes_.emplace_back(Intruder(Collision, RandomBits(CollisionSeed, Nodes_.size())));
    }
}

void SimulatedBus::Clock(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In, std::int64_t SampleTicks)
{
    if (Out.empty()) {
        return;
    }
    Commander Driver(Out, Now_, SampleTicks);
    Faults_.BeginStream({Now_, SampleTicks, Samples_});
    std::size_t SamplesRead = 0;
    while (Now_ < Driver.End()) {
        const Levels Now = LevelsWith(Driver.Level());
        const Tick To = std::min(Driver.NextChange(), NextEvent(Now.OnBus));
        AdvanceTo(To);
        Driver.AdvanceTo(To);
        if (!In.empty()) {
            const std::size_t ReadBefore = Driver.SamplesReadBefore(To);
            FillSamples(In, SamplesRead, ReadBefore, Now.Read);
            SamplesRead = ReadBefore;
        }
    }
    Samples_ += static_cast<std::int64_t>(Out.size() * 8);
}

void SimulatedBus::SetLevel(int /*Level*/) {}

SimulatedBus::Levels SimulatedBus::LevelsWith(int Commander)
{
    int Wire = Commander;
    for (const SlaveNode& Node : Nodes_) {
        Wire &= Node.Level();
    }
    if (Faults_.Empty()) {
        return {Wire, Wire};
    }
    Faults_.See(Wire, Now_);
    return {Faults_.OnBus(), Faults_.Read()};
}

Tick SimulatedBus::NextEvent(int OnBus)
{
    Tick Next = Faults_.Empty() ? Never : Faults_.NextEvent();
    for (SlaveNode& Node : Nodes_) {
        Node.See(OnBus);
        Next = std::min(Next, Node.NextEvent());
    }
    return Next;
}

void SimulatedBus::AdvanceTo(Tick To)
{
    if (!Faults_.Empty()) {
        Faults_.AdvanceTo(To);
    }
    for (SlaveNode& Node : Nodes_) {
        Node.AdvanceTo(To);
    }
    Now_ = To;
}

} // namespace Pellumo
