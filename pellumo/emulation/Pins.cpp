#include "pellumo/emulation/Pins.h"

namespace Pellumo {

Pins::~Pins() = default;

} // namespace Pellumo
