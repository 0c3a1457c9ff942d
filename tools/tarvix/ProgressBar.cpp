#include "tools/tarvix/ProgressBar.h"

#include <algorithm>
#include <cstddef>

namespace Tarvix::Tool {

std::string ProgressBar::Update(double Share, TimePoint Now)
{
    if (Now < NextDrawing_) {
        return {};
    }
    NextDrawing_ = Now + std::chrono::milliseconds(100);
    Visible_ = true;

    constexpr std::size_t Width = 40;
    const double Done = std::clamp(Share, 0.0, 1.0);
    const auto Filled = static_cast<std::size_t>(Done * Width);
    const std::string Percent = std::to_string(static_cast<int>(Done * 100));
    return std::string("\r[")
        .append(Filled, '#')
        .append(Width - Filled, '-')
        .append("] ")
        .append(3 - Percent.size(), ' ')
        .append(Percent)
        .append("%");
}

std::string ProgressBar::Clear()
{
    if (!Visible_) {
        return {};
    }
    Visible_ = false;
    return "\r\x1B[K"; // to the line's beginning, and erase from there
}

} // namespace Tarvix::Tool
