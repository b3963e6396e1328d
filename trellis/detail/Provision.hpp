#pragma once

#include <trellis/detail/NetworkObjects.hpp>

#include <loam/StrongPtr.hpp>

#include <string>

namespace Orla {

class VObject;
class VSlot;

namespace Detail {

/// Marks a type of provider as being created in a network for the scope's lifetime. A provider
/// that needs a provider of its own kind must not create another one.
class Provision {
public:
    Provision(NetworkCore& network, const std::string& typeName);
    Provision(const Provision&) = delete;
    Provision& operator=(const Provision&) = delete;
    ~Provision();

    static bool isRunning(NetworkCore& network, const std::string& typeName) noexcept;

    /// Returns the output of \p provider that has the type of \p slot, or null. Prefers the
    /// provider's own outputs to inputs that it passes on.
    static StrongPtr<VSlot> outputFor(const VSlot& slot, const VObject& provider);

private:
    NetworkObjects& m_objects;
};

} // namespace Detail

} // namespace Orla
