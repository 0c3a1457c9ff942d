/// @file
/// The program's three voices: results on the standard output, notices and errors on the standard error output.
#pragma once

#include "tools/tarvix/ProgressBar.h"

#include <optional>
#include <string>
#include <string_view>

namespace Tarvix::Tool {

/// Writes what the program has to say. Each text goes out at once, so that a reader at the other end of a pipe sees
/// every frame when it happens.
class Console {
public:
    /// @param Quiet  keeps notices and the progress bar back
    explicit Console(bool Quiet);

    /// Whether results may be coloured: they go to a terminal, and NO_COLOR is not set.
    bool Colour() const noexcept { return Colour_; }

    /// Writes results: whole lines.
    /// @throws Interrupted     when nobody reads any more (SIGPIPE)
    /// @throws ProgramFailure  when they cannot be written, on a full disk for instance
    void Print(std::string_view Lines);

    /// Tells something that the user may want to know.
    void Note(std::string_view Sentence);

    /// Tells what went wrong.
    void Complain(std::string_view Text);

    /// Draws the progress bar if the standard error output is a terminal and the run is long.
    /// @param Share  of the work that is done, 0 to 1
    void Progress(double Share);

    /// Takes the progress bar away.
    void EndProgress();

private:
    void Tell(std::string_view Text);

    bool Quiet_;
    bool Colour_;
    std::optional<ProgressBar> Bar_;
};

} // namespace Tarvix::Tool
