#include "tools/tarvix/FileClash.h"

#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace Tarvix::Tool {

namespace {

constexpr std::string_view SimulatedScheme = "sim:";
constexpr const char* StandardInput = "/dev/stdin";
constexpr const char* StandardOutput = "/dev/stdout";

/// The file that a path leads to, whether it exists or not.
std::filesystem::path FileAt(const std::string& Path)
{
    std::error_code Failure;
    auto File = std::filesystem::weakly_canonical(std::filesystem::absolute(Path, Failure), Failure);
    return Failure ? std::filesystem::path(Path) : File; // opening it will tell what is wrong
}

bool IsRegular(const std::filesystem::path& File)
{
    std::error_code Failure;
    return std::filesystem::is_regular_file(File, Failure);
}

/// One file may have several names.
bool AreOneFile(const std::filesystem::path& A, const std::filesystem::path& B)
{
    std::error_code Failure;
    return A == B || (IsRegular(A) && std::filesystem::equivalent(A, B, Failure));
}

struct Use {
    std::filesystem::path File;
    std::string Problem; ///< of an output to the same file
};

/// The use of a file whose contents an output would destroy.
Use Treasured(const std::string& Path, const std::string& What)
{
    return {FileAt(Path), What + " would be overwritten; give another file."};
}

/// What is there before the program's files are.
std::vector<Use> EarlierUses(const BusOptions& Bus, std::span<const std::string> Scripts)
{
    std::vector<Use> Uses;
    for (const std::string& Script : Scripts) {
        if (Script != "-") {
            Uses.push_back(Treasured(Script, "the script " + Script));
        } else if (IsRegular(StandardInput)) {
            Uses.push_back(Treasured(StandardInput, "the script on the standard input"));
        }
    }
    if (Bus.Device.starts_with(SimulatedScheme) && Bus.Device != SimulatedScheme) {
        const std::string Path = Bus.Device.substr(SimulatedScheme.size());
        Uses.push_back(Treasured(Path, "the bus file " + Path));
    }
    if (IsRegular(StandardOutput)) {
        Uses.push_back(Treasured(StandardOutput, "the results on the standard output"));
    }
    return Uses;
}

} // namespace

std::optional<FileClash> FindFileClash(const BusOptions& Bus, std::span<const std::string> Scripts)
{
    std::vector<Use> Uses = EarlierUses(Bus, Scripts);
    const std::array Outputs = {std::pair{"--vcd", &Bus.VCDFile}, std::pair{"--svg", &Bus.SVGFile},
                                std::pair{"--record", &Bus.RecordFile}};
    for (const auto& [Option, Path] : Outputs) {
        if (Path->empty()) {
            continue;
        }
        const auto File = FileAt(*Path);
        for (const Use& Earlier : Uses) {
            if (AreOneFile(File, Earlier.File)) {
                return FileClash{Option, Earlier.Problem};
            }
        }
        Uses.push_back({File, std::string("the same file is given to ").append(Option).append("; give each its own.")});
    }
    return std::nullopt;
}

} // namespace Tarvix::Tool
