#include "pellumo/recording/AnswerTiming.h"

#include "pellumo/common/SampleRuns.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace Pellumo {

namespace {

constexpr std::int64_t Bit = 8;
constexpr double SamplesPerBit = 8.0;
constexpr std::size_t MostBytes = 14; // that the engine leaves time for

struct Answer {
    std::span<const std::uint8_t> Samples;
    std::span<const std::int64_t> StartEdges;

    int LevelAt(std::int64_t n) const noexcept { return SampleAt(Samples, static_cast<std::size_t>(n)); }
    std::int64_t NextEdge(std::int64_t n) const noexcept
    {
        return static_cast<std::int64_t>(EndOfRun(Samples, static_cast<std::size_t>(n)));
    }
};

struct Edge {
    std::int64_t BitNumber = 0; ///< counted as if bytes followed each other without a gap, ten bits each
    std::int64_t Sample = 0;
    std::size_t Byte = 0;
};

/// The clean edges: start edges, and where two bits differ the only edge between their sampling points.
std::vector<Edge> CleanEdges(const Answer& Seen)
{
    std::vector<Edge> Edges;
    for (std::size_t i = 0; i < Seen.StartEdges.size(); ++i) {
        const std::int64_t StartEdge = Seen.StartEdges[i];
        const std::int64_t FirstBit = 10 * static_cast<std::int64_t>(i);
        if (Seen.NextEdge(StartEdge) > StartEdge + Bit / 2) {
            Edges.push_back({FirstBit, StartEdge, i});
        }
        for (int k = 1; k <= 9; ++k) {
            const std::int64_t Middle = StartEdge + Bit / 2 + Bit * k;
            const std::int64_t EdgeSample = Seen.NextEdge(Middle - Bit);
            if (Seen.LevelAt(Middle - Bit) != Seen.LevelAt(Middle) && Seen.NextEdge(EdgeSample) > Middle) {
                Edges.push_back({FirstBit + k, EdgeSample, i});
            }
        }
    }
    return Edges;
}

/// Bounds of the slave's bit time, in samples.
struct BitTimeRange {
    double Shortest = 0.0;
    double Longest = std::numeric_limits<double>::infinity();

    bool IsMeasured() const noexcept { return std::isfinite(Longest) && Shortest < Longest; }
    double Middle() const noexcept { return (Shortest + Longest) / 2; }
};

/// The bit times with which every two edges can be where they were seen.
/// @param Window      samples within which an edge is seen somewhere
/// @param AcrossBytes whether the numbers of bits between edges of different bytes are known
BitTimeRange RangeOf(std::span<const Edge> Edges, double Window, bool AcrossBytes)
{
    BitTimeRange Range;
    for (std::size_t j = 1; j < Edges.size(); ++j) {
        for (std::size_t i = 0; i < j; ++i) {
            if (AcrossBytes || Edges[i].Byte == Edges[j].Byte) {
                const auto Bits = static_cast<double>(Edges[j].BitNumber - Edges[i].BitNumber);
                const auto Samples = static_cast<double>(Edges[j].Sample - Edges[i].Sample);
                Range.Shortest = std::max(Range.Shortest, (Samples - Window) / Bits);
                Range.Longest = std::min(Range.Longest, (Samples + Window) / Bits);
            }
        }
    }
    return Range;
}

/// Sampling sees an edge up to one sample late. Only when that does not explain the edges is another sample allowed for
/// what the slave and the transceivers do to them.
std::optional<BitTimeRange> MeasureBitTime(const Answer& Seen)
{
    const std::vector<Edge> Edges = CleanEdges(Seen);
    for (const double Window : {1.0, 2.0}) {
        for (const bool AcrossBytes : {true, false}) {
            const BitTimeRange Range = RangeOf(Edges, Window, AcrossBytes);
            if (Range.IsMeasured()) {
                return Range;
            }
        }
    }
    return std::nullopt;
}

ClockEstimate EstimateClock(const BitTimeRange& BitTime)
{
    const auto Deviation = [](double Samples) { return 100.0 * (SamplesPerBit / Samples - 1.0); };
    return {Deviation(BitTime.Middle()), Deviation(BitTime.Shortest) - Deviation(BitTime.Middle())};
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
    const auto BitTime = MeasureBitTime({Samples, StartEdges.first(std::min(StartEdges.size(), MostBytes))});
    AnswerTiming Timing;
    Timing.ResponseSpace = static_cast<double>(StartEdges.front() - ResponseBegin) / SamplesPerBit;
    Timing.LongestGap = LongestGap(StartEdges, BitTime ? BitTime->Middle() : SamplesPerBit);
    if (BitTime) {
        Timing.Clock = EstimateClock(*BitTime);
    }
    Timing.Margin = Bit;
    for (const std::int64_t StartEdge : StartEdges) {
        Timing.Margin = std::min(Timing.Margin, MarginOfByte(Seen, StartEdge));
    }
    return Timing;
}

} // namespace Pellumo
