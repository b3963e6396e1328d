#include <loam/Typename.hpp>

#include <loam/Ascii.hpp>
#include <loam/Numbers.hpp>
#include <loam/TypeInfo.hpp>

#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <mutex>
#include <new>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Loam {

namespace {

void replaceAll(std::string& text, std::string_view part, std::string_view replacement)
{
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + replacement.size()))
        text.replace(at, part.size(), replacement);
}

constexpr bool isWord(char c)
{
    return isDigit(c) || isLetter(c) || c == '_';
}

// Removes the scopes of all names in a demangled text, the blanks between template arguments,
// and the suffixes of numbers, which depend on the compiler: 3, 3u or 3ul.
std::string withoutScopes(std::string_view full)
{
    std::string plain;
    std::vector<std::size_t> starts{0}; // of the current name, one per open bracket
    bool inNumber = false;
    for (std::size_t i = 0; i < full.size(); ++i) {
        const char c = full[i];
        if (full.substr(i, 2) == "::") {
            plain.resize(starts.back());
            ++i;
            continue;
        }
        inNumber = isDigit(c) ? inNumber || i == 0 || !isWord(full[i - 1]) : inNumber && (c == 'u' || c == 'l');
        if (inNumber && !isDigit(c))
            continue;
        if (c == ' ' && (plain.ends_with(',') || full.substr(i + 1, 1) == ">"))
            continue;
        plain += c;
        if ((c == '>' || c == ')') && starts.size() > 1)
            starts.pop_back();
        else if (c == '<' || c == '(')
            starts.push_back(plain.size());
        else if (c == ',' || c == ' ')
            starts.back() = plain.size();
    }
    return plain;
}

// Returns the plain name of a type as programs write it.
std::string plainName(std::string full)
{
    // Programs use these classes through aliases.
    replaceAll(full, "Loam::Strong<", "Loam::StrongPtr<");
    replaceAll(full, "Loam::Weak<", "Loam::WeakPtr<");
    std::string plain = withoutScopes(full);
    replaceAll(plain, "basic_string<char,char_traits<char>,allocator<char>>", "string");
    return plain;
}

class Registry {
public:
    std::string name(const std::type_info& type)
    {
        const std::string key = typeKey(type);
        const std::lock_guard lock(m_mutex);
        Type& entry = m_types[key];
        if (entry.name.empty()) {
            std::string name = freeName(type);
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

    bool unset(const std::type_info& type) { return erase(typeKey(type), true); }

    void release(const std::type_info& type)
    {
        const std::string key = typeKey(type);
        if (key != type.name()) // has an address, so the type is local to a source file
            erase(key, false);
    }

private:
    struct Type {
        std::string name;
        bool isSet = false;
    };

    // Removes the name of a type if it was set, or if it was not.
    bool erase(const std::string& key, bool isSet)
    {
        const std::lock_guard lock(m_mutex);
        const auto entry = m_types.find(key);
        if (entry == m_types.end() || entry->second.isSet != isSet)
            return false;
        m_owners.erase(entry->second.name);
        m_types.erase(entry);
        return true;
    }

    std::string freeName(const std::type_info& type) const
    {
        const std::string full = qualifiedTypename(type);
        std::string name = plainName(full);
        if (name.empty() || m_owners.contains(name))
            name = full;
        for (unsigned number = 2; m_owners.contains(name); ++number)
            name = full + " #" + numberText(number);
        return name;
    }

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

std::string qualifiedTypename(const std::type_info& type)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text{abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                           &std::free};
    return text ? text.get() : type.name();
}

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

void releaseTypename(const std::type_info& type) noexcept
{
    try {
        registry().release(type);
    } catch (const std::bad_alloc&) { // a later type of this name gets a longer one
    }
}

} // namespace Loam
