#include "tools/tarvix/BusFiles.h"

#include <filesystem>

namespace Tarvix::Tool {

namespace {

std::optional<OutputFile> OpenIfNamed(const std::string& Path)
{
    return Path.empty() ? std::nullopt : std::optional<OutputFile>(Path);
}

/// Begins what is written into `File`, if there is one.
template <typename Contents>
void Begin(std::optional<Contents>& Written, std::optional<OutputFile>& File)
{
    if (File) {
        File->Empty();
        Written.emplace(std::move(*File));
    }
}

/// Tells GTKWave how to show the waveform, unless the user has kept a view already.
void WriteSaveFile(const std::filesystem::path& VCDFile)
{
    const auto Path = std::filesystem::path(VCDFile).replace_extension(".gtkw");
    std::error_code Failure;
    if (!std::filesystem::exists(Path, Failure)) {
        OutputFile File(Path.string());
        File.Write(Pellumo::GTKWaveSaveFile(std::filesystem::absolute(VCDFile).string()));
        File.Close();
    }
}

} // namespace

BusFiles::BusFiles(const BusOptions& Options)
{
    auto VCD = OpenIfNamed(Options.VCDFile);
    auto SVG = OpenIfNamed(Options.SVGFile);
    auto Record = OpenIfNamed(Options.RecordFile);
    if (VCD && VCD->IsRegular()) {
        WriteSaveFile(Options.VCDFile);
    }
    Begin(VCD_, VCD);
    Begin(SVG_, SVG);
    Begin(Record_, Record);
}

void BusFiles::ListenTo(Pellumo::Recorder& Recorder)
{
    if (VCD_) {
        Recorder.AddListener(*VCD_);
    }
    if (SVG_) {
        Recorder.AddListener(*SVG_);
    }
}

void BusFiles::Finish()
{
    if (VCD_) {
        VCD_->Finish();
    }
    if (SVG_) {
        SVG_->Finish();
    }
    if (Record_) {
        Record_->Finish();
    }
}

} // namespace Tarvix::Tool
