#pragma once

#include <exception>
#include <string>

namespace Tarn {

/// Calls \p function, which may run code of client libraries. Returns why it threw, or an
/// empty string if it did not.
template<class Function>
std::string failureOf(Function&& function)
{
    try {
        function();
        return {};
    } catch (const std::exception& error) {
        return error.what()[0] ? error.what() : "an exception without a message";
    } catch (...) {
        return "something other than a std::exception was thrown";
    }
}

} // namespace Tarn
