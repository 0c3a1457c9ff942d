/// @file
/// Shows how far a long run has come.
#pragma once

#include <chrono>
#include <string>

namespace Tarvix::Tool {

/// A line of a terminal that is drawn over itself: "[#########-----------]  45%". It appears when a run has lasted for
/// a second, and is drawn at most ten times a second.
class ProgressBar {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    explicit ProgressBar(TimePoint Start) : NextDrawing_(Start + std::chrono::seconds(1)) {}

    /// What to send to the terminal now; often nothing.
    /// @param Share  of the work that is done, 0 to 1
    std::string Update(double Share, TimePoint Now);

    /// What takes the bar off the terminal, so that other text can stand there; it comes back with the next drawing.
    std::string Clear();

private:
    TimePoint NextDrawing_;
    bool Visible_ = false;
};

} // namespace Tarvix::Tool
