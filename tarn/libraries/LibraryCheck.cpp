#include <tarn/libraries/LibraryCheck.hpp>

#include <tarn/text/Messages.hpp>

#include <loam/InterfaceVersion.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <gelf.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Tarn {

namespace {

namespace fs = std::filesystem;
using Loam::Failure;
using Loam::Result;

// The note that fathom_object_library adds.
constexpr char StampName[] = "fathom";
constexpr GElf_Word StampType = 1;

constexpr std::string_view OwnLibraries[] = {"fathom", "trellis", "gable", "loam"};

/// A file in the format of the system's loader.
class ElfFile {
public:
    explicit ElfFile(const std::string& path)
    {
        // A pipe must not block.
        m_descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (m_descriptor < 0 || ::fstat(m_descriptor, &m_status) != 0) {
            m_error = errno;
            return;
        }
        ::elf_version(EV_CURRENT);
        if (S_ISREG(m_status.st_mode))
            m_elf.reset(::elf_begin(m_descriptor, ELF_C_READ, nullptr));
    }

    ~ElfFile()
    {
        m_elf.reset();
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }

    ElfFile(const ElfFile&) = delete;
    ElfFile& operator=(const ElfFile&) = delete;

    /// Reads the headers. Fails unless the file is complete; the loader would map pages that do
    /// not exist.
    Result<void> read()
    {
        if (m_error != 0)
            return Failure{"cannot read it: " + std::generic_category().message(m_error)};
        std::size_t count = 0;
        if (!m_elf || ::elf_kind(m_elf.get()) != ELF_K_ELF || !::gelf_getehdr(m_elf.get(), &m_header))
            return Failure{"the file is not a shared library"};
        std::uint64_t size = m_header.e_shoff + std::uint64_t{m_header.e_shnum} * m_header.e_shentsize;
        if (size < m_header.e_shoff || ::elf_getphdrnum(m_elf.get(), &count) != 0)
            return Failure{"the file is damaged: " + errorText()};
        for (std::size_t i = 0; i < count; ++i) {
            GElf_Phdr part;
            if (!::gelf_getphdr(m_elf.get(), static_cast<int>(i), &part))
                return Failure{"the file is damaged: " + errorText()};
            if (part.p_filesz > ~part.p_offset)
                return Failure{"the file is damaged: a part ends beyond any file"};
            size = std::max(size, part.p_offset + part.p_filesz);
            m_parts.push_back(part);
        }
        if (size > static_cast<std::uint64_t>(m_status.st_size))
            return Failure{"the file is truncated: found " + std::to_string(m_status.st_size) + " bytes, expected "
                           + std::to_string(size)};
        return {};
    }

    /// Returns the interface version of the stamp; nothing if the file has none.
    std::optional<unsigned> interfaceVersion() const
    {
        for (const GElf_Phdr& part : m_parts) {
            if (part.p_type != PT_NOTE)
                continue;
            Elf_Data* const data = ::elf_getdata_rawchunk(m_elf.get(), static_cast<std::int64_t>(part.p_offset),
                                                          part.p_filesz, part.p_align == 8 ? ELF_T_NHDR8 : ELF_T_NHDR);
            GElf_Nhdr note;
            std::size_t name = 0;
            std::size_t content = 0;
            for (std::size_t next = 0; data && (next = ::gelf_getnote(data, next, &note, &name, &content)) > 0;) {
                const char* const bytes = static_cast<const char*>(data->d_buf);
                std::uint32_t version = 0;
                if (note.n_type == StampType && note.n_namesz == sizeof StampName
                    && std::memcmp(bytes + name, StampName, sizeof StampName) == 0 && note.n_descsz == sizeof version) {
                    std::memcpy(&version, bytes + content, sizeof version);
                    return version;
                }
            }
        }
        return std::nullopt;
    }

