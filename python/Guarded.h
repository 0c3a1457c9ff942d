/// @file
/// What a master and an interpreter have in common as Python objects: they serve one thread at a time, let other
/// threads run meanwhile, and hold other Python objects where Python's garbage collector finds them.
#pragma once

#include <pybind11/pybind11.h>

#include <array>
#include <mutex>
#include <utility>

namespace Tarvix::Python {

namespace py = pybind11;

/// The base of such an object.
///
/// Locks are taken in this order: a master's turn, an interpreter's, Python's global lock. For a log runs in its
/// master's turn and may use an interpreter, and nobody waits for a turn with the global lock in hand. What the object
/// holds is read and changed with the global lock.
class Guarded {
public:
    Guarded() = default;
    virtual ~Guarded() = default;
    Guarded(const Guarded&) = delete;
    Guarded& operator=(const Guarded&) = delete;

    using Lock = std::unique_lock<std::recursive_mutex>;

    /// While it exists no other thread uses the object. The thread that has it may take another one, as callbacks do.
    /// To be called without the global lock.
    Lock Alone() { return Lock(Mutex_); }

    /// Gives up the global lock, so that other threads can run Python code, and has the object alone.
    class Turn {
    public:
        explicit Turn(Guarded& Object) : Mine_(Object.Alone()) {}

    private:
        py::gil_scoped_release Unlocked_;
        Lock Mine_;
    };

    /// Shows the garbage collector the objects held.
    int Traverse(visitproc Visit, void* Argument) noexcept;
    /// Lets go of the objects held.
    void LetGo();

private:
    virtual std::array<py::object*, 2> Held() noexcept = 0;

    std::recursive_mutex Mutex_;
};

/// A member function that takes its turn, as a binding.
template <typename Self, typename Result, typename Class, typename... Arguments>
auto Doing(Result (Class::*Operation)(Arguments...))
{
    return [Operation](Self& Object, Arguments... Values) -> Result {
        const Guarded::Turn Mine(Object);
        return (Object.*Operation)(std::forward<Arguments>(Values)...);
    };
}

/// The same for a member function that changes nothing.
template <typename Self, typename Result, typename Class, typename... Arguments>
auto Reading(Result (Class::*Operation)(Arguments...) const)
{
    return [Operation](Self& Object, Arguments... Values) -> Result {
        const Guarded::Turn Mine(Object);
        return (Object.*Operation)(std::forward<Arguments>(Values)...);
    };
}

/// The C++ object behind a Python object of the type `Self`; nullptr before its constructor has run.
template <typename Self>
Self* Behind(PyObject* Object)
{
    auto* Instance = reinterpret_cast<py::detail::instance*>(Object); // NOLINT(*-reinterpret-cast): it begins like that
    const auto Value = Instance->get_value_and_holder();
    return Value.holder_constructed() ? Value.value_ptr<Self>() : nullptr;
}

/// Lets the garbage collector find cycles through objects of the type `Self`, such as a master whose log holds it.
template <typename Self>
py::custom_type_setup Collectable()
{
    return py::custom_type_setup([](PyHeapTypeObject* HeapType) {
        PyTypeObject& Type = HeapType->ht_type;
        Type.tp_flags |= Py_TPFLAGS_HAVE_GC;
        Type.tp_traverse = [](PyObject* Object, visitproc Visit, void* Argument) {
            const int Stop =
                Visit(reinterpret_cast<PyObject*>(Py_TYPE(Object)), Argument); // NOLINT(*-cast): Python's way
            auto* Mine = Behind<Self>(Object);
            return Stop != 0 || Mine == nullptr ? Stop : Mine->Traverse(Visit, Argument);
        };
        Type.tp_clear = [](PyObject* Object) {
            if (auto* Mine = Behind<Self>(Object)) {
                Mine->LetGo();
            }
            return 0;
        };
    });
}

} // namespace Tarvix::Python
