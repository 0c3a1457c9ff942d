#include "tests/pellumo/recording/Screenshot.h"

#include <png.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace Pellumo::Testing {

namespace {

/// Is there as long as the object lives.
class TemporaryFolder {
public:
    TemporaryFolder() : Path_((std::filesystem::temp_directory_path() / "picture_test_XXXXXX").string())
    {
        if (mkdtemp(Path_.data()) == nullptr) {
            throw std::runtime_error("cannot make the folder " + Path_);
        }
    }
    ~TemporaryFolder()
    {
        std::error_code Ignored; // what stays behind in the temporary folder does no harm
        std::filesystem::remove_all(Path_, Ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string File(const char* Name) const { return Path_ + "/" + Name; }

private:
    std::string Path_;
};

bool Succeeds(const std::string& Command)
{
    // NOLINTNEXTLINE(cert-env33-c,concurrency-mt-unsafe): the command is this test's own
    return std::system(Command.c_str()) == 0;
}

std::string ContentOf(const std::string& Path)
{
    std::ifstream File(Path, std::ios::binary);
    return {std::istreambuf_iterator<char>(File), {}};
}

} // namespace

Screenshot::Screenshot(const std::string& SVG, ColorScheme Scheme, int Width, int Height)
{
    if (!Succeeds("command -v chromium >/dev/null")) {
        throw std::runtime_error("chromium is missing; on Debian: apt-get install chromium fonts-dejavu-core");
    }
    const TemporaryFolder Folder;
    const std::string PNG = Folder.File("picture.png");
    const std::string Said = Folder.File("said.txt");
    std::ofstream(Folder.File("picture.svg"), std::ios::binary) << SVG;
    const bool Ended = Succeeds("timeout -k 5 120 chromium --headless --no-sandbox --disable-gpu --hide-scrollbars "
                                "--disable-background-networking --force-device-scale-factor=" +
                                std::to_string(Scale) +
                                " --blink-settings=preferredColorScheme=" + (Scheme == ColorScheme::Dark ? "0" : "1") +
                                " --window-size=" + std::to_string(Width) + "," + std::to_string(Height) +
                                " '--user-data-dir=" + Folder.File("profile") + "' '--screenshot=" + PNG +
                                "' 'file://" + Folder.File("picture.svg") + "' >'" + Said + "' 2>&1");

    png_image Image{};
    Image.version = PNG_IMAGE_VERSION;
    if (!Ended || png_image_begin_read_from_file(&Image, PNG.c_str()) == 0) {
        throw std::runtime_error("chromium took no screenshot:\n" + ContentOf(Said));
    }
    Image.format = PNG_FORMAT_RGB;
    Width_ = Image.width;
    Pixels_.resize(PNG_IMAGE_SIZE(Image));
    if (png_image_finish_read(&Image, nullptr, Pixels_.data(), 0, nullptr) == 0) {
        throw std::runtime_error("chromium's screenshot cannot be read");
    }
}

std::uint32_t Screenshot::At(double X, double Y) const
{
    const auto Column = static_cast<std::size_t>(X * Scale);
    const auto Line = static_cast<std::size_t>(Y * Scale);
    if (X < 0 || Y < 0 || Column >= Width_) {
        throw std::out_of_range("a place beside the picture");
    }
    const std::size_t Index = 3 * (Line * Width_ + Column);
    return static_cast<std::uint32_t>(Pixels_.at(Index) << 16 | Pixels_.at(Index + 1) << 8 | Pixels_.at(Index + 2));
}

} // namespace Pellumo::Testing
