#pragma once

#include <loam/Export.hpp>

#include <stdexcept>
#include <string>

namespace Loam {

/// Thrown if a file cannot be read or written; the message names the file and the reason.
class LOAM_API FileError : public std::runtime_error {
public:
    explicit FileError(const std::string& message);

    /// Appends the text of the system's error number \p error to \p what.
    FileError(const std::string& what, int error);
    ~FileError() override;
};

} // namespace Loam
