/// @file
/// Runs the real program and looks at what comes out.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace Tarvix::Testing {

/// What a program left behind.
struct Outcome {
    int Status = 0; ///< exit status; the negative signal number when a signal ended it
    std::string Out;
    std::string Error;
};

/// How a program is started.
struct Surroundings {
    std::string Input{};                    ///< standard input
    std::vector<std::string> Environment{}; ///< NAME=VALUE; NO_COLOR and TERM are absent otherwise
    bool Terminal = false;                  ///< the standard output is a terminal
    bool Unread = false;                    ///< the standard output is a pipe whose reader has gone
    std::string OutputFile{};               ///< the standard output goes here
    std::string Executable{};               ///< another program instead
};

/// The program, running.
class Program {
public:
    explicit Program(const std::vector<std::string>& Arguments, const Surroundings& Around = {});
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    pid_t ID() const noexcept { return ID_; }
    /// The next line of the standard output, its end included; empty at the end.
    std::string ReadLine();
    /// From now on nobody reads the standard output.
    void CloseOutput();
    /// Reads to the end and waits.
    Outcome Finish();

private:
    using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

    pid_t ID_ = -1;
    File Output_;
    File Error_;
};

/// Starts the program and waits for its end.
Outcome RunProgram(const std::vector<std::string>& Arguments, const Surroundings& Around = {});

/// The simulated bus is used without a notice.
Outcome RunQuietly(std::vector<std::string> Arguments, const Surroundings& Around = {});

/// A directory that is empty at first and disappears at last.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// The path of a file in it.
    std::string Path(const std::string& Name) const { return Path_ / Name; }
    /// Makes a file; returns its path.
    std::string Write(const std::string& Name, const std::string& Contents) const;

private:
    std::filesystem::path Path_;
};

/// All of a file.
std::string Contents(const std::string& Path);

/// A file of the source tree.
std::string SourceFile(const std::string& Name);

} // namespace Tarvix::Testing
