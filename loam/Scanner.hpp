#pragma once

#include <loam/Export.hpp>

#include <string_view>

namespace Loam {

/// Reads a text piece by piece, as sscanf does in the C locale, for text forms that
/// are defined by a scanf format. Each call is one directive of the format; after a
/// failure all later directives fail.
///
/// As with sscanf, the text ends at its first NUL.
class LOAM_API Scanner {
public:
    explicit Scanner(std::string_view text) noexcept;

    /// A blank in the format: skips white space, if any. Never fails.
    Scanner& blanks() noexcept;

    /// A character in the format: it must come next, without white space before it.
    Scanner& literal(char expected) noexcept;

    /// "%lg" or "%g": skips white space and reads the longest piece that can begin a
    /// number. Returns false and leaves \p value unchanged if the piece is not a number
    /// or the text has ended.
    ///
    /// Unlike `readNumber`, consumes all of a piece such as "1e" and reads 1.
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
