/// @file
/// The files that keep what happened on the bus.
#pragma once

#include "pellumo/recording/Recorder.h"
#include "pellumo/recording/SVGWriter.h"
#include "pellumo/recording/VCDWriter.h"
#include "tarvix/script/icLog.h"
#include "tools/tarvix/CommandLine.h"
#include "tools/tarvix/OutputFile.h"

#include <optional>
#include <string>
#include <utility>

namespace Tarvix::Tool {

/// A file with a writer of samples in front; destroyed before `Finish`, it is complete up to the last stream as far as
/// it could be written.
template <typename Writer>
class SampleFile final : public Pellumo::SampleListener {
public:
    /// Begins the file, which must be empty.
    explicit SampleFile(OutputFile File) : File_(std::move(File)), Writer_(File_.Stream()) {}

    void OnStream(const Pellumo::SampleStream& Stream) override
    {
        Writer_.OnStream(Stream);
        File_.Check();
    }

    /// Completes and closes the file.
    void Finish()
    {
        Writer_.Finish();
        File_.Close();
    }

private:
    OutputFile File_;
    Writer Writer_;
};

/// The operation log as a file.
class RecordFile final : public icLog {
public:
    explicit RecordFile(OutputFile File) : File_(std::move(File)) {}

    void LogEntry(std::string_view LINScript) override { File_.Write(LINScript); }

    /// Completes and closes the file.
    void Finish() { File_.Close(); }

private:
    OutputFile File_;
};

/// The files that the options ask for.
class BusFiles {
public:
    /// Creates the files. What earlier ones held stays unless all can be written.
    /// @throws ProgramFailure  WrongUsage when one cannot be written
    explicit BusFiles(const BusOptions& Options);

    /// Lets the files of samples see what passes `Recorder`.
    void ListenTo(Pellumo::Recorder& Recorder);

    /// The operation log, or nullptr.
    icLog* Record() noexcept { return Record_ ? &*Record_ : nullptr; }

    /// Completes and closes every file.
    /// @throws ProgramFailure  SomethingFailed when one could not be written
    void Finish();

private:
    std::optional<SampleFile<Pellumo::VCDWriter>> VCD_;
    std::optional<SampleFile<Pellumo::SVGWriter>> SVG_;
    std::optional<RecordFile> Record_;
};

} // namespace Tarvix::Tool
