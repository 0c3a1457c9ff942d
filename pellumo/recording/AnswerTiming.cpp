#include "pellumo/recording/AnswerTiming.h"

#include "pellumo/simulation/SampleRuns.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace Pellumo {

namespace {

constexpr std::int64_t Bit = 8;
constexpr double SamplesPerBit = 8.0;

struct Answer {
    std::span<const std::uint8_t> Samples;
    std::span<const std::int64_t> StartEdges;

    int LevelAt(std::int64_t n) const noexcept { return SampleAt(Samples, static_cast<std::size_t>(n)); }
    std::int64_t NextEdge(std::int64_t n) const noexcept
    {
        return static_cast<std::int64_t>(EndOfRun(Samples, static_cast<std::size_t>(n)));
    }
};

/// Calls `Use` with bit number (0 the start edge, 9 the beginning of the stop bit) and sample of every clean edge of a
/// byte: the only one between the sampling points of two bits that differ.
template <typename Callable>
void ForEachEdge(const Answer& Seen, std::int64_t StartEdge, Callable&& Use)
{
    if (Seen.NextEdge(StartEdge) > StartEdge + Bit / 2) {
        Use(0, StartEdge);
    }
    for (int k = 0; k < 9; ++k) {
        const std::int64_t Middle = StartEdge + Bit / 2 + Bit * k;
        const std::int64_t NextMiddle = Middle + Bit;
        if (Seen.LevelAt(Middle) != Seen.LevelAt(NextMiddle)) {
            const std::int64_t Edge = Seen.NextEdge(Middle);
            if (Seen.NextEdge(Edge) > NextMiddle) {
                Use(k + 1, Edge);
            }
        }
    }
}

/// Sums for the least-squares line through points (bit number, sample).
struct Line {
    double Points = 0.0;
    double Bits = 0.0;
    double Samples = 0.0;
    double BitsBits = 0.0;
    double BitsSamples = 0.0;

