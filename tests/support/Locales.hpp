#pragma once

#include <locale>
#include <string>

/// Puts the process, its C functions and its new streams, under a locale for as
/// long as it lives.
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

/// A locale that writes one half as "0,5".
struct UnderDecimalComma : UnderLocale {
    UnderDecimalComma() : UnderLocale{"de_DE.UTF-8"} {}
};
