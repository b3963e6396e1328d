#pragma once

#include <exception>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

namespace Loam {

/// Why an operation failed, as text for users: "the file does not exist". It is never empty.
struct Failure {
    std::string reason;
};

/// The outcome of an operation that can fail: its value, or the reason for the failure.
///
/// For failures that the caller is expected to handle or to report with more context.
template<class Value>
class [[nodiscard]] Result {
public:
    Result(Value value) : m_outcome{std::in_place_index<0>, std::move(value)} {}
    Result(Failure failure) : m_outcome{std::in_place_index<1>, std::move(failure)} {}

    /// Returns true if there is a value.
    explicit operator bool() const noexcept { return m_outcome.index() == 0; }

    /// Returns the value.
    /// \throw std::bad_variant_access after a failure.
    const Value& operator*() const& { return std::get<0>(m_outcome); }
    Value& operator*() & { return std::get<0>(m_outcome); }
    Value&& operator*() && { return std::get<0>(std::move(m_outcome)); }
    const Value* operator->() const { return &**this; }
    Value* operator->() { return &**this; }

    /// Returns the reason for the failure.
    /// \throw std::bad_variant_access after a success.
    const std::string& reason() const { return std::get<1>(m_outcome).reason; }

private:
    std::variant<Value, Failure> m_outcome;
};

/// The outcome of an operation without a value.
template<>
class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Failure failure) : m_outcome{std::move(failure)} {}

    /// Returns true after a success.
    explicit operator bool() const noexcept { return m_outcome.index() == 0; }

    /// Returns the reason for the failure.
    /// \throw std::bad_variant_access after a success.
    const std::string& reason() const { return std::get<Failure>(m_outcome).reason; }

private:
    std::variant<std::monostate, Failure> m_outcome;
};

/// Calls \p function, which may run code of client libraries. Returns its value, or a failure
/// with the message of the exception that it threw.
template<class Function>
Result<std::invoke_result_t<Function>> attempt(Function&& function)
{
    try {
        if constexpr (std::is_void_v<std::invoke_result_t<Function>>) {
            std::forward<Function>(function)();
            return {};
        } else {
            return std::forward<Function>(function)();
        }
    } catch (const std::bad_alloc&) {
        return Failure{"out of memory"};
    } catch (const std::exception& error) {
        return Failure{error.what()[0] ? error.what() : "an exception without a message"};
    } catch (...) {
        return Failure{"something other than a std::exception was thrown"};
    }
}

} // namespace Loam
