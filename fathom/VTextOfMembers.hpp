#pragma once

#include <fathom/Double.hpp>

#include <loam/Numbers.hpp>

#include <trellis/VValueTrait.hpp>

#include <cstddef>
#include <string>
#include <string_view>

namespace Orla {

namespace Detail {

// Number traits ignore the text after a number, which would hide a mistake between two members.
template<class M>
bool readMember(M& member, const std::string& text)
{
    if constexpr (Loam::Number<M>) {
        const char* const end = text.data() + text.size();
        const char* const rest = Loam::readNumber(text.data(), end, member);
        return rest && Loam::skipBlanks(rest, end) == end;
    } else {
        return VValueTrait<M>::setValueFromText(member, text);
    }
}

} // namespace Detail

/// The text form of a class with data members: their texts in order, with \p Separator between
/// them. A value type derives its trait from it:
///
///     template<>
///     struct Orla::VValueTrait<Tempo> : Orla::VTextOfMembers<Tempo, '/', &Tempo::beats, &Tempo::perBar> {
///         static bool isValid(const Tempo& tempo) { return tempo.beats >= 0; }
///     };
///
/// `isValid` may be missing. The text of each member but the last must not contain the separator.
template<class T, char Separator, auto... Members>
struct VTextOfMembers {
    static_assert(sizeof...(Members) > 0, "a text needs at least one member");

    static std::string Text(const T& value)
    {
        std::string text;
        ((text += textOf(value.*Members), text += Separator), ...);
        text.pop_back();
        return text;
    }

    /// Returns false and leaves \p value unchanged unless the text has all members, each is
    /// accepted by its type, numbers are followed by blanks at most, and `isValid` accepts the
    /// result.
    static bool setValueFromText(T& value, const std::string& text)
    {
        T read = value;
        std::string_view rest = text;
        std::size_t left = sizeof...(Members);
        if (!(readNext(read.*Members, rest, --left) && ...))
            return false;
        if constexpr (requires { VValueTrait<T>::isValid(read); }) {
            if (!VValueTrait<T>::isValid(read))
                return false;
        }
        value = read;
        return true;
    }

private:
    template<class M>
    static std::string textOf(const M& member)
    {
        return VValueTrait<M>::Text(member);
    }

    // Reads a member, after which `left` more follow.
    template<class M>
    static bool readNext(M& member, std::string_view& rest, std::size_t left)
    {
        const std::size_t end = left == 0 ? rest.size() : rest.find(Separator);
        if (end == std::string_view::npos)
            return false;
        const bool accepted = Detail::readMember(member, std::string(rest.substr(0, end)));
        rest.remove_prefix(left == 0 ? end : end + 1);
        return accepted;
    }
};

} // namespace Orla
