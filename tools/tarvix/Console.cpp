#include "tools/tarvix/Console.h"

#include "tools/tarvix/ExitStatus.h"
#include "tools/tarvix/Interrupts.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace Tarvix::Tool {

namespace {

/// The custom of no-color.org, and terminals that know no colours.
bool WantsColour()
{
    // NOLINTBEGIN(concurrency-mt-unsafe): the program has one thread
    const char* const NoColour = std::getenv("NO_COLOR");
    const char* const Terminal = std::getenv("TERM");
    // NOLINTEND(concurrency-mt-unsafe)
    const bool Refused = NoColour != nullptr && *NoColour != '\0';
    return !Refused && Terminal != nullptr && std::string_view(Terminal) != "dumb";
}

/// Writes all of `Text`; errno tells why it could not.
bool WriteAll(std::FILE* Stream, std::string_view Text)
{
    return std::fwrite(Text.data(), 1, Text.size(), Stream) == Text.size() && std::fflush(Stream) == 0;
}

} // namespace

Console::Console(bool Quiet) : Quiet_(Quiet), Colour_(isatty(STDOUT_FILENO) != 0 && WantsColour())
{
    if (!Quiet && isatty(STDERR_FILENO) != 0) {
        Bar_.emplace(std::chrono::steady_clock::now());
    }
}

void Console::Print(std::string_view Lines)
{
    EndProgress();
    if (WriteAll(stdout, Lines)) {
        return;
    }
    if (errno == EPIPE) {
        throw Interrupted{SIGPIPE};
    }
    throw ProgramFailure(SomethingFailed,
                         std::string("The results cannot be written: ")
                             .append(std::generic_category().message(errno))
                             .append(". Make room or send them elsewhere, and run the command again."));
}

void Console::Note(std::string_view Sentence)
{
    if (!Quiet_) {
        Tell(std::string("tarvix: ").append(Sentence).append("\n"));
    }
}

void Console::Complain(std::string_view Text)
{
    Tell(std::string("tarvix: ").append(Text).append(Text.ends_with('\n') ? "" : "\n"));
}

void Console::Progress(double Share)
{
    if (Bar_) {
        const std::string Drawing = Bar_->Update(Share, std::chrono::steady_clock::now());
        WriteAll(stderr, Drawing);
    }
}

void Console::EndProgress()
{
    if (Bar_) {
        WriteAll(stderr, Bar_->Clear());
    }
}

void Console::Tell(std::string_view Text)
{
    EndProgress();
    WriteAll(stderr, Text); // there is nobody left to tell a failure to
}

} // namespace Tarvix::Tool
