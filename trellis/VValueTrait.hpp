#pragma once

#include <trellis/Export.hpp>

#include <loam/Numbers.hpp>

#include <string>

namespace Orla {

/// The text form of a value type: a specialisation supplies
///
///     static std::string Text(const T& value);
///     static bool setValueFromText(T& value, const std::string& text);
///
/// `setValueFromText` parses into an existing value and returns whether the text
/// was accepted. It never throws. A refused text may leave a composite value
/// partly changed; callers treat false as a refusal and do not roll back.
template<class T>
struct VValueTrait;

/// Text form of the number types, the same under every locale.
///
/// `Text` writes the shortest form that reads back to the same bits, whole
/// numbers without a point, "inf" and "nan" for the specials. Reading takes the
/// leading number after blanks and ignores what follows; a text without a
/// number, or an integer that does not fit, is refused and leaves the value
/// alone.
template<class T>
struct VNumberTrait {
    static std::string Text(T value) { return Loam::numberText(value); }
    static bool setValueFromText(T& value, const std::string& text) { return Loam::readNumber(value, text); }
};

template<>
struct VValueTrait<short> : VNumberTrait<short> {
};
template<>
struct VValueTrait<int> : VNumberTrait<int> {
};
template<>
struct VValueTrait<long> : VNumberTrait<long> {
};
template<>
struct VValueTrait<long long> : VNumberTrait<long long> {
};
template<>
struct VValueTrait<unsigned short> : VNumberTrait<unsigned short> {
};
template<>
struct VValueTrait<unsigned int> : VNumberTrait<unsigned int> {
};
template<>
struct VValueTrait<unsigned long> : VNumberTrait<unsigned long> {
};
template<>
struct VValueTrait<unsigned long long> : VNumberTrait<unsigned long long> {
};
template<>
struct VValueTrait<float> : VNumberTrait<float> {
};
template<>
struct VValueTrait<double> : VNumberTrait<double> {
};

/// One character; the empty text stands for character 0, both ways. A text of
/// more than one character is refused.
template<>
struct VValueTrait<char> {
    static std::string Text(char value) { return value == '\0' ? std::string() : std::string(1, value); }

    static bool setValueFromText(char& value, const std::string& text)
    {
        if (text.size() > 1)
            return false;
        value = text.empty() ? '\0' : text[0];
        return true;
    }
};

/// The text verbatim; every text is accepted.
template<>
struct VValueTrait<std::string> {
    static std::string Text(const std::string& value) { return value; }

    static bool setValueFromText(std::string& value, const std::string& text)
    {
        value = text;
        return true;
    }
};

} // namespace Orla