    /// Returns the names of the libraries that the file needs.
    std::vector<std::string> needs() const
    {
        std::vector<GElf_Xword> offsets;
        GElf_Addr textAddress = 0;
        GElf_Xword textSize = 0;
        for (const GElf_Phdr& part : m_parts) {
            Elf_Data* const data = part.p_type == PT_DYNAMIC ? chunk(part.p_offset, part.p_filesz, ELF_T_DYN) : nullptr;
            GElf_Dyn entry;
            for (int i = 0; data && ::gelf_getdyn(data, i, &entry) && entry.d_tag != DT_NULL; ++i) {
                if (entry.d_tag == DT_NEEDED)
                    offsets.push_back(entry.d_un.d_val);
                else if (entry.d_tag == DT_STRTAB)
                    textAddress = entry.d_un.d_ptr;
                else if (entry.d_tag == DT_STRSZ)
                    textSize = entry.d_un.d_val;
            }
        }
        const std::string_view texts = textsAt(textAddress, textSize);
        std::vector<std::string> names;
        for (const GElf_Xword offset : offsets) {
            if (offset < texts.size())
                names.emplace_back(texts.substr(offset, texts.find('\0', offset) - offset));
        }
        return names;
    }

private:
    struct Close {
        void operator()(Elf* elf) const noexcept { ::elf_end(elf); }
    };

    static std::string errorText()
    {
        const char* const text = ::elf_errmsg(-1);
        return text ? text : "its headers do not fit together";
    }

    Elf_Data* chunk(GElf_Off offset, GElf_Xword size, Elf_Type type) const
    {
        return ::elf_getdata_rawchunk(m_elf.get(), static_cast<std::int64_t>(offset), size, type);
    }

    std::string_view textsAt(GElf_Addr address, GElf_Xword size) const
    {
        for (const GElf_Phdr& part : m_parts) {
            if (part.p_type != PT_LOAD || address < part.p_vaddr || address - part.p_vaddr >= part.p_filesz)
                continue;
            const GElf_Off start = address - part.p_vaddr;
            const Elf_Data* const data =
                chunk(part.p_offset + start, std::min(size, part.p_filesz - start), ELF_T_BYTE);
            return data ? std::string_view(static_cast<const char*>(data->d_buf), data->d_size) : std::string_view();
        }
        return {};
    }

    int m_descriptor = -1;
    int m_error = 0;
    struct stat m_status {};
    std::unique_ptr<Elf, Close> m_elf;
    GElf_Ehdr m_header{};
    std::vector<GElf_Phdr> m_parts;
};

std::string interfaceMismatch(unsigned found)
{
    return "it was built for version " + std::to_string(found) + " of the binary interface, expected version "
           + std::to_string(Loam::InterfaceVersion);
}

// Returns the name that a library of this framework has in this program if `needed` is another
// version of it, else an empty text.
std::string expectedInsteadOf(const std::string& needed)
{
    for (const std::string_view library : OwnLibraries) {
        const std::string start = "lib" + std::string(library) + ".so.";
        const std::string own = start + std::to_string(Loam::InterfaceVersion);
        if (needed.starts_with(start) && needed != own)
            return own;
    }
    return {};
}

// Checks the file and those beside it that it needs, except for those in `checked`.
Result<void> check(const fs::path& path, bool mustHaveStamp, std::vector<fs::path>& checked)
{
    checked.push_back(path);
    ElfFile file{path.string()};
    if (Result<void> isComplete = file.read(); !isComplete)
        return isComplete;
    const std::optional<unsigned> version = file.interfaceVersion();
    if (!version && mustHaveStamp)
        return Failure{"the file is not an object library: it lacks the note with the version of the binary interface "
                       "that the CMake function fathom_object_library adds"};
    if (version && *version != Loam::InterfaceVersion)
        return Failure{interfaceMismatch(*version)};
    for (const std::string& needed : file.needs()) {
        if (const std::string expected = expectedInsteadOf(needed); !expected.empty())
            return Failure{"it needs " + printable(needed) + ", expected " + expected};
        const fs::path beside = path.parent_path() / needed;
        std::error_code error;
        if (needed.find('/') != std::string::npos || !fs::exists(beside, error)
            || std::ranges::find(checked, beside) != checked.end())
            continue;
        if (const Result<void> fits = check(beside, false, checked); !fits)
            return Failure{"it needs " + printable(beside.string()) + ": " + fits.reason()};
    }
    return {};
}

} // namespace

Result<void> checkLibraryFile(const std::string& path)
{
    std::vector<fs::path> checked;
    return check(path, true, checked);
}

} // namespace Tarn
