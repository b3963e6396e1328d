#include <loam/Typename.hpp>

#include <loam/Numbers.hpp>
#include <loam/TypeInfo.hpp>

#include <algorithm>
#include <cstdlib>
#include <cxxabi.h>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Loam {

namespace {

constexpr bool isWord(char c)
{
    // A non-ASCII byte can only be part of an identifier.
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$'
           || static_cast<unsigned char>(c) >= 0x80;
}

void eraseAll(std::string& text, std::string_view part)
{
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at))
        text.erase(at, part.size());
}

// The enclosing scopes that a name shows.
struct Qualification {
    std::size_t scopes; // number of innermost scopes, for each name in the text
    bool standard;      // also show them for names of the standard library
};

// Rewrites the demangled text of a type in the form shown to users.
//
// The text is a sequence of names, declarator symbols and bracketed lists of
// further types. A name is rewritten as soon as its last component is read; if "::"
// follows the parameters of a function, as in "f(int) const::Local", everything read
// so far is a scope.
class PlainName {
public:
    PlainName(std::string_view demangled, Qualification qualification)
        : m_text{demangled}, m_qualification{qualification}
    {
    }

    // Returns null if the form of the text is not recognised.
    std::optional<std::string> text()
    {
        std::string result = type();
        if (m_failed || m_at != m_text.size() || result.empty())
            return std::nullopt;
        return result;
    }

private:
    struct Argument {
        std::string_view full;
        std::string plain;
    };

    char next() const { return m_at < m_text.size() ? m_text[m_at] : '\0'; }
    bool nextIs(std::string_view expected) const { return m_text.substr(m_at, expected.size()) == expected; }

    bool skip(std::string_view expected)
    {
        if (!nextIs(expected))
            return false;
        m_at += expected.size();
        return true;
    }

    std::string_view takeWhile(auto condition)
    {
        const std::size_t start = m_at;
        while (m_at < m_text.size() && condition(m_text[m_at]))
            ++m_at;
        return m_text.substr(start, m_at - start);
    }

    // Reads up to a character that ends a list or a list element.
    std::string type()
    {
        const std::size_t start = m_at;
        std::string result;
        bool blank = false;
        while (m_at < m_text.size() && !m_failed) {
            const char c = next();
            if (c == ',' || c == '>' || c == ')')
                break;
            if (c == ' ') {
                blank = true;
                ++m_at;
                continue;
            }
            if (nextIs("::")) {
                const std::string_view function = m_text.substr(start, m_at - start);
                m_at += 2;
                result = name(function);
            } else if (isWord(c) || c == '{') {
                if (blank && !result.empty() && result.back() != '(')
                    result += ' ';
                result += name({});
            } else if (c == '(') {
                ++m_at;
                result += '(' + join(list(')')) + ')';
            } else {
                result += c;
                ++m_at;
            }
            blank = false;
        }
        return result;
    }

    // Reads the elements up to a closing character, which is skipped.
    std::vector<Argument> list(char close)
    {
        std::vector<Argument> elements;
        while (!m_failed && next() != close) {
            takeWhile([](char c) { return c == ' '; });
            const std::size_t start = m_at;
            std::string plain = type();
            std::string_view full = m_text.substr(start, m_at - start);
            while (full.ends_with(' '))
                full.remove_suffix(1);
            elements.push_back({full, std::move(plain)});
            if (next() != close && !skip(","))
                m_failed = true;
        }
        if (!m_failed)
            ++m_at;
        return elements;
    }

    static std::string join(const std::vector<Argument>& elements)
    {
        std::string result;
        for (const Argument& element : elements) {
            if (&element != &elements.front())
                result += ',';
            result += element.plain;
        }
        return result;
    }

