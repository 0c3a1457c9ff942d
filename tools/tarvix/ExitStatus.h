/// @file
/// How the program ends.
#pragma once

#include <stdexcept>
#include <string>

namespace Tarvix::Tool {

/// Exit status of the program; after a signal, 128 and the signal's number as shells count.
enum ExitStatus : int { AllWell = 0, SomethingFailed = 1, WrongUsage = 2, NoDevice = 3, AfterSignal = 128 };

/// Ends the program with a sentence for the user and an exit status.
class ProgramFailure : public std::runtime_error {
public:
    /// @param Sentence  whole sentences: what failed, and what to do next
    ProgramFailure(ExitStatus Status, const std::string& Sentence) : std::runtime_error(Sentence), Status_(Status) {}

    /// The status to exit with.
    ExitStatus Status() const noexcept { return Status_; }

private:
    ExitStatus Status_;
};

} // namespace Tarvix::Tool
