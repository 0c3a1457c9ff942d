#include "tools/tarvix/Interrupts.h"

#include <cstddef>

namespace Tarvix::Tool {

namespace {

volatile std::sig_atomic_t PendingSignal = 0;

extern "C" void Remember(int Signal)
{
    PendingSignal = Signal;
}

bool IsIgnored(const struct sigaction& Action)
{
    // NOLINTNEXTLINE(*-union-access, *-cstyle-cast, performance-no-int-to-ptr): the system's own structure and constant
    return Action.sa_handler == SIG_IGN;
}

} // namespace

InterruptGuard::InterruptGuard() noexcept
{
    PendingSignal = 0;
    struct sigaction Action {};
    Action.sa_handler = Remember; // NOLINT(cppcoreguidelines-pro-type-union-access): the system's own structure
    Action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    for (std::size_t k = 0; k < Signals.size(); ++k) {
        sigaction(Signals[k], nullptr, &Old_[k]);
        if (!IsIgnored(Old_[k])) {
            sigaction(Signals[k], &Action, nullptr);
        }
    }
}

InterruptGuard::~InterruptGuard()
{
    for (std::size_t k = 0; k < Signals.size(); ++k) {
        sigaction(Signals[k], &Old_[k], nullptr);
    }
}

void ThrowIfInterrupted()
{
    if (PendingSignal != 0) {
        throw Interrupted{PendingSignal};
    }
}

} // namespace Tarvix::Tool
