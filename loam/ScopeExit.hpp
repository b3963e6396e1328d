#pragma once

#include <utility>

namespace Loam {

/// Calls a function when it is destroyed: at the end of its scope or, if it is static, at the
/// end of the program or before its library is unloaded.
/// \pre The function does not throw.
template<class Function>
class [[nodiscard]] ScopeExit {
public:
    explicit ScopeExit(Function function) : m_function{std::move(function)} {}
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;
    ~ScopeExit() { m_function(); }

private:
    Function m_function;
};

} // namespace Loam
