#pragma once

#include "Serving.hpp"
#include "Texts.hpp"

#include <tarn/network/Session.hpp>

#include <trellis/VNetwork.hpp>
#include <trellis/VObject.hpp>

#include <loam/Result.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace Tarn {
struct EvaluationSummary;
}

namespace Tarn::Python {

namespace py = pybind11;

/// A session, which Python objects share. It is destroyed with the last of them, in any order.
class Network {
public:
    explicit Network(Session session) : m_session{std::move(session)} {}
    ~Network();
    Network(const Network&) = delete;
    Network& operator=(const Network&) = delete;

    /// Use it with the turn, or for functions that other threads may call.
    Session& session() noexcept { return *m_session; }
    Turn& turn() noexcept { return m_turn; }

    /// Grows with each change, so that contexts notice it.
    std::uint64_t changes() const noexcept { return m_changes; }
    void noteChange() noexcept { ++m_changes; }

    /// Calls \p function with the session in turn and without the interpreter lock.
    template<class Function>
    auto use(Function&& function)
    {
        const Turn::Hold hold{m_turn};
        return unlocked([&] { return function(*m_session); });
    }

private:
    std::optional<Session> m_session;
    Turn m_turn;
    std::atomic<std::uint64_t> m_changes = 0;
};

using NetworkPtr = std::shared_ptr<Network>;
using ObjectPtr = Orla::StrongPtr<Orla::VObject>;

/// An object of a network, which may be renamed, or removed at any time.
class Handle {
public:
    Handle(NetworkPtr network, const ObjectPtr& object);

    /// Finds the object \p name.
    /// \throw py::key_error if it does not exist.
    static Handle find(const NetworkPtr& network, const std::string& name);

    const NetworkPtr& network() const noexcept { return m_network; }

    /// Returns the object. Call it with a `VNetwork::Use`.
    /// \throw Removed if it was removed.
    ObjectPtr object() const;

    /// Returns the name; the last one if the object was removed.
    std::string name() const;
    bool exists() const;

    bool refersTo(const Handle& other) const { return m_identity == other.m_identity && exists() == other.exists(); }
    std::size_t hash() const noexcept { return std::hash<const void*>{}(m_identity); }

private:
    NetworkPtr m_network;
    Orla::WeakPtrImpl<Orla::VObject, Orla::VManagedObjectBase> m_object;
    const void* m_identity; // of the object, which may have been destroyed
    std::string m_firstName;
};

/// Python raises `ReferenceError`.
struct Removed : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Python raises `AttributeError`.
struct Missing : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Python raises `ObjectError`.
struct NoResult : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Returns why a run ended before its last step, or nothing.
std::optional<std::string> endReason(const EvaluationSummary& summary);

/// \throw py::value_error with the reason of a failure.
template<class T>
T require(Loam::Result<T>&& result)
{
    if (!result)
        throw py::value_error(result.reason());
    if constexpr (!std::is_void_v<T>)
        return *std::move(result);
}

} // namespace Tarn::Python
