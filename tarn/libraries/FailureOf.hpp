#pragma once

#include <exception>
#include <string>

namespace Tarn {

/// Runs what client libraries wrote. The reason why it failed, empty if it did not.
template<class Function>
std::string failureOf(Function&& function)
{
    try {
        function();
        return {};
    } catch (const std::exception& error) {
        return error.what()[0] ? error.what() : "an exception without a text";
    } catch (...) {
        return "something was thrown that is no std::exception";
    }
}

} // namespace Tarn
