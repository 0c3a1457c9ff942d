/// @file
/// A picture as a browser shows it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Pellumo::Testing {

enum class ColorScheme : std::uint8_t { Dark, Light };

/// The pixels of an SVG file that headless Chromium has drawn. Places are given in units of the SVG file; one of them
/// is `Scale` pixels wide, so that lines and letters have pixels of their full colour.
class Screenshot {
public:
    static constexpr int Scale = 4;

    /// Lets Chromium draw the file, in a window of `Width` by `Height` units.
    /// @throws std::runtime_error  what went wrong: Chromium is missing, or what it said
    Screenshot(const std::string& SVG, ColorScheme Scheme, int Width, int Height);

    /// The colour there, 0xRRGGBB. @throws std::out_of_range outside of the window
    std::uint32_t At(double X, double Y) const;

private:
    std::vector<std::uint8_t> Pixels_; // red, green, blue
    std::size_t Width_ = 0;            // pixels
};

} // namespace Pellumo::Testing
