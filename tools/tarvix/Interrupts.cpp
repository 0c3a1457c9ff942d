#include "tools/tarvix/Interrupts.h"

namespace Tarvix::Tool {

namespace {

volatile std::sig_atomic_t PendingSignal = 0;

extern "C" void Remember(int Signal)
{
    PendingSignal = Signal;
}

} // namespace

InterruptGuard::InterruptGuard() noexcept
{
    PendingSignal = 0;
    struct sigaction Action {};
    Action.sa_handler = Remember; // NOLINT(cppcoreguidelines-pro-type-union-access): the system's own structure
    Action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    sigaction(SIGINT, &Action, &OldInterrupt_);
    sigaction(SIGTERM, &Action, &OldTerminate_);
}

InterruptGuard::~InterruptGuard()
{
    sigaction(SIGINT, &OldInterrupt_, nullptr);
    sigaction(SIGTERM, &OldTerminate_, nullptr);
}

void ThrowIfInterrupted()
{
    if (PendingSignal != 0) {
        throw Interrupted{PendingSignal};
    }
}

} // namespace Tarvix::Tool
