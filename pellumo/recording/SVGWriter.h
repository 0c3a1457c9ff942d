/// @file
/// Draws recorded streams as a picture for a report.
#pragma once

#include "pellumo/Export.h"
#include "pellumo/recording/FrameDecoder.h"
#include "pellumo/recording/SampleStream.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Pellumo {

/// Draws the bus level over time, one row for each frame and each single break, as an SVG file: fields marked and
/// labelled with their values, what the slave sent apart from what the commander sent, faults pointed out. It follows
/// the light or dark colours of the page that shows it, and contains no scripts.
///
/// The size of the picture stands at the head of the file, so that rows are kept in memory (a few kilobytes each) and
/// written by `Finish`. Whether everything could be written is told by the output stream's state.
class PELLUMO_API SVGWriter : public SampleListener {
public:
    /// @param Out    held, not owned
    /// @param Title  heading of the picture, UTF-8
    explicit SVGWriter(std::ostream& Out, std::string_view Title = "LIN bus");
    /// Finishes the file if `Finish` did not; a failure is swallowed.
    ~SVGWriter() override;
    SVGWriter(const SVGWriter&) = delete;
    SVGWriter& operator=(const SVGWriter&) = delete;

    void OnStream(const SampleStream& Stream) override;

    /// Writes the picture. Streams after it are left out.
    void Finish();

private:
    void AddRow(const BusEvent& Event);

    std::ostream& Out_;
    std::string Title_;
    FrameDecoder Decoder_;
    std::string Rows_;
    std::int64_t Width_; // tenths of a pixel
    std::int64_t Height_ = 0;
    bool Finished_ = false;
};

} // namespace Pellumo
