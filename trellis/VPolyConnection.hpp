#pragma once

#include <trellis/Export.hpp>
#include <trellis/VActionNotifier.hpp>
#include <trellis/VObject.hpp>

namespace Orla {

/// Adds one output as an input to every object of a class in its network: to existing objects,
/// and to those that are registered later.
class TRELLIS_API VPolyConnection {
public:
    using IsRequester = bool (*)(const VObject& object);

    VPolyConnection(const StrongPtr<VParameter>& output, IsRequester isRequester);
    VPolyConnection(const VPolyConnection&) = delete;
    VPolyConnection& operator=(const VPolyConnection&) = delete;
    ~VPolyConnection();

    /// Returns the number of objects to which the output was added.
    int count() const noexcept;

private:
    class Exchange;
    class Joiner;

    StrongPtr<Detail::NetworkCore> m_network;
    StrongPtr<Exchange> m_exchange;
    StrongPtr<Joiner> m_joiner;
};

} // namespace Orla
