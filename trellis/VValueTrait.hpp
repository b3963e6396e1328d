#pragma once

#include <trellis/Export.hpp>

#include <loam/Numbers.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace Orla {

/// The text form of a value type. A specialisation provides
///
///     static std::string Text(const T& value);
///     static bool setValueFromText(T& value, const std::string& text);
///
/// `setValueFromText` parses the text into an existing value, returns false if the text is
/// refused, and never throws. A refused text may leave a composite value partly changed;
/// callers do not roll back.
template<class T>
struct VValueTrait;

/// Text form of the number types, the same in every locale.
///
/// `Text` returns the shortest form that reads back to the same bits: whole numbers without a
/// point, "inf" and "nan" for special values. Reading skips blanks, takes the leading number
/// and ignores the rest. A text without a number, or an integer out of range, is refused and
/// leaves the value unchanged.
template<class T>
struct VNumberTrait {
    static std::string Text(T value) { return Loam::numberText(value); }
    static bool setValueFromText(T& value, const std::string& text) { return Loam::readNumber(value, text); }
};

template<>
struct VValueTrait<short> : VNumberTrait<short> {};
template<>
struct VValueTrait<int> : VNumberTrait<int> {};
template<>
struct VValueTrait<long> : VNumberTrait<long> {};
template<>
struct VValueTrait<long long> : VNumberTrait<long long> {};
template<>
struct VValueTrait<unsigned short> : VNumberTrait<unsigned short> {};
template<>
struct VValueTrait<unsigned int> : VNumberTrait<unsigned int> {};
template<>
struct VValueTrait<unsigned long> : VNumberTrait<unsigned long> {};
template<>
struct VValueTrait<unsigned long long> : VNumberTrait<unsigned long long> {};
template<>
struct VValueTrait<float> : VNumberTrait<float> {};
template<>
struct VValueTrait<double> : VNumberTrait<double> {};

/// A truth value, written "true" or "false". Reads also "on", "yes" and "1", and "off", "no" and
/// "0", in lower case and with blanks around them. Any other text is refused and leaves the value
/// unchanged.
template<>
struct VValueTrait<bool> {
    static std::string Text(bool value) { return value ? "true" : "false"; }

    static bool setValueFromText(bool& value, const std::string& text)
    {
        const char* const end = text.data() + text.size();
        const char* const begin = Loam::skipBlanks(text.data(), end);
        std::string_view word(begin, static_cast<std::size_t>(end - begin));
        while (!word.empty() && Loam::skipBlanks(&word.back(), end) == end)
            word.remove_suffix(1);
        const bool isTrue = word == "true" || word == "on" || word == "yes" || word == "1";
        if (!isTrue && word != "false" && word != "off" && word != "no" && word != "0")
            return false;
        value = isTrue;
        return true;
    }
};

/// One character. An empty text means character 0, in both directions. A longer text is
/// refused.
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
