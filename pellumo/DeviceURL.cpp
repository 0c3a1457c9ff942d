#include "pellumo/DeviceURL.h"

#include "pellumo/ChipFamily.h"
#include "pellumo/errPellumo.h"
#include "tarvix/common/Raise.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

namespace Pellumo {

namespace {

constexpr std::string_view SimulatedScheme = "sim:";
constexpr std::string_view ChipScheme = "ftdi:";

constexpr std::array<std::pair<std::string_view, ChipFamily>, 4> ProductNames = {{
    {"2232d", ChipFamily::FT2232D},
    {"2232h", ChipFamily::FT2232H},
    {"4232h", ChipFamily::FT4232H},
    {"232h", ChipFamily::FT232H},
}};
constexpr std::string_view Either2232 = "2232"; // they share an identifier

[[noreturn]] void Fail(std::string_view URL, std::string_view Reason)
{
    std::string Text = "\"";
    Text.append(URL).append("\" names no device: ").append(Reason);
    Text.append(". Devices are \"sim:\" (simulated bus), \"sim:FILE.toml\" (bus described in a file), "
                "\"ftdi:///1\" (first chip on USB) and \"ftdi://VENDOR:PRODUCT:SERIAL/INTERFACE\", "
                "for example \"ftdi://ftdi:232h/1\"");
    Tarvix::Raise(errPellumo::errURL, "DeviceURL", Text);
}

std::string Quoted(std::string_view What, std::string_view Value)
{
    std::string Text(What);
    return Text.append(" \"").append(Value).append("\" ");
}

// The alphabet alone: the C locale's letters, whatever the host's.
std::string LowerCase(std::string_view Text)
{
    std::string Lower(Text);
    std::transform(Lower.begin(), Lower.end(), Lower.begin(), [](char Letter) {
        return Letter >= 'A' && Letter <= 'Z' ? static_cast<char>(Letter - 'A' + 'a') : Letter;
    });
    return Lower;
}

std::optional<std::uint16_t> HexNumber(std::string_view Digits)
{
    if (Digits.starts_with("0x")) {
        Digits.remove_prefix(2);
    }
    std::uint16_t Value = 0;
    const char* const End = Digits.data() + Digits.size();
    const auto [Stop, Code] = std::from_chars(Digits.data(), End, Value, 16);
    return Code == std::errc() && Stop == End ? std::optional(Value) : std::nullopt;
}

std::uint16_t VendorFrom(std::string_view URL, std::string_view Part)
{
    const std::string Name = LowerCase(Part);
    if (Name == "ftdi") {
        return MakersVendor;
    }
    const auto Number = HexNumber(Name);
    if (!Number) {
        Fail(URL, Quoted("the vendor", Part).append("is neither \"ftdi\" nor a hexadecimal number up to FFFF"));
    }
    return *Number;
}

void SetProduct(ChipAddress& Chip, std::string_view URL, std::string_view Part)
{
    const std::string Lower = LowerCase(Part);
    const std::string_view Name = std::string_view(Lower).substr(Lower.starts_with("ft") ? 2 : 0);
    const auto* const Known = std::find_if(ProductNames.begin(), ProductNames.end(),
                                           [Name](const auto& Entry) { return Entry.first == Name; });
    if (Known != ProductNames.end()) {
        Chip.Family = Known->second;
        Chip.Product = FactsOf(Known->second).USBProduct;
        return;
    }
    if (Name == Either2232) {
        Chip.Product = FactsOf(ChipFamily::FT2232H).USBProduct;
        return;
    }
    const auto Number = HexNumber(Lower);
    if (!Number) {
        Fail(URL, Quoted("the product", Part)
                      .append("is neither 2232, 2232d, 2232h, 4232h or 232h nor a hexadecimal number up to FFFF"));
    }
    Chip.Product = *Number;
}

int InterfaceFrom(std::string_view URL, std::string_view Part)
{
    if (Part.empty()) {
        Fail(URL, "the interface after the last \"/\" is missing");
    }
    if (Part.size() != 1 || Part[0] < '1' || Part[0] > '4') {
        Fail(URL, Quoted("the interface", Part).append("is not a number from 1 to 4"));
    }
    return Part[0] - '0';
}

// Takes the text up to the next ":" off the front.
std::string_view TakePart(std::string_view& Text)
{
    const std::size_t Length = std::min(Text.find(':'), Text.size());
    const std::string_view Part = Text.substr(0, Length);
    Text.remove_prefix(std::min(Length + 1, Text.size()));
    return Part;
}

ChipAddress ParseChip(std::string_view URL)
{
    std::string_view Text = URL.substr(ChipScheme.size());
    if (!Text.starts_with("//")) {
        Fail(URL, "\"//\" is missing after \"ftdi:\"");
    }
    Text.remove_prefix(2);
    const std::size_t Slash = Text.rfind('/');
    if (Slash == std::string_view::npos) {
        Fail(URL, "\"/\" and the interface are missing at its end");
    }
    ChipAddress Chip;
    Chip.Interface = InterfaceFrom(URL, Text.substr(Slash + 1));
    Text = Text.substr(0, Slash);
    if (std::count(Text.begin(), Text.end(), ':') > 2) {
        Fail(URL, Quoted("the part", Text).append("is more than VENDOR:PRODUCT:SERIAL"));
    }
    if (const auto Vendor = TakePart(Text); !Vendor.empty()) {
        Chip.Vendor = VendorFrom(URL, Vendor);
    }
    if (const auto Product = TakePart(Text); !Product.empty()) {
        SetProduct(Chip, URL, Product);
    }
    if (!Text.empty()) {
        Chip.Serial = Text;
    }
    return Chip;
}

} // namespace

DeviceURL ParseDeviceURL(std::string_view URL)
{
    if (URL.starts_with(SimulatedScheme)) {
        return SimulatedBusURL{std::string(URL.substr(SimulatedScheme.size()))};
    }
    if (URL.starts_with(ChipScheme)) {
        return ParseChip(URL);
    }
    Fail(URL, "it begins neither with \"sim:\" nor with \"ftdi:\"");
}

} // namespace Pellumo
