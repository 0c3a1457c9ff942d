/// @file
/// One row of the picture: a frame or a break.
#pragma once

#include "pellumo/recording/BusEvent.h"

#include <cstdint>
#include <string>

namespace Pellumo {

/// Lengths are in tenths of a pixel, in which a sample is a whole number.
///
///     y   0   heading: what it is, when, and what is to be said of it
///     y  24   fields, each a tinted box with name and value
///     y  62   the bus recessive, within the boxes; dominant at y 82
///     y  97   axis, below it bit times and milliseconds
struct FramePicture {
    static constexpr std::int64_t SampleWidth = 8;
    static constexpr std::int64_t LeftMargin = 720;
    static constexpr std::int64_t Height = 1480;

    std::string Markup; ///< elements, placed as if the row stood at the top of the picture
    std::int64_t Width = 0;
};

/// Draws a Write, Read or Break.
FramePicture DrawFrame(const BusEvent& Event);

} // namespace Pellumo
