#include "tarvix/common/Raise.h"

#include <algorithm>
#include <array>

namespace Tarvix {

namespace {

struct GeneralError {
    errGeneral Number;
    std::string_view Description;
};

constexpr std::array GeneralErrors = {
    GeneralError{errGeneral::errInvalidArgument, "Invalid argument"},
    GeneralError{errGeneral::errOverflow, "Overflow"},
    GeneralError{errGeneral::errIndexOutOfRange, "Index out of range"},
    GeneralError{errGeneral::errDivisionByZero, "Division by zero"},
    GeneralError{errGeneral::errTypeMismatch, "Type mismatch"},
    GeneralError{errGeneral::errNotAttached, "Not attached"},
};

} // namespace

void Raise(errGeneral Number)
{
    Raise(Number, "Tarvix", std::ranges::find(GeneralErrors, Number, &GeneralError::Number)->Description);
}

} // namespace Tarvix
