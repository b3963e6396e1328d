#pragma once

#include <loam/Export.hpp>

#include <stdexcept>
#include <string>

namespace Loam {

/// A file could not be read or written; the message says which one and why.
class LOAM_API FileError : public std::runtime_error {
public:
    explicit FileError(const std::string& message);

    /// \p what failed with the system's error number \p error.
    FileError(const std::string& what, int error);
    ~FileError() override;
};

} // namespace Loam
