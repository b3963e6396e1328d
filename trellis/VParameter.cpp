#include <trellis/VParameter.hpp>

#include <trellis/detail/FrameHooks.hpp>

#include <trellis/VSlotContainer.hpp>

#include <cassert>

namespace Orla {

VParameter::VParameter(const StrongPtr<VValueBase>& value, const std::string& name,
                       const StrongPtr<VCreationPreferences, InterfaceBase>& preferences)
    : m_value{value}, m_name{name}, m_preferences{preferences}
{
    assert(value && "a parameter owns a value");
}

VParameter::~VParameter()
{
    Detail::FrameHooks::parameterGone(*this);
}

StrongPtr<VValueBase> VParameter::DefaultValue() const
{
    return m_value;
}

StrongPtr<VParameter, ValueNotifierList> VParameter::copy() const
{
    StrongPtr<VParameter> twin(new VParameter(m_value, m_name, m_preferences));
    twin->copyShadows(*this);
    return twin;
}

StrongPtr<VValueBase> VParameter::newValue() const
{
    return m_value->copy();
}

StrongPtr<VSlotContainer> VParameter::owner() const
{
    if (StrongPtr<VSlotContainer> source = m_source.lock())
        return source;
    return m_creator.lock();
}

void VParameter::setEnabled(bool enabled) noexcept
{
    m_enabled = enabled;
    Detail::FrameHooks::parameterSwitched(*this);
}

} // namespace Orla
