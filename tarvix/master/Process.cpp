#include "tarvix/master/Process.h"

#include "tarvix/common/Version.h"

namespace Tarvix {

// Not static: a host reads them as properties of an object. NOLINTBEGIN(readability-convert-member-functions-to-static)

std::int16_t Process::Major() const noexcept
{
    return VersionMajor;
}

std::int16_t Process::Minor() const noexcept
{
    return VersionMinor;
}

std::int16_t Process::Revision() const noexcept
{
    return VersionRevision;
}

// NOLINTEND(readability-convert-member-functions-to-static)

} // namespace Tarvix
