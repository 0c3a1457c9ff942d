#include "tarvix/common/Raise.h"

namespace Tarvix {

namespace {

std::string_view DescriptionOf(errGeneral Number) noexcept
{
    switch (Number) {
    case errGeneral::errInvalidArgument: return "Invalid argument";
    case errGeneral::errOverflow: return "Overflow";
    case errGeneral::errIndexOutOfRange: return "Index out of range";
    case errGeneral::errDivisionByZero: return "Division by zero";
    case errGeneral::errTypeMismatch: return "Type mismatch";
    case errGeneral::errNotAttached: return "Not attached";
    }
    return {};
}

} // namespace

void Raise(errGeneral Number)
{
    Raise(Number, "Tarvix", DescriptionOf(Number));
}

} // namespace Tarvix
