#include "tests/tool/Program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace Tarvix::Testing {

namespace {

/// The system's own, which is declared with a variable argument list.
int Open(const char* Path, int Flags)
{
    return open(Path, Flags | O_CLOEXEC, 0600); // NOLINT(cppcoreguidelines-pro-type-vararg): declared so
}

/// What one end of a pipe or terminal is for.
struct Channel {
    int Ours;
    int Theirs;
};

Channel OpenPipe()
{
    std::array<int, 2> Ends{};
    if (pipe2(Ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("pipe");
    }
    return {Ends[0], Ends[1]};
}

Channel OpenTerminal()
{
    const int Ours = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (Ours < 0 || grantpt(Ours) != 0 || unlockpt(Ours) != 0) {
        throw std::runtime_error("terminal");
    }
    std::array<char, 64> Name{};
    ptsname_r(Ours, Name.data(), Name.size());
    return {Ours, Open(Name.data(), O_RDWR | O_NOCTTY)};
}

Channel OpenOutput(const Surroundings& Around)
{
    if (Around.Unread) {
        const Channel Pipe = OpenPipe();
        close(Pipe.Ours);
        return {Open("/dev/null", O_RDONLY), Pipe.Theirs};
    }
    if (Around.OutputFile.empty()) {
        return Around.Terminal ? OpenTerminal() : OpenPipe();
    }
    return {Open("/dev/null", O_RDONLY), Open(Around.OutputFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC)};
}

std::vector<std::string> EnvironmentFor(const Surroundings& Around)
{
    std::vector<std::string> Texts;
    for (char** Each = environ; *Each != nullptr; ++Each) {
        const std::string_view Text(*Each);
        if (!Text.starts_with("NO_COLOR=") && !Text.starts_with("TERM=")) {
            Texts.emplace_back(Text);
        }
    }
    Texts.insert(Texts.end(), Around.Environment.begin(), Around.Environment.end());
    return Texts;
}

std::vector<char*> Pointers(std::vector<std::string>& Texts)
{
    std::vector<char*> Result;
    Result.reserve(Texts.size() + 1);
    for (std::string& Text : Texts) {
        Result.push_back(Text.data());
    }
    Result.push_back(nullptr);
    return Result;
}

std::string ReadToEnd(std::FILE* Stream)
{
    std::string Text;
    std::array<char, 4096> Block{};
    while (const std::size_t Count = std::fread(Block.data(), 1, Block.size(), Stream)) {
        Text.append(Block.data(), Count);
    }
    return Text; // the end of a terminal is a read error
}

} // namespace

Program::Program(const std::vector<std::string>& Arguments, const Surroundings& Around)
    : Output_(nullptr, std::fclose), Error_(std::tmpfile(), std::fclose)
{
    const Channel Output = OpenOutput(Around);
    Output_.reset(fdopen(Output.Ours, "r"));
    const File Input(std::tmpfile(), std::fclose);
    static_cast<void>(std::fwrite(Around.Input.data(), 1, Around.Input.size(), Input.get()));
    std::rewind(Input.get());

    posix_spawn_file_actions_t Actions{};
    posix_spawn_file_actions_init(&Actions);
    posix_spawn_file_actions_adddup2(&Actions, fileno(Input.get()), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&Actions, Output.Theirs, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&Actions, fileno(Error_.get()), STDERR_FILENO);

    posix_spawnattr_t Attributes{};
    posix_spawnattr_init(&Attributes);
    sigset_t Signals{};
    sigfillset(&Signals);
    posix_spawnattr_setsigdefault(&Attributes, &Signals); // whoever runs the tests may ignore some
    posix_spawnattr_setflags(&Attributes, POSIX_SPAWN_SETSIGDEF);

    std::vector<std::string> Texts = {Around.Executable.empty() ? TARVIX_PROGRAM : Around.Executable};
    Texts.insert(Texts.end(), Arguments.begin(), Arguments.end());
    std::vector<std::string> Environment = EnvironmentFor(Around);
    const int Failure = posix_spawn(&ID_, Texts.front().c_str(), &Actions, &Attributes, Pointers(Texts).data(),
                                    Pointers(Environment).data());
    posix_spawnattr_destroy(&Attributes);
    posix_spawn_file_actions_destroy(&Actions);
    close(Output.Theirs);
    if (Failure != 0) {
        throw std::runtime_error("posix_spawn");
    }
}

Program::~Program()
{
    if (ID_ > 0) {
        kill(ID_, SIGKILL);
        waitpid(ID_, nullptr, 0);
    }
}

std::string Program::ReadLine()
{
    std::string Line;
    for (int Next = std::fgetc(Output_.get()); Next != EOF; Next = std::fgetc(Output_.get())) {
        Line += static_cast<char>(Next);
        if (Next == '\n') {
            break;
        }
    }
    return Line;
}

void Program::CloseOutput()
{
    Output_.reset();
}

Outcome Program::Finish()
{
    Outcome Result;
    if (Output_) {
        Result.Out = ReadToEnd(Output_.get());
    }
    int Status = 0;
    waitpid(ID_, &Status, 0);
    ID_ = -1;
    Result.Status = WIFEXITED(Status) ? WEXITSTATUS(Status) : -WTERMSIG(Status);
    std::rewind(Error_.get());
    Result.Error = ReadToEnd(Error_.get());
    return Result;
}

Outcome RunProgram(const std::vector<std::string>& Arguments, const Surroundings& Around)
{
    return Program(Arguments, Around).Finish();
}

Outcome RunQuietly(std::vector<std::string> Arguments, const Surroundings& Around)
{
    Arguments.emplace_back("--quiet");
    return RunProgram(Arguments, Around);
}

TemporaryDirectory::TemporaryDirectory()
{
    std::string Name = testing::TempDir() + "tarvix-XXXXXX";
    if (mkdtemp(Name.data()) == nullptr) {
        throw std::runtime_error("mkdtemp");
    }
    Path_ = Name;
}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code Ignored;
    std::filesystem::remove_all(Path_, Ignored);
}

std::string TemporaryDirectory::Write(const std::string& Name, const std::string& Contents) const
{
    std::ofstream(Path(Name), std::ios::binary) << Contents;
    return Path(Name);
}

std::string Contents(const std::string& Path)
{
    std::ostringstream Text;
    Text << std::ifstream(Path, std::ios::binary).rdbuf();
    return Text.str();
}

std::string SourceFile(const std::string& Name)
{
    return std::string(TARVIX_SOURCE_DIR).append("/").append(Name);
}

} // namespace Tarvix::Testing
