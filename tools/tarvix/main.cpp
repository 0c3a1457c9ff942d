#include "tools/tarvix/Commands.h"
#include "tools/tarvix/Console.h"
#include "tools/tarvix/Interrupts.h"

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

} // namespace

int main(int Count, char** Arguments)
{
    // A reader that has gone is noticed when a line is printed; files are completed then, and the bus is left in order.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    return Run({Arguments + 1, Arguments + Count});
}
