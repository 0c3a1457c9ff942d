#include "tools/tarvix/Commands.h"
#include "tools/tarvix/Console.h"
#include "tools/tarvix/Interrupts.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <exception>

namespace {

using namespace Tarvix::Tool;

int Run(std::vector<std::string> Arguments)
{
    try {
        const Command Chosen = ParseCommandLine(std::move(Arguments));
        return std::visit([](const auto& Each) { return Execute(Each); }, Chosen);
    } catch (const ProgramFailure& Failure) {
        Console(false).Complain(Failure.what());
        return Failure.Status();
    } catch (const Interrupted& Request) {
        return AfterSignal + Request.Signal;
    } catch (const std::exception& Failure) {
        Console(false).Complain(std::string("The program failed unexpectedly: ").append(Failure.what()).append("."));
        return SomethingFailed;
    }
}

/// A standard stream that is closed leaves its number to the next file that is opened, and its texts with it. It is
/// occupied the wrong way round instead: using it fails, as it should.
void OccupyClosedStreams()
{
    // NOLINTBEGIN(cppcoreguidelines-pro-type-vararg): declared so
    for (const int Number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(Number, F_GETFD) < 0) {
            open("/dev/null", Number == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
    // NOLINTEND(cppcoreguidelines-pro-type-vararg)
}

} // namespace

int main(int Count, char** Arguments)
{
    OccupyClosedStreams();
    // A reader that has gone is noticed when a line is printed; files are completed then, and the bus is left in order.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    return Run({Arguments + 1, Arguments + Count});
}
