#include <trellis/ValuePool.hpp>

#include <trellis/PoolRoot.hpp>
#include <trellis/VParameter.hpp>
#include <trellis/VSlotContainer.hpp>

#include <algorithm>
#include <utility>

namespace Orla {

namespace {

// Up to here a walk over the names is faster than a table.
constexpr std::size_t FewVariables = 16;

// Versions are never reused, so a remembered one identifies the pool too.
std::uint64_t nextVersion()
{
    static std::uint64_t last = 0;
    return ++last;
}

} // namespace

ValuePool::ValuePool(std::string name)
    : m_root{this}, m_version{nextVersion()}, m_data{std::make_unique<PoolRoot>(*this, std::move(name))}
{
}

ValuePool::ValuePool(Scope, ValuePool& root) : m_root{&root}
{
}

ValuePool::~ValuePool()
{
    if (m_data)
        m_data->close();
}

const std::string& ValuePool::Name() const noexcept
{
    static const std::string none; // of a scope that somebody kept longer than its pool
    return m_root->m_data ? m_root->m_data->name : none;
}

ValuePool::Variable* ValuePool::findName(const std::string& name) const
{
    auto& variables = const_cast<std::vector<Variable>&>(m_variables);
    if (variables.size() <= FewVariables) {
        const auto found = std::ranges::find(variables, name, &Variable::name);
        return found == variables.end() ? nullptr : &*found;
    }
    if (!m_names) {
        m_names = std::make_unique<std::unordered_map<std::string, std::size_t>>();
        for (std::size_t i = 0; i < variables.size(); ++i)
            m_names->emplace(variables[i].name, i);
    }
    const auto found = m_names->find(name);
    return found == m_names->end() ? nullptr : &variables[found->second];
}

StrongPtr<VValueBase> ValuePool::retrieveValue(const std::string& name) const
{
    const Variable* variable = findName(name);
    return variable ? variable->value : nullptr;
}

void ValuePool::createVariable(const VParameter* parameter, const StrongPtr<VValueBase>& value)
{
    if (!parameter || !value)
        return;
    enterName(parameter->Name(), value, parameter->m_id);
    if (!m_root->m_data)
        return; // a scope that somebody kept longer than its pool
    PoolRoot::Variable& entry = m_root->m_data->variables[parameter->m_id];
    if (!entry.value)
        parameter->noteHolder(*m_root);
    else if (entry.value != value)
        m_root->replaced();
    // The old value may be the last holder of something that looks into this pool.
    const StrongPtr<VValueBase> released = std::exchange(entry.value, value);
    ValuePool* const oldPlace = std::exchange(entry.place, this);
    if (oldPlace && oldPlace != this)
        oldPlace->removeName(*parameter);
}

void ValuePool::enterName(const std::string& name, const StrongPtr<VValueBase>& value, std::uint64_t parameter)
{
    if (Variable* variable = findName(name)) {
        variable->parameter = parameter;
        // Last, because the old value may look into this pool when it goes.
        const StrongPtr<VValueBase> released = std::exchange(variable->value, value);
        return;
    }
    m_variables.push_back({name, value, parameter});
    if (m_names)
        m_names->emplace(name, m_variables.size() - 1);
}

void ValuePool::removeName(const VParameter& parameter)
{
    Variable* const found = findName(parameter.Name());
    if (!found || found->parameter != parameter.m_id)
        return; // the name has come to stand for another parameter
    if (m_names) {
        m_names->erase(found->name);
        if (found != &m_variables.back())
            (*m_names)[m_variables.back().name] = static_cast<std::size_t>(found - m_variables.data());
    }
    std::swap(*found, m_variables.back());
    // The value may be the last holder of something that looks into this pool.
    const Variable released = std::move(m_variables.back());
    m_variables.pop_back();
}

void ValuePool::forgetParameter(const VParameter& parameter)
{
    PoolRoot::Variable* entry = m_data->variables.find(parameter.m_id);
    if (!entry)
        return;
    replaced();
    // The value may be the last holder of the object that the place belongs to.
    const PoolRoot::Variable released = *entry;
    m_data->variables.erase(parameter.m_id);
    if (released.place)
        released.place->removeName(parameter);
}

// Parameters that remember this pool's version must look again.
void ValuePool::replaced()
{
    m_version = nextVersion();
}

std::size_t ValuePool::variableCount() const
{
    return m_root->m_data ? m_root->m_data->variables.size() : 0;
}

std::size_t ValuePool::scopeCount() const
{
    return m_root->m_data ? m_root->m_data->scopes.size() : 0;
}

StrongPtr<ValuePool> ValuePool::scopeOf(VSlotContainer& container)
{
    if (!m_root->m_data)
        return nullptr;
    return WeakPtrImpl<ValuePool>(&m_root->m_data->scope(container)).lock();
}

} // namespace Orla
