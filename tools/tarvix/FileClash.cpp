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

/// The file that a path leads to, whether it exists or not.
std::filesystem::path FileAt(const std::string& Path)
{
    std::error_code Failure;
    auto File = std::filesystem::weakly_canonical(std::filesystem::absolute(Path, Failure), Failure);
    return Failure ? std::filesystem::path(Path) : File; // opening it will tell what is wrong
}

struct Use {
    std::filesystem::path File;
    std::string Problem; ///< of an output to the same file
};

std::vector<Use> Inputs(const BusOptions& Bus, std::span<const std::string> Scripts)
{
    std::vector<Use> Uses;
    for (const std::string& Script : Scripts) {
        if (Script != "-") {
            Uses.push_back({FileAt(Script), "the script " + Script + " would be overwritten; give another file."});
        }
    }
    if (Bus.Device.starts_with(SimulatedScheme) && Bus.Device != SimulatedScheme) {
        const std::string Path = Bus.Device.substr(SimulatedScheme.size());
        Uses.push_back({FileAt(Path), "the bus file " + Path + " would be overwritten; give another file."});
    }
    return Uses;
}

} // namespace

std::optional<FileClash> FindFileClash(const BusOptions& Bus, std::span<const std::string> Scripts)
{
    std::vector<Use> Uses = Inputs(Bus, Scripts);
    const std::array Outputs = {std::pair{"--vcd", &Bus.VCDFile}, std::pair{"--svg", &Bus.SVGFile},
                                std::pair{"--record", &Bus.RecordFile}};
    for (const auto& [Option, Path] : Outputs) {
        if (Path->empty()) {
            continue;
        }
        const auto File = FileAt(*Path);
        for (const Use& Earlier : Uses) {
            if (File == Earlier.File) {
                return FileClash{Option, Earlier.Problem};
            }
        }
        Uses.push_back({File, std::string("the same file is given to ").append(Option).append("; give each its own.")});
    }
    return std::nullopt;
}

} // namespace Tarvix::Tool
