/// @file
/// Fuzzes the command decoder and the emulated chip behind it: however a stream of commands is cut, the chip does the
/// same with its pins, answers the same and traces the same.
#include "pellumo/emulation/EmulatedChip.h"

#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/Fuzzing.h"

namespace {

using Pellumo::ChipFamily;
using Pellumo::EmulatedChip;
using Tarvix::Fuzzing::Demand;
using Tarvix::Fuzzing::Input;

/// A few bytes make the chip clock 64 KiB.
constexpr std::size_t LongestStream = 200;

/// Echoes every fourth byte disturbed, and remembers all samples as one number: how they are cut into calls is free.
class SummingPins final : public Pellumo::Pins {
public:
    void Clock(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In, std::int64_t SampleTicks) override
    {
        Demand(SampleTicks >= 1 && (In.empty() || In.size() == Out.size()));
        for (std::size_t i = 0; i < Out.size(); ++i) {
            Add(Out[i] | (In.empty() ? 0U : 0x100U));
            Add(static_cast<std::uint64_t>(SampleTicks));
            if (!In.empty()) {
                In[i] = static_cast<std::uint8_t>(Out[i] ^ (Position_ % 4 == 3 ? 0x24 : 0));
            }
            ++Position_;
        }
    }
    void SetLevel(int Level) override { Add(0x200U + static_cast<std::uint64_t>(Level)); }

    std::uint64_t Sum() const noexcept { return Sum_; }

private:
    void Add(std::uint64_t Value) noexcept { Sum_ = (Sum_ ^ Value) * 0x100000001B3U; } // FNV-1a

    std::uint64_t Sum_ = 0xCBF29CE484222325U;
    std::size_t Position_ = 0;
};

struct Behaviour {
    std::uint64_t Samples = 0;
    std::vector<std::uint8_t> Answers;
    std::vector<std::string> Commands;

    bool operator==(const Behaviour&) const = default;
};

/// Writes the stream in pieces of at most `Piece` bytes.
Behaviour Run(ChipFamily Family, std::span<const std::uint8_t> Stream, std::size_t Piece)
{
    Behaviour Seen;
    SummingPins Wires;
    EmulatedChip Chip(Family, Wires);
    Chip.TraceTo([&](std::string_view Line) { Seen.Commands.emplace_back(Line); });
    while (!Stream.empty()) {
        const auto Next = Stream.first(std::min(Piece, Stream.size()));
        Stream = Stream.subspan(Next.size());
        Chip.Write(Next);
    }
    Seen.Answers.resize(Chip.Pending());
    Demand(Chip.Read(Seen.Answers) == Seen.Answers.size() && Chip.Pending() == 0);
    Seen.Samples = Wires.Sum();
    return Seen;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    Input From(Data, Size);
    const auto Family = static_cast<ChipFamily>(From.Below(4));
    const std::size_t Piece = From.Below(16) + 1U;
    const auto Stream = From.Bytes(LongestStream);
    Demand(Run(Family, Stream, Piece) == Run(Family, Stream, Stream.size() + 1));
    return 0;
}