    // Reads a name with its scopes; the outermost scope may be a function.
    std::string name(std::string_view function)
    {
        const std::size_t start = m_at;
        std::vector<std::string> scopes;
        for (;;) {
            const std::size_t componentStart = m_at;
            std::string component = simpleName();
            if (component == "const" || component == "volatile")
                return component; // not a scope in "f() const::Local", but part of one
            const std::string_view scope = m_text.substr(start, componentStart - start);
            const bool standard = scope.starts_with("std::");
            std::vector<Argument> arguments;
            bool isTemplate = false;
            if (skip("<")) {
                isTemplate = true;
                arguments = list('>');
                dropDefaults(arguments, standard ? component : std::string());
            }
            // Programs use these classes through aliases.
            if (isTemplate && scope == "Loam::" && (component == "Strong" || component == "Weak"))
                component += "Ptr";
            if (standard && arguments.size() == 1 && shortenStandardName(component, arguments.front().full))
                isTemplate = false;
            if (isTemplate)
                component += '<' + join(arguments) + '>';
            if (component.empty() || m_failed) {
                m_failed = true;
                return {};
            }
            if (skip("::*")) // a pointer to a member: the name ends here
                return qualified(scopes, standard, component, function) + "::*";
            if (!skip("::"))
                return qualified(scopes, standard, component, function);
            if (!standard || !component.starts_with('_')) // omits inline namespaces like __cxx11
                scopes.push_back(std::move(component));
        }
    }

    std::string qualified(const std::vector<std::string>& scopes, bool standard, const std::string& component,
                          std::string_view function) const
    {
        if (standard && !m_qualification.standard)
            return component;
        const std::size_t shown = std::min(m_qualification.scopes, scopes.size());
        std::string result;
        if (!function.empty() && m_qualification.scopes > scopes.size()) {
            const std::size_t rest = m_qualification.scopes - scopes.size() - 1;
            const auto plain = PlainName(function, {rest, m_qualification.standard}).text();
            result += plain.value_or(std::string(function)) + "::";
        }
        for (std::size_t i = scopes.size() - shown; i != scopes.size(); ++i)
            result += scopes[i] + "::";
        return result + component;
    }

    // Reads one component of a name, without template arguments.
    std::string simpleName()
    {
        std::string result;
        if (next() == '{') { // "{lambda(int)#1}" or "{unnamed type#1}"
            result += takeWhile([](char c) { return c != '(' && c != '}'; });
            if (skip("("))
                result += '(' + join(list(')')) + ')';
            result += takeWhile([](char c) { return c != '}'; });
            if (!skip("}"))
                m_failed = true;
            return result + '}';
        }
        if (skip("~"))
            result += '~';
        result += takeWhile(isWord);
        if (result == "operator") {
            if (skip("()"))
                result += "()";
            else
                result += takeWhile(
                    [](char c) { return std::string_view("<>=!+-*/%^&|~,[]").find(c) != std::string_view::npos; });
            if (nextIs(" <"))
                ++m_at;
        }
        if (!result.empty() && result.front() >= '0' && result.front() <= '9')
            result.erase(std::min(result.find_last_not_of("ul") + 1, result.size())); // 3ul is written 3
        return result;
    }

    // Returns true if a template argument is STANDARD<FIRST> or STANDARD<FIRST, ...>.
    static bool isMadeOf(std::string_view argument, std::string_view standard, std::string_view first)
    {
        const std::string start = "std::" + std::string(standard) + '<' + std::string(first);
        if (!argument.starts_with(start))
            return false;
        const std::string_view rest = argument.substr(start.size());
        return rest == ">" || rest == " >" || rest.starts_with(",");
    }

    // Drops trailing template arguments that are defaults of the standard library.
    static void dropDefaults(std::vector<Argument>& arguments, const std::string& standardName)
    {
        if (standardName == "pair" || standardName == "tuple" || standardName == "variant")
            return; // they have no defaults
        const auto isDefault = [&](std::string_view argument) {
            const std::string_view first = arguments.front().full;
            if (argument.starts_with("std::allocator<std::pair<"))
                return true;
            for (const char* usual : {"allocator", "char_traits", "default_delete", "equal_to", "hash", "less"}) {
                if (isMadeOf(argument, usual, first))
                    return true;
            }
            if (standardName == "stack" || standardName == "queue")
                return isMadeOf(argument, "deque", first);
            return standardName == "priority_queue" && isMadeOf(argument, "vector", first);
        };
        while (arguments.size() > 1 && isDefault(arguments.back().full))
            arguments.pop_back();
    }

