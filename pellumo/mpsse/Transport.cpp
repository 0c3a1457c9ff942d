#include "pellumo/mpsse/Transport.h"

namespace Pellumo {

Transport::~Transport() = default;

} // namespace Pellumo
