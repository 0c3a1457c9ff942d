#include "tarvix/signalling/FTDIMPSSE.h"

namespace Tarvix {

FTDIMPSSE::~FTDIMPSSE() = default;

} // namespace Tarvix
