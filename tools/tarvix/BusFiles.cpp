#include "tools/tarvix/BusFiles.h"

#include <filesystem>

namespace Tarvix::Tool {

namespace {

/// Tells GTKWave how to show the waveform.
void WriteSaveFile(const std::string& VCDFile)
{
    const std::filesystem::path Path(VCDFile);
    OutputFile File(std::filesystem::path(Path).replace_extension(".gtkw").string());
    File.Write(Pellumo::GTKWaveSaveFile(std::filesystem::absolute(Path).string()));
    File.Close();
}

} // namespace

BusFiles::BusFiles(const BusOptions& Options)
{
    if (!Options.VCDFile.empty()) {
        VCD_.emplace(Options.VCDFile);
        WriteSaveFile(Options.VCDFile);
    }
    if (!Options.SVGFile.empty()) {
        SVG_.emplace(Options.SVGFile);
    }
    if (!Options.RecordFile.empty()) {
        Record_.emplace(Options.RecordFile);
    }
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
