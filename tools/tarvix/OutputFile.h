/// @file
/// Files that the program writes.
#pragma once

#include <fstream>
#include <ostream>
#include <string>
#include <string_view>

namespace Tarvix::Tool {

/// A file whose failures are not overlooked.
class OutputFile {
public:
    /// Opens the file, or creates it; what it holds is not touched yet.
    /// @throws ProgramFailure  WrongUsage when that cannot be done
    explicit OutputFile(std::string Path);

    /// Throws away what the file held.
    /// @throws ProgramFailure  WrongUsage when that cannot be done
    void Empty();

    /// False for pipes and devices.
    bool IsRegular() const;

    /// Where others write; call `Check` after them.
    std::ostream& Stream() noexcept { return Stream_; }

    /// @throws ProgramFailure  SomethingFailed when something could not be written, on a full disk for instance; once,
    ///                         and what is written after that is lost quietly
    void Check();

    /// Writes `Text` and checks.
    void Write(std::string_view Text);

    /// Writes what is still held back, checks and closes.
    void Close();

private:
    std::string Path_;
    std::ofstream Stream_;
    bool Told_ = false;
};

} // namespace Tarvix::Tool
