#include "References.hpp"

#include "Serving.hpp"

#include <mutex>
#include <vector>

namespace Tarn::Python {

namespace {

struct Dropped {
    std::mutex mutex;
    std::vector<PyObject*> objects;
};

// Never destroyed: networks may be destroyed while the process exits.
Dropped& dropped()
{
    static Dropped& dropped = *new Dropped;
    return dropped;
}

} // namespace

Reference::~Reference()
{
    if (!m_object || hasEnded())
        return;
    if (PyGILState_Check() != 0) {
        Py_DECREF(m_object);
        return;
    }
    const std::lock_guard lock{dropped().mutex};
    dropped().objects.push_back(m_object);
}

void releaseDropped()
{
    std::vector<PyObject*> objects;
    {
        const std::lock_guard lock{dropped().mutex};
        objects.swap(dropped().objects);
    }
    for (PyObject* const object : objects)
        Py_DECREF(object);
}

} // namespace Tarn::Python
