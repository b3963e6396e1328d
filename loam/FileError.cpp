#include <loam/FileError.hpp>

#include <system_error>

namespace Loam {

FileError::FileError(const std::string& message) : runtime_error{message}
{
}

FileError::FileError(const std::string& what, int error)
    : runtime_error{what + ": " + std::generic_category().message(error)}
{
}

FileError::~FileError() = default;

} // namespace Loam
