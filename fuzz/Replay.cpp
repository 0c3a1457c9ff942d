/// @file
/// Runs a fuzzer over the inputs that are kept, without libFuzzer: `NAME_replay FOLDER`.
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/Fuzzing.h"

namespace {

std::vector<std::uint8_t> Contents(const std::filesystem::path& Path)
{
    std::ifstream File(Path, std::ios::binary);
    if (!File) {
        throw std::filesystem::filesystem_error("cannot be read", Path, std::make_error_code(std::errc::io_error));
    }
    return {std::istreambuf_iterator<char>(File), {}};
}

int Replay(const char* Folder)
{
    int Count = 0;
    for (const auto& Entry : std::filesystem::directory_iterator(Folder)) {
        std::cout << Entry.path() << std::endl; // the last one is the culprit when this ends at once
        const auto Bytes = Contents(Entry.path());
        LLVMFuzzerTestOneInput(Bytes.data(), Bytes.size());
        ++Count;
    }
    std::cout << Count << " inputs\n";
    return Count > 0 ? 0 : 1;
}

} // namespace

int main(int Count, char** Arguments)
{
    try {
        return Count == 2 ? Replay(Arguments[1]) : 2;
    } catch (const std::exception& Failure) {
        std::cerr << Failure.what() << '\n';
        return 1;
    }
}
