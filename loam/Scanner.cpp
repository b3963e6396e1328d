#include <loam/Scanner.hpp>

#include <loam/Ascii.hpp>
#include <loam/Numbers.hpp>

#include <algorithm>

namespace Loam {

namespace {

constexpr bool isHexDigit(char c) noexcept
{
    return isDigit(c) || (toLower(c) >= 'a' && toLower(c) <= 'f');
}

bool startsWith(const char* place, const char* end, std::string_view word) noexcept
{
    return static_cast<std::size_t>(end - place) >= word.size()
           && std::equal(word.begin(), word.end(), place, [](char a, char b) { return a == toLower(b); });
}

} // namespace

Scanner::Scanner(std::string_view text) noexcept
    : m_place{text.data()}, m_end{text.data() + std::min(text.size(), text.find('\0'))}
{
}

Scanner& Scanner::blanks() noexcept
{
    m_place = skipBlanks(m_place, m_end);
    return *this;
}

Scanner& Scanner::literal(char expected) noexcept
{
    if (m_failed || m_place == m_end || *m_place != expected)
        m_failed = true;
    else
        ++m_place;
    return *this;
}

// Returns the end of the piece that sscanf reads as a number, starting after the
// blanks, or null if sscanf would reject it.
const char* Scanner::numberEnd() const noexcept
{
    const char* place = m_place;
    if (place != m_end && (*place == '+' || *place == '-'))
        ++place;
    if (place == m_end)
        return nullptr;
    if (toLower(*place) == 'n')
        return startsWith(place, m_end, "nan") ? place + 3 : nullptr;
    if (toLower(*place) == 'i') {
        if (!startsWith(place, m_end, "inf"))
            return nullptr;
        place += 3;
        // A second "i" begins "infinity", which must then be complete.
        if (place == m_end || toLower(*place) != 'i')
            return place;
        return startsWith(place, m_end, "inity") ? place + 5 : nullptr;
    }

    const bool hexadecimal = startsWith(place, m_end, "0x");
    if (hexadecimal)
        place += 2;
    const char* const digits = place;
    const char exponentLetter = hexadecimal ? 'p' : 'e';
    bool hasDigit = false;
    bool hasPoint = false;
    bool hasExponent = false;
    for (; place != m_end; ++place) {
        const char c = *place;
        if (isDigit(c) || (hexadecimal && !hasExponent && isHexDigit(c)))
            hasDigit = true;
        else if (hasExponent && (c == '+' || c == '-') && toLower(place[-1]) == exponentLetter)
            continue;
        else if (hasDigit && !hasExponent && toLower(c) == exponentLetter)
            hasExponent = true;
        else if (c == '.' && !hasPoint && !hasExponent)
            hasPoint = true;
        else
            break;
    }
    return place == digits ? nullptr : place;
}

template<class T>
bool Scanner::read(T& value) noexcept
{
    blanks();
    if (m_failed)
        return false;
    const char* const end = numberEnd();
    m_failed = !end || !readNumber(m_place, end, value);
    if (!m_failed)
        m_place = end;
    return !m_failed;
}

bool Scanner::number(double& value) noexcept
{
    return read(value);
}

bool Scanner::number(float& value) noexcept
{
    return read(value);
}

} // namespace Loam
