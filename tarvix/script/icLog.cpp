#include "tarvix/script/icLog.h"

namespace Tarvix {

icLog::~icLog() = default;

} // namespace Tarvix
