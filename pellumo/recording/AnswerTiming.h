/// @file
/// What only the samples tell about an answer: when it came, how fast the slave's clock runs, and how close it came to
/// being misread.
#pragma once

#include "pellumo/Export.h"

#include <cstdint>
#include <optional>
#include <span>

namespace Pellumo {

/// The slave's clock against the commander's.
struct ClockEstimate {
    double Deviation = 0.0; ///< percent; positive: the slave's clock is fast, its bits are short
    double Accuracy = 0.0;  ///< percent: standard deviation of `Deviation` from seeing each edge only to one sample
};

/// Timing of an answer. Bit times are the commander's.
struct AnswerTiming {
    double ResponseSpace = 0.0; ///< bit times from the end of the identifier's stop bit to the first start edge
    double LongestGap = 0.0;    ///< bit times from the end of a stop bit to the next start edge, not below 0
    /// Nothing when the answer has too few clean edges: bytes disturbed by glitches.
    std::optional<ClockEstimate> Clock;
    /// Samples by which an edge could move before a sampling point saw another level: 4 in an answer without any
    /// deviation, 1 when the sample beside a sampling point already has the other level.
    std::int64_t Margin = 0;
};

/// Measures an answer. The response space and the gaps are seen to one sample, an eighth of a bit time; a gap also
/// suffers from the estimate of the slave's bit time, ten of which make up the byte before it.
///
/// The slave's bit time is the least-squares slope of edge positions over bit numbers. Where the bytes follow each
/// other at whole bit numbers, as a UART sends them, the line goes through the whole answer (nine bytes: about 0.02 %);
/// else each byte has a line of its own with the slope in common (nine bytes: about 0.15 %; one byte: 0.4 % at best).
///
/// @param Samples        the bus as sampled
/// @param ResponseBegin  the sample after the identifier's stop bit
/// @param StartEdges     the first dominant sample of each byte, all 77 samples to the middle of its stop bit within
///                       `Samples`, in rising order; as in `BusEvent`
/// @return nothing without a byte
PELLUMO_API std::optional<AnswerTiming> MeasureAnswer(std::span<const std::uint8_t> Samples, std::int64_t ResponseBegin,
                                                      std::span<const std::int64_t> StartEdges);

} // namespace Pellumo
