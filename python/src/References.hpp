#pragma once

#include <pybind11/pybind11.h>

#include <utility>

namespace Tarn::Python {

namespace py = pybind11;

/// Owns a Python object for the framework, which destroys its owner in any thread, also after the
/// end of the interpreter. Never waits for the interpreter lock: without it, the object is released
/// by the next thread that has it.
class Reference {
public:
    Reference() = default;
    explicit Reference(py::object object) noexcept : m_object{object.release().ptr()} {}
    Reference(Reference&& other) noexcept : m_object{std::exchange(other.m_object, nullptr)} {}
    Reference& operator=(Reference&& other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~Reference();

    py::handle get() const noexcept { return m_object; }

private:
    PyObject* m_object = nullptr;
};

/// Releases the objects whose owners were destroyed without the interpreter lock. Requires the lock.
void releaseDropped();

} // namespace Tarn::Python
