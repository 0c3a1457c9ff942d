#include "pellumo/usb/USBChips.h"

#include "pellumo/errPellumo.h"
#include "pellumo/mpsse/RaiseForDevice.h"
#include "pellumo/usb/USBErrors.h"
#include "tarvix/common/Raise.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <string_view>
#include <utility>

namespace Pellumo {

namespace {

constexpr std::string_view Source = "USBChips";

constexpr std::array Families = {ChipFamily::FT2232D, ChipFamily::FT2232H, ChipFamily::FT4232H, ChipFamily::FT232H};

std::optional<ChipFamily> FamilyOfRelease(std::uint16_t Release) noexcept
{
    const auto* const Found = std::find_if(Families.begin(), Families.end(),
                                           [=](ChipFamily Family) { return FactsOf(Family).USBRelease == Release; });
    return Found == Families.end() ? std::nullopt : std::optional(*Found);
}

std::string Hexadecimal(std::uint16_t Value)
{
    std::array<char, 4> Digits{};
    const char* const End = std::to_chars(Digits.data(), Digits.data() + Digits.size(), Value, 16).ptr;
    const auto Count = static_cast<std::size_t>(End - Digits.data());
    return std::string("0x").append(4 - Count, '0').append(Digits.data(), Count);
}

std::pair<int, int> PlaceOf(const USBChip& Chip) noexcept
{
    return {libusb_get_bus_number(Chip.Device.get()), libusb_get_device_address(Chip.Device.get())};
}

std::string VendorName(std::uint16_t Vendor)
{
    return Vendor == MakersVendor ? "ftdi" : Hexadecimal(Vendor);
}

// How a URL names the product: "232h" for an FT232H, a number for a chip whose identifier was changed.
std::string ProductInURL(std::uint16_t Product, std::optional<ChipFamily> Family)
{
    if (!Family || FactsOf(*Family).USBProduct != Product) {
        return Hexadecimal(Product);
    }
    std::string Name = FactsOf(*Family).Name + 2;
    Name.back() = static_cast<char>(Name.back() - 'A' + 'a');
    return Name;
}

// The serial number, or libusb's code when the device cannot be opened or asked.
int ReadSerial(libusb_device* Device, std::uint8_t StringIndex, std::string& Serial)
{
    libusb_device_handle* Opened = nullptr;
    if (const int Code = libusb_open(Device, &Opened); Code < 0) {
        return Code;
    }
    const DeviceHandle Handle(Opened);
    if (StringIndex == 0) {
        return LIBUSB_SUCCESS;
    }
    std::array<unsigned char, 256> Text{};
    const int Length =
        libusb_get_string_descriptor_ascii(Handle.get(), StringIndex, Text.data(), static_cast<int>(Text.size()));
    if (Length < 0) {
        return Length;
    }
    Serial.assign(Text.begin(), Text.begin() + Length);
    return LIBUSB_SUCCESS;
}

USBChip Describe(libusb_device* Device, const libusb_device_descriptor& Descriptor)
{
    USBChip Chip;
    Chip.Device.reset(libusb_ref_device(Device));
    Chip.Vendor = Descriptor.idVendor;
    Chip.Product = Descriptor.idProduct;
    Chip.Release = Descriptor.bcdDevice;
    Chip.Family = FamilyOfRelease(Descriptor.bcdDevice);
    Chip.OpenCode = ReadSerial(Device, Descriptor.iSerialNumber, Chip.Serial);
    return Chip;
}

std::string TextOf(const ChipAddress& Address)
{
    std::string Text = "ftdi://";
    Text.append(Address.Vendor ? VendorName(*Address.Vendor) : "");
    if (Address.Product || Address.Serial) {
        Text.append(":").append(Address.Product ? ProductInURL(*Address.Product, Address.Family) : "");
    }
    if (Address.Serial) {
        Text.append(":").append(*Address.Serial);
    }
    return Text.append("/").append(std::to_string(Address.Interface));
}

[[noreturn]] void RaiseNotFound(std::span<const USBChip> Chips, const ChipAddress& Address)
{
    std::string Text = std::string("No chip on USB matches ").append(TextOf(Address)).append(". ");
    if (Chips.empty()) {
        Text.append(
            "None with these identifiers is plugged in; check the cable, and the address with `tarvix devices`");
    } else {
        Text.append("Found:");
        for (const USBChip& Chip : Chips) {
            Text.append(" ").append(Chip.URL(1)).append(" (").append(Chip.ProductName()).append(")");
        }
    }
    Tarvix::Raise(errPellumo::errNotFound, Source, Text);
}

void RequireEngine(const USBChip& Chip, int Interface)
{
    const std::string Name = Chip.URL(Interface);
    if (!Chip.Family) {
        RaiseForDevice(errPellumo::errWrongChip, Source, Name,
                       std::string("the chip (")
                           .append(Chip.ProductName())
                           .append(") has no MPSSE engine. Use an FT232H, FT2232H, FT4232H or FT2232D"));
    }
    const ChipFacts& Facts = FactsOf(*Chip.Family);
    const auto Refuse = [&](errPellumo Number, std::string_view Lack) {
        RaiseForDevice(Number, Source, Name,
                       std::string("the ")
                           .append(Facts.Name)
                           .append(Lack)
                           .append(Facts.Engines == 1 ? ". Use interface 1" : ". Use interface 1 or 2"));
    };
    if (Interface < 1 || Interface > Facts.Interfaces) {
        Refuse(errPellumo::errNotFound, " has no such interface");
    }
    if (Interface > Facts.Engines) {
        Refuse(errPellumo::errWrongChip, " has no MPSSE engine on this interface");
    }
}

} // namespace

std::string USBChip::ProductName() const
{
    if (Family) {
        return FactsOf(*Family).Name;
    }
    switch (Release) {
    case 0x0200: return "FT8U232AM";
    case 0x0400: return "FT232BM";
    case 0x0600: return "FT232R";
    case 0x1000: return "FT-X";
    default: return std::string("unknown chip, release ").append(Hexadecimal(Release));
    }
}

std::string USBChip::URL(int Interface) const
{
    std::string Text =
        std::string("ftdi://").append(VendorName(Vendor)).append(":").append(ProductInURL(Product, Family));
    if (!Serial.empty()) {
        Text.append(":").append(Serial);
    }
    return Text.append("/").append(std::to_string(Interface));
}

FTDIContext StartUSB()
{
    FTDIContext Context(ftdi_new());
    if (!Context) {
        Tarvix::Raise(errPellumo::errUSB, Source, "The USB system cannot be used: libusb does not start");
    }
    return Context;
}

std::vector<USBChip> ListChips(const ftdi_context& Context, std::uint16_t Vendor, std::optional<std::uint16_t> Product)
{
    libusb_device** Devices = nullptr;
    const ssize_t Count = libusb_get_device_list(Context.usb_ctx, &Devices);
    if (Count < 0) {
        RaiseUSB(static_cast<int>(Count), Source, "USB", "listing the devices");
    }
    const auto FreeList = [](libusb_device** List) { libusb_free_device_list(List, 1); };
    const std::unique_ptr<libusb_device*, decltype(FreeList)> Owner(Devices, FreeList);

    std::vector<USBChip> Chips;
    for (libusb_device* const Device : std::span(Devices, static_cast<std::size_t>(Count))) {
        libusb_device_descriptor Descriptor{};
        if (libusb_get_device_descriptor(Device, &Descriptor) == LIBUSB_SUCCESS && Descriptor.idVendor == Vendor &&
            Descriptor.idProduct == Product.value_or(Descriptor.idProduct)) {
            Chips.push_back(Describe(Device, Descriptor));
        }
    }
    std::sort(Chips.begin(), Chips.end(), [](const USBChip& A, const USBChip& B) { return PlaceOf(A) < PlaceOf(B); });
    return Chips;
}

USBChip FindChip(const ftdi_context& Context, const ChipAddress& Address)
{
    std::vector<USBChip> Chips = ListChips(Context, Address.Vendor.value_or(MakersVendor), Address.Product);
    const auto Matches = [&](const USBChip& Chip) {
        const bool OfFamily = !Address.Family || !Chip.Family || Chip.Family == Address.Family;
        return OfFamily && (!Address.Serial || Chip.Serial == *Address.Serial);
    };
    const auto MatchesWithEngine = [&](const USBChip& Chip) { return Matches(Chip) && Chip.Family; };
    const auto IsSecret = [&](const USBChip& Chip) {
        return Chip.OpenCode < 0 && (!Address.Family || Chip.Family == Address.Family);
    };
    const auto IsSecretWithEngine = [&](const USBChip& Chip) {
        return IsSecret(Chip) && Chip.Family && Address.Interface <= FactsOf(*Chip.Family).Engines;
    };
    const auto FirstOf = [&Chips](const auto& Preferred, const auto& Otherwise) {
        const auto Found = std::find_if(Chips.begin(), Chips.end(), Preferred);
        return Found != Chips.end() ? Found : std::find_if(Chips.begin(), Chips.end(), Otherwise);
    };

    auto Chosen = FirstOf(MatchesWithEngine, Matches);
    if (Chosen != Chips.end()) {
        RequireEngine(*Chosen, Address.Interface);
    } else {
        Chosen = FirstOf(IsSecretWithEngine, IsSecret); // its serial number cannot be read: it may be the one
    }
    if (Chosen == Chips.end()) {
        RaiseNotFound(Chips, Address);
    }
    if (Chosen->OpenCode < 0) {
        RaiseUSB(Chosen->OpenCode, Source, Chosen->URL(Address.Interface), "opening the chip");
    }
    return std::move(*Chosen);
}

} // namespace Pellumo
