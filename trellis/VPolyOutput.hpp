#pragma once

#include <trellis/Export.hpp>
#include <trellis/VActionNotifier.hpp>
#include <trellis/VObject.hpp>

#include <string>

namespace Orla {

template<class T>
class VOutput;
template<class T>
class VValueParameter;

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
