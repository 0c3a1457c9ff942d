/// @file
/// Ends a run between two frames when the user or the system asks for it.
#pragma once

#include <array>
#include <csignal>

namespace Tarvix::Tool {

/// Thrown to end a run early and quietly, with everything left in order.
struct Interrupted {
    int Signal; ///< that asked for it
};

/// While it lives, SIGHUP, SIGINT and SIGTERM are remembered instead of ending the program at once, each for the first
/// time only: a second one kills. One that is ignored stays so (nohup). One instance at a time.
class InterruptGuard {
public:
    InterruptGuard() noexcept;
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

private:
    static constexpr std::array Signals = {SIGHUP, SIGINT, SIGTERM};

    std::array<struct sigaction, Signals.size()> Old_{};
};

/// @throws Interrupted  when a signal has come since the guard was set up
void ThrowIfInterrupted();

} // namespace Tarvix::Tool
