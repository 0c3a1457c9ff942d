#include "python/Guarded.h"

namespace Tarvix::Python {

int Guarded::Traverse(visitproc Visit, void* Argument) noexcept
{
    for (const py::object* Object : Held()) {
        if (const int Stop = Visit(Object->ptr(), Argument); Stop != 0) {
            return Stop;
        }
    }
    return 0;
}

void Guarded::LetGo()
{
    for (py::object* Object : Held()) {
        *Object = py::none();
    }
}

} // namespace Tarvix::Python
