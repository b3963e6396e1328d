#pragma once

#include <loam/Export.hpp>

#include <string_view>

namespace Loam {

/// Reads a text piece by piece as the C library's sscanf does in the C locale,
/// for text forms that are defined by a scanf format. Each call is one directive
/// of the format; after one that fails, all further ones fail.
///
/// As for sscanf, the text ends at its first NUL.
class LOAM_API Scanner {
public:
    explicit Scanner(std::string_view text) noexcept;

    /// A blank in the format: any run of white space, also none. Never fails.
    Scanner& blanks() noexcept;

    /// A character in the format, which must follow at once.
    Scanner& literal(char expected) noexcept;

    /// "%lg" or "%g": white space, then the longest piece that can begin a number.
    /// False, and \p value as it was, if that is no number or the text has ended.
    ///
    /// Unlike `readNumber`, takes a piece such as "1e" as a whole, and reads 1.
    bool number(double& value) noexcept;
    bool number(float& value) noexcept;

    bool hasFailed() const noexcept { return m_failed; }

private:
    template<class T>
    bool read(T& value) noexcept;

    const char* numberEnd() const noexcept;

    const char* m_place;
    const char* m_end;
    bool m_failed = false;
};

} // namespace Loam
