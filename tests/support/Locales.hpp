#pragma once

#include <locale>
#include <string>

/// Sets the locale of the process, for C functions and new streams, while it exists.
class UnderLocale {
public:
    /// \throw std::runtime_error if the system lacks the locale.
    explicit UnderLocale(const std::string& name) : m_former{std::locale::global(std::locale{name})} {}
    UnderLocale(const UnderLocale&) = delete;
    UnderLocale& operator=(const UnderLocale&) = delete;
    ~UnderLocale() { std::locale::global(m_former); }

private:
    std::locale m_former;
};

struct InClassicLocale : UnderLocale {
    InClassicLocale() : UnderLocale{"C"} {}
};

/// A locale with a decimal comma: one half is "0,5".
struct UnderDecimalComma : UnderLocale {
    UnderDecimalComma() : UnderLocale{"de_DE.UTF-8"} {}
};
