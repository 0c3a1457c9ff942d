#include "tools/tarvix/OutputFile.h"

#include "tools/tarvix/ExitStatus.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace Tarvix::Tool {

namespace {

/// Streams keep no reason; the system's last error is that of the write that failed.
[[noreturn]] void Fail(ExitStatus Status, const std::string& Path, const char* Advice)
{
    const int Reason = errno;
    throw ProgramFailure(Status, std::string("The file ")
                                     .append(Path)
                                     .append(" cannot be written: ")
                                     .append(std::generic_category().message(Reason))
                                     .append(". ")
                                     .append(Advice));
}

} // namespace

OutputFile::OutputFile(std::string Path) : Path_(std::move(Path)), Stream_(Path_, std::ios::binary)
{
    if (!Stream_) {
        Fail(WrongUsage, Path_, "Check the path and its permissions.");
    }
}

void OutputFile::Check()
{
    if (!Stream_) {
        Fail(SomethingFailed, Path_, "Make room or choose another place, and run the command again.");
    }
}

void OutputFile::Write(std::string_view Text)
{
    Stream_.write(Text.data(), static_cast<std::streamsize>(Text.size()));
    Check();
}

void OutputFile::Close()
{
    Stream_.close();
    Check();
}

} // namespace Tarvix::Tool
