/// @file
/// Frames as lines of text.
#pragma once

#include "tools/tarvix/CommandLine.h"
#include "tools/tarvix/FrameReport.h"

#include <memory>
#include <string>

namespace Tarvix::Tool {

/// Turns frames into the lines of one output format.
class FramePrinter {
public:
    virtual ~FramePrinter() = default;

    /// What stands before the first frame: whole lines, or nothing.
    virtual std::string Head() const { return {}; }
    /// The frame as one line, its end included.
    virtual std::string Line(const FrameReport& Frame) const = 0;
};

/// What a table shows.
struct TableContents {
    bool Scan = false;   ///< length and checksum model of each answer
    bool Timing = false; ///< what the samples tell about each answer
    bool Colour = false; ///< for a terminal
};

/// Aligned columns for people.
std::unique_ptr<FramePrinter> MakeTable(const TableContents& Contents);

/// One JSON object per line.
/// @param Timing  adds the "timing" object to answers
std::unique_ptr<FramePrinter> MakeJSONLines(bool Timing);

/// Log lines as CAN tools read them: "(0.012345) lin0 3D#1234"; a header after which not one byte could be
/// received is a remote request, "3D#R".
std::unique_ptr<FramePrinter> MakeCandumpLines();

} // namespace Tarvix::Tool