    void Add(double BitNumber, double Sample) noexcept
    {
        Points += 1.0;
        Bits += BitNumber;
        Samples += Sample;
        BitsBits += BitNumber * BitNumber;
        BitsSamples += BitNumber * Sample;
    }
    /// Numerator and denominator of the slope.
    double Joint() const noexcept { return Points > 0.0 ? BitsSamples - Bits * Samples / Points : 0.0; }
    double Spread() const noexcept { return Points > 0.0 ? BitsBits - Bits * Bits / Points : 0.0; }
    /// How far a point lies from the line with this slope.
    double Distance(double BitNumber, double Sample, double Slope) const noexcept
    {
        return std::fabs(Sample - Samples / Points - Slope * (BitNumber - Bits / Points));
    }
};

struct BitTime {
    double Samples = SamplesPerBit;
    double Spread = 0.0; ///< the more, the surer
};

/// Each byte on a line of its own, all with one slope: whatever the pauses between the bytes.
BitTime FitBytes(const Answer& Seen)
{
    double Joint = 0.0;
    double Spread = 0.0;
    for (const std::int64_t StartEdge : Seen.StartEdges) {
        Line Byte;
        ForEachEdge(Seen, StartEdge, [&](int BitNumber, std::int64_t Edge) {
            Byte.Add(BitNumber, static_cast<double>(Edge - StartEdge));
        });
        Joint += Byte.Joint();
        Spread += Byte.Spread();
    }
    return Spread > 0.0 ? BitTime{Joint / Spread, Spread} : BitTime{};
}

/// As `ForEachEdge` for the whole answer: bits are counted from the first start edge, and those between two start edges
/// are the whole number that is nearest by `Rough`.
template <typename Callable>
void ForEachEdgeOfAnswer(const Answer& Seen, double Rough, Callable&& Use)
{
    const std::int64_t Origin = Seen.StartEdges.front();
    std::int64_t Previous = Origin;
    double BitsBefore = 0.0;
    for (const std::int64_t StartEdge : Seen.StartEdges) {
        BitsBefore += std::nearbyint(static_cast<double>(StartEdge - Previous) / Rough);
        Previous = StartEdge;
        ForEachEdge(Seen, StartEdge, [&](int BitNumber, std::int64_t Edge) {
            Use(BitsBefore + BitNumber, static_cast<double>(Edge - Origin));
        });
    }
}

/// All bytes on one line, when they are: seeing an edge only to one sample puts it up to half a sample beside its line,
/// and the fit itself is a little off.
std::optional<BitTime> FitAnswer(const Answer& Seen, double Rough)
{
    constexpr double Tolerance = 0.75;
    Line All;
    ForEachEdgeOfAnswer(Seen, Rough, [&](double BitNumber, double Sample) { All.Add(BitNumber, Sample); });
    const double Slope = All.Joint() / All.Spread();
    double Farthest = 0.0;
    ForEachEdgeOfAnswer(Seen, Rough, [&](double BitNumber, double Sample) {
        Farthest = std::max(Farthest, All.Distance(BitNumber, Sample, Slope));
    });
    return Farthest <= Tolerance ? std::optional(BitTime{Slope, All.Spread()}) : std::nullopt;
}

BitTime MeasureBitTime(const Answer& Seen)
{
    const BitTime Rough = FitBytes(Seen);
    return Rough.Spread > 0.0 ? FitAnswer(Seen, Rough.Samples).value_or(Rough) : Rough;
}

/// An edge is seen at the first sample after it, which adds an error spread evenly over one sample: its standard
/// deviation is 1 / sqrt(12).
ClockEstimate EstimateClock(const BitTime& Measured)
{
    const double BitTimeError = 1.0 / std::sqrt(12.0 * Measured.Spread);
    return {100.0 * (SamplesPerBit / Measured.Samples - 1.0),
            100.0 * SamplesPerBit / (Measured.Samples * Measured.Samples) * BitTimeError};
}

double LongestGap(std::span<const std::int64_t> StartEdges, double BitTime)
{
    double Longest = 0.0;
    for (std::size_t i = 1; i < StartEdges.size(); ++i) {
        const auto Spacing = static_cast<double>(StartEdges[i] - StartEdges[i - 1]);
        Longest = std::max(Longest, (Spacing - 10.0 * BitTime) / SamplesPerBit);
    }
    return Longest;
}

/// The margin within the byte that starts at `StartEdge`.
std::int64_t MarginOfByte(const Answer& Seen, std::int64_t StartEdge)
{
    const auto End = static_cast<std::int64_t>(Seen.Samples.size()) * 8;
    std::int64_t Margin = Bit;
    std::int64_t LastEdge = StartEdge;
    std::int64_t NextEdge = Seen.NextEdge(StartEdge);
    for (int k = 0; k <= 9; ++k) {
        const std::int64_t Middle = StartEdge + Bit / 2 + Bit * k;
        while (NextEdge <= Middle) {
            LastEdge = NextEdge;
            NextEdge = Seen.NextEdge(NextEdge);
        }
        Margin = std::min(Margin, Middle - LastEdge + 1);
        if (NextEdge < End) {
            Margin = std::min(Margin, NextEdge - Middle);
        }
    }
    return Margin;
}

} // namespace

std::optional<AnswerTiming> MeasureAnswer(std::span<const std::uint8_t> Samples, std::int64_t ResponseBegin,
                                          std::span<const std::int64_t> StartEdges)
{
    if (StartEdges.empty()) {
        return std::nullopt;
    }
    const Answer Seen{Samples, StartEdges};
    const BitTime Measured = MeasureBitTime(Seen);
    AnswerTiming Timing;
    Timing.ResponseSpace = static_cast<double>(StartEdges.front() - ResponseBegin) / SamplesPerBit;
    Timing.LongestGap = LongestGap(StartEdges, Measured.Samples);
    if (Measured.Spread > 0.0) {
        Timing.Clock = EstimateClock(Measured);
    }
    Timing.Margin = Bit;
    for (const std::int64_t StartEdge : StartEdges) {
        Timing.Margin = std::min(Timing.Margin, MarginOfByte(Seen, StartEdge));
    }
    return Timing;
}

} // namespace Pellumo