    // basic_string<char> becomes string, basic_ofstream<wchar_t> becomes wofstream.
    static bool shortenStandardName(std::string& component, std::string_view character)
    {
        static constexpr struct {
            std::string_view character, prefix;
            bool stringsOnly;
        } forms[] = {
            {"char", "", false},       {"wchar_t", "w", false},   {"char8_t", "u8", true},
            {"char16_t", "u16", true}, {"char32_t", "u32", true},
        };
        constexpr std::string_view basic = "basic_";
        if (!component.starts_with(basic))
            return false;
        const std::string stem = component.substr(basic.size());
        for (const auto& form : forms) {
            if (form.character != character)
                continue;
            if (!form.stringsOnly || stem == "string" || stem == "string_view") {
                component = std::string(form.prefix) + stem;
                return true;
            }
        }
        return false;
    }

    std::string_view m_text;
    Qualification m_qualification;
    std::size_t m_at = 0;
    bool m_failed = false;
};

std::string demangled(const std::type_info& type)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text{abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                           &std::free};
    return text ? text.get() : type.name();
}

std::size_t count(std::string_view text, std::string_view part)
{
    std::size_t result = 0;
    for (auto at = text.find(part); at != std::string_view::npos; at = text.find(part, at + part.size()))
        ++result;
    return result;
}

// Returns the least qualified free name of a type, numbered if all are taken.
template<class IsFree>
std::string defaultName(const std::type_info& type, IsFree isFree)
{
    std::string text = demangled(type);
    eraseAll(text, "(anonymous namespace)::");
    for (auto tag = text.find("[abi:"); tag != std::string::npos; tag = text.find("[abi:", tag))
        text.erase(tag, text.find(']', tag) - tag + 1);

    const std::size_t scopes = count(text, "::");
    for (const bool standard : {false, true}) {
        for (std::size_t shown = 0; shown <= scopes; ++shown) {
            const auto name = PlainName(text, {shown, standard}).text();
            if (name && isFree(*name))
                return *name;
        }
    }
    const std::string full = PlainName(text, {scopes, false}).text().value_or(text);
    if (isFree(full))
        return full;
    for (unsigned number = 2;; ++number) {
        std::string name = full + " #" + numberText(number);
        if (isFree(name))
            return name;
    }
}

class Registry {
public:
    std::string name(const std::type_info& type)
    {
        const std::string key = typeKey(type);
        const std::lock_guard lock(m_mutex);
        Type& entry = m_types[key];
        if (entry.name.empty()) {
            std::string name =
                defaultName(type, [&](const std::string& candidate) { return !m_owners.contains(candidate); });
            m_owners.emplace(name, key);
            entry.name = std::move(name);
        }
        return entry.name;
    }

    bool set(const std::type_info& type, std::string name)
    {
        if (name.empty())
            return false;
        std::string key = typeKey(type);
        const std::lock_guard lock(m_mutex);
        const auto rival = m_owners.find(name);
        const bool taken = rival != m_owners.end() && rival->second != key;
        if (taken && m_types[rival->second].isSet)
            return false;

        // Operations that can throw come first, so an exception changes nothing: an entry
        // without a name has no meaning.
        Type& entry = m_types[key];
        std::string& owner = m_owners[name];
        if (taken)
            m_types.erase(owner);
        owner = std::move(key);
        if (entry.name != name)
            m_owners.erase(entry.name);
        entry.name = std::move(name);
        entry.isSet = true;
        return true;
    }

    bool unset(const std::type_info& type)
    {
        const std::string key = typeKey(type);
        const std::lock_guard lock(m_mutex);
        const auto entry = m_types.find(key);
        if (entry == m_types.end() || !entry->second.isSet)
            return false;
        m_owners.erase(entry->second.name);
        m_types.erase(entry);
        return true;
    }

private:
    struct Type {
        std::string name;
        bool isSet = false;
    };

    std::mutex m_mutex;
    std::unordered_map<std::string, Type> m_types;         // by typeKey
    std::unordered_map<std::string, std::string> m_owners; // typeKey by name
};

Registry& registry()
{
    // Never destroyed: libraries remove their names while the process exits.
    static Registry& theRegistry = *new Registry;
    return theRegistry;
}

} // namespace

std::string Typename(const std::type_info& type)
{
    return registry().name(type);
}

bool setTypename(const std::type_info& type, const std::string& name)
{
    return registry().set(type, name);
}

bool unsetTypename(const std::type_info& type)
{
    return registry().unset(type);
}

} // namespace Loam
