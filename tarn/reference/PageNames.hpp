#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace Tarn {

/// Chooses names of files for names of any kind. Each consists of letters and digits of ASCII,
/// "-" and "_", so that it needs no escapes in addresses, and differs from the others on file
/// systems that ignore case. The same names in the same order give the same results.
class PageNames {
public:
    /// Does not return \p name, which is in use.
    void reserve(std::string_view name);

    /// Returns a new name that resembles \p name.
    std::string add(std::string_view name);

private:
    std::set<std::string> m_used;                // in small letters
    std::map<std::string, std::size_t> m_number; // the last one tried, by name without number
};

} // namespace Tarn
