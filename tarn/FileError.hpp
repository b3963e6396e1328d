#pragma once

#include <stdexcept>
#include <string>
#include <system_error>

namespace Tarn {

/// A file could not be read or written; the message says which one and why.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;

    /// \p what failed with the system's error number \p error.
    FileError(const std::string& what, int error)
        : runtime_error{what + ": " + std::generic_category().message(error)}
    {
    }
};

} // namespace Tarn
