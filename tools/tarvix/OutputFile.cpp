#include "tools/tarvix/OutputFile.h"

#include "tools/tarvix/ExitStatus.h"

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace Tarvix::Tool {

namespace {

constexpr const char* CheckThePath = "Check the path and its permissions.";

/// Streams keep no reason; the system's last error is that of the call that failed.
std::error_code LastError()
{
    return {errno, std::generic_category()};
}

[[noreturn]] void Fail(ExitStatus Status, const std::string& Path, std::error_code Reason, const char* Advice)
{
    throw ProgramFailure(Status, std::string("The file ")
                                     .append(Path)
                                     .append(" cannot be written: ")
                                     .append(Reason.message())
                                     .append(". ")
                                     .append(Advice));
}

} // namespace

OutputFile::OutputFile(std::string Path) : Path_(std::move(Path)), Stream_(Path_, std::ios::binary | std::ios::app)
{
    if (!Stream_) {
        Fail(WrongUsage, Path_, LastError(), CheckThePath);
    }
}

void OutputFile::Empty()
{
    if (!IsRegular()) {
        return; // pipes and devices hold nothing
    }
    std::error_code Failure;
    std::filesystem::resize_file(Path_, 0, Failure);
    if (Failure) {
        Fail(WrongUsage, Path_, Failure, CheckThePath);
    }
}

bool OutputFile::IsRegular() const
{
    std::error_code Failure;
    return std::filesystem::is_regular_file(Path_, Failure);
}

void OutputFile::Check()
{
    if (!Stream_ && !std::exchange(Told_, true)) {
        Fail(SomethingFailed, Path_, LastError(), "Make room or choose another place, and run the command again.");
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
