#include <tarn/network/RelativePathRewriter.hpp>

#include <filesystem>
#include <system_error>

namespace Tarn {

namespace {

namespace fs = std::filesystem;

bool areSame(const fs::path& a, const fs::path& b)
{
    std::error_code error;
    return fs::equivalent(a, b, error) && !error;
}

} // namespace

RelativePathRewriter::RelativePathRewriter(const std::string& from, const std::string& to)
{
    std::error_code fromError;
    std::error_code toError;
    const fs::path realFrom = fs::canonical(from, fromError);
    const fs::path realTo = fs::canonical(to, toError);
    if (fromError || toError || realFrom == realTo)
        return;
    m_from = realFrom.string();
    m_to = realTo.string();
}

bool RelativePathRewriter::concerns(const std::string& text) const
{
    // The system reads a name only up to the first null character.
    if (!isNeeded() || text.empty() || text.find('\0') != std::string::npos || fs::path(text).is_absolute())
        return false;
    const fs::path file = fs::path(m_from) / text;
    std::error_code error;
    return fs::exists(file, error) && !areSame(file, fs::path(m_to) / text);
}

std::optional<std::string> RelativePathRewriter::moved(const std::string& text) const
{
    if (!concerns(text))
        return std::nullopt;
    const fs::path file = fs::path(m_from) / text;
    std::error_code error;
    if (fs::is_directory(file, error))
        return std::nullopt;
    // After a symbolic link, ".." does not lead where the name suggests.
    const fs::path shortName = file.lexically_normal().lexically_relative(m_to);
    return areSame(file, fs::path(m_to) / shortName) ? shortName.string()
                                                     : (fs::path(m_from).lexically_relative(m_to) / text).string();
}

} // namespace Tarn
