/// @file
/// Opens the device that a URL names.
#pragma once

#include "pellumo/Export.h"
#include "tarvix/signalling/FTDIMPSSE.h"

#include <memory>
#include <string_view>

namespace Pellumo {

/// Opens a device, ready for `Tarvix::clsLIN::Initialize`. Destroying it without `Close` still leaves the bus recessive
/// if that can be done.
///
/// | URL | device |
/// |-----|--------|
/// | `sim:` | the simulated bus with the built-in example nodes |
/// | `sim:FILE.toml` | a simulated bus described in a file |
/// | `ftdi:///1` | the first chip found on USB, its first interface |
/// | `ftdi://VENDOR:PRODUCT[:SERIAL]/INTERFACE` | one chip |
///
/// The vendor is `ftdi` or a hexadecimal number; the product `232h`, `2232h`, `4232h`, `2232d`, `2232` (either of
/// that kind) or a hexadecimal number. What is left out matches every chip.
///
/// @throws Tarvix::Error  with a number of `errPellumo`; the description names the device, what was tried and what the
///                        user can do
PELLUMO_API std::unique_ptr<Tarvix::FTDIMPSSE> OpenDevice(std::string_view URL);

} // namespace Pellumo
