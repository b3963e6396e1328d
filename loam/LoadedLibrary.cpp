#include <loam/LoadedLibrary.hpp>

#include <algorithm>
#include <string_view>

#include <dlfcn.h>
#include <link.h>

namespace Loam {

namespace {

using Parts = std::vector<const link_map*>;

// Returns the text at `offset` of the loaded file's table of strings.
const char* dynamicText(const link_map& file, ElfW(Xword) offset)
{
    ElfW(Addr) table = 0;
    for (const ElfW(Dyn)* entry = file.l_ld; entry && entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_STRTAB)
            table = entry->d_un.d_ptr;
    }
    // Some systems leave the address relative to the file's.
    if (table < file.l_addr)
        table += file.l_addr;
    return reinterpret_cast<const char*>(table) + offset;
}

bool hasName(const link_map& file, std::string_view name)
{
    for (const ElfW(Dyn)* entry = file.l_ld; entry && entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_SONAME && name == dynamicText(file, entry->d_un.d_val))
            return true;
    }
    const std::string_view path = file.l_name;
    return path == name || path.substr(path.rfind('/') + 1) == name;
}

// Adds `file` and, directly or indirectly, the files that it needs.
void addWithNeeds(const link_map* first, const link_map* file, Parts& parts)
{
    parts.push_back(file);
    for (std::size_t next = parts.size() - 1; next < parts.size(); ++next) {
        for (const ElfW(Dyn)* entry = parts[next]->l_ld; entry && entry->d_tag != DT_NULL; ++entry) {
            if (entry->d_tag != DT_NEEDED)
                continue;
            const std::string_view name = dynamicText(*parts[next], entry->d_un.d_val);
            const link_map* needed = first;
            while (needed && !hasName(*needed, name))
                needed = needed->l_next;
            if (needed && std::ranges::find(parts, needed) == parts.end())
                parts.push_back(needed);
        }
    }
}

// Returns true if a file outside of `parts` needs `part`.
bool isNeededElsewhere(const link_map* first, const link_map& part, const Parts& parts)
{
    for (const link_map* file = first; file; file = file->l_next) {
        if (std::ranges::find(parts, file) != parts.end())
            continue;
        for (const ElfW(Dyn)* entry = file->l_ld; entry && entry->d_tag != DT_NULL; ++entry) {
            if (entry->d_tag == DT_NEEDED && hasName(part, dynamicText(*file, entry->d_un.d_val)))
                return true;
        }
    }
    return false;
}

// Returns the file and those that it needs, without those that stay when it is unloaded: what the
// program needs, or other loaded files. The program may be an interpreter, which needs none of
// them.
Parts partsOf(void* handle)
{
    link_map* file = nullptr;
    if (::dlinfo(handle, RTLD_DI_LINKMAP, &file) != 0 || !file)
        return {};
    const link_map* program = file;
    while (program->l_prev)
        program = program->l_prev;
    Parts permanent;
    addWithNeeds(program, program, permanent);
    Parts parts;
    addWithNeeds(program, file, parts);
    for (const link_map* part : parts) {
        const bool isKnown = part == file || std::ranges::find(permanent, part) != permanent.end();
        if (!isKnown && isNeededElsewhere(program, *part, parts))
            addWithNeeds(program, part, permanent);
    }
    std::erase_if(parts, [&](const link_map* part) { return std::ranges::find(permanent, part) != permanent.end(); });
    return parts;
}

} // namespace

LoadedLibrary::LoadedLibrary(void* handle) : m_handle{handle}, m_parts{partsOf(handle)}
{
}

bool LoadedLibrary::contains(const void* address) const noexcept
{
    Dl_info info{};
    void* file = nullptr;
    return ::dladdr1(address, &info, &file, RTLD_DL_LINKMAP) != 0 && std::ranges::find(m_parts, file) != m_parts.end();
}

void LoadedLibrary::close() noexcept
{
    ::dlclose(m_handle);
    m_parts.clear();
}

} // namespace Loam
