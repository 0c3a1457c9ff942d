/// @file
/// The bus behind `sim:`.
#pragma once

#include "pellumo/simulation/BusDescription.h"

namespace Pellumo {

/// A small car: a door, a temperature sensor, a wiper motor and a seat, each with frames of another kind. It is the
/// same bus as examples/car.toml.
BusDescription ExampleBus();

} // namespace Pellumo
