#include "tarvix/common/Error.h"

#include <utility>

namespace Tarvix {

Error::Error(std::int32_t Number, std::string Source, std::string Description)
    : Number_(Number), Source_(std::move(Source)), Description_(std::move(Description))
{
}

const char* Error::what() const noexcept
{
    return Description_.c_str();
}

} // namespace Tarvix
