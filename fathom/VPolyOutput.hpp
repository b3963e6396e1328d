#pragma once

#include <fathom/Export.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VPolyConnection.hpp>
#include <trellis/VSkale.hpp>

#include <string>

namespace Orla {

/// Mix-in for objects that offer a value of type \p T to every object of class \p Requester.
/// The requester's input is named after the owner and the output, "owner.output".
template<class T, class Requester>
class VPolyOutput : public virtual VSkale {
public:
    explicit VPolyOutput(const std::string& outputName, const T& initialValue = T{})
        : m_output{VOutput<T>(this, outputName, initialValue, nullptr).parameter()}
        , m_connection{m_output,
                       [](const VObject& object) { return dynamic_cast<const Requester*>(&object) != nullptr; }}
    {
    }

    const StrongPtr<VValueParameter<T>, ValueNotifierList>& output() const noexcept { return m_output; }

    /// Returns the number of requesters to which the output was added.
    int requesterCount() const noexcept { return m_connection.count(); }

private:
    StrongPtr<VValueParameter<T>, ValueNotifierList> m_output;
    VPolyConnection m_connection;
};

} // namespace Orla
