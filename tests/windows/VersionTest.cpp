#include "tarvix/master/Process.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tarvix {

namespace {

/// The version record of a DLL's file.
class VersionRecord {
public:
    explicit VersionRecord(const std::string& File) : Record_(GetFileVersionInfoSizeA(File.c_str(), nullptr))
    {
        const auto Bytes = static_cast<DWORD>(Record_.size());
        if (Bytes == 0 || !GetFileVersionInfoA(File.c_str(), 0, Bytes, Record_.data())) {
            throw std::runtime_error(File + " has no version record");
        }
    }

    const VS_FIXEDFILEINFO& Numbers() const { return *static_cast<const VS_FIXEDFILEINFO*>(Value("\\")); }
    std::string Text(const std::string& Name) const
    {
        return static_cast<const char*>(Value("\\StringFileInfo\\040904B0\\" + Name));
    }

private:
    const void* Value(const std::string& Path) const
    {
        void* Found = nullptr;
        UINT Length = 0;
        if (!VerQueryValueA(Record_.data(), Path.c_str(), &Found, &Length)) {
            throw std::runtime_error("no " + Path + " in the version record");
        }
        return Found;
    }

    std::vector<std::uint8_t> Record_;
};

class LibraryVersion : public testing::TestWithParam<const char*> {};

TEST_P(LibraryVersion, IsTheSameInTheFileAndInTheProcess)
{
    const VersionRecord File(GetParam());
    const VS_FIXEDFILEINFO& Numbers = File.Numbers();
    const Process Loaded;
    const auto Upper = static_cast<DWORD>(Loaded.Major() << 16 | Loaded.Minor());
    const auto Lower = static_cast<DWORD>(Loaded.Revision() << 16);
    EXPECT_EQ(Numbers.dwFileVersionMS, Upper);
    EXPECT_EQ(Numbers.dwFileVersionLS, Lower);
    EXPECT_EQ(Numbers.dwProductVersionMS, Upper);
    EXPECT_EQ(Numbers.dwProductVersionLS, Lower);

    ASSERT_LT(Loaded.Minor(), 10);
    const std::string Text = std::to_string(Loaded.Major()) + ".0" + std::to_string(Loaded.Minor());
    EXPECT_EQ(File.Text("FileVersion"), Text);
    EXPECT_EQ(File.Text("ProductVersion"), Text);
}

INSTANTIATE_TEST_SUITE_P(Libraries, LibraryVersion, testing::Values(TARVIX_DLL, PELLUMO_DLL));

} // namespace

} // namespace Tarvix
