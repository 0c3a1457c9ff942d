/// @file
/// One use of the bus: device, master, files and output, set up as the options say.
#pragma once

#include "pellumo/recording/FrameDecoder.h"
#include "pellumo/recording/Recorder.h"
#include "tarvix/master/clsLIN.h"
#include "tarvix/signalling/FTDIMPSSE.h"
#include "tools/tarvix/BusFiles.h"
#include "tools/tarvix/CommandLine.h"
#include "tools/tarvix/Console.h"
#include "tools/tarvix/FrameMonitor.h"
#include "tools/tarvix/FramePrinter.h"
#include "tools/tarvix/InterruptibleDevice.h"
#include "tools/tarvix/Interrupts.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Tarvix::Tool {

/// Between the master and the device stand, from the master's side: the check for interrupts, and the recorder, which
/// tells the files and the frame monitor of everything that was on the bus.
class BusSession {
public:
    /// Opens the device, configures the master and creates the files, in this order: a run that cannot begin destroys
    /// no file of an earlier one.
    /// @throws ProgramFailure  NoDevice for the device, SomethingFailed for the configuration, WrongUsage for a file
    BusSession(const BusOptions& Options, bool Scan);

    clsLIN& Master() noexcept { return Master_; }
    FrameMonitor& Frames() noexcept { return Frames_; }
    Console& Output() noexcept { return Output_; }

    /// Prints a frame in the format of the options.
    void Print(const FrameReport& Frame);

    /// Closes the device and completes the files.
    void Finish();

private:
    void OpenDevice(const std::string& URL);
    std::vector<std::string> Configure(const BusOptions& Options);
    void CreateFiles(const BusOptions& Options, const std::vector<std::string>& Logged);

    Console Output_;
    std::unique_ptr<FramePrinter> Printer_;
    bool HeadPrinted_ = false;

    FrameMonitor Frames_;
    Pellumo::FrameDecoder Decoder_;
    std::optional<BusFiles> Files_;

    InterruptGuard Interrupts_;
    std::unique_ptr<FTDIMPSSE> Device_;
    std::unique_ptr<Pellumo::Recorder> Recorder_;
    std::unique_ptr<InterruptibleDevice> Interruptible_;
    clsLIN Master_;
};

/// Runs `Work` in a session and ends the session properly, be it after an interrupt.
/// @param Scan  whether tables show what scans find out
/// @param Work  returns the exit status; tells bus failures itself
int WithBus(const BusOptions& Options, bool Scan, const std::function<ExitStatus(BusSession&)>& Work);

} // namespace Tarvix::Tool
