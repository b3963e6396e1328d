#include <tarn/commands/Commands.hpp>

#include <tarn/commands/ExitStatus.hpp>
#include <tarn/commands/Templates.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/text/ReadFile.hpp>
#include <tarn/types/TypeCatalogue.hpp>

#include <trellis/VObjectCreator.hpp>

#include <loam/Ascii.hpp>
#include <loam/FileError.hpp>
#include <loam/OutputFile.hpp>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Tarn {

namespace {

constexpr char SampleLibrary[] = "samplelibrary";
constexpr char SampleObject[] = "SampleObject";
constexpr char Build[] = "CMakeLists.txt";

// Names that would not compile, or not mean what they seem: of C++, of the framework, and of targets
// that CMake reserves.
constexpr std::string_view reserved[] = {"alignas",
                                         "alignof",
                                         "and",
                                         "and_eq",
                                         "asm",
                                         "auto",
                                         "bitand",
                                         "bitor",
                                         "bool",
                                         "break",
                                         "case",
                                         "catch",
                                         "char",
                                         "char8_t",
                                         "char16_t",
                                         "char32_t",
                                         "class",
                                         "compl",
                                         "concept",
                                         "const",
                                         "consteval",
                                         "constexpr",
                                         "constinit",
                                         "const_cast",
                                         "continue",
                                         "co_await",
                                         "co_return",
                                         "co_yield",
                                         "decltype",
                                         "default",
                                         "delete",
                                         "do",
                                         "double",
                                         "dynamic_cast",
                                         "else",
                                         "enum",
                                         "explicit",
                                         "export",
                                         "extern",
                                         "false",
                                         "float",
                                         "for",
                                         "friend",
                                         "goto",
                                         "if",
                                         "inline",
                                         "int",
                                         "long",
                                         "mutable",
                                         "namespace",
                                         "new",
                                         "noexcept",
                                         "not",
                                         "not_eq",
                                         "nullptr",
                                         "operator",
                                         "or",
                                         "or_eq",
                                         "private",
                                         "protected",
                                         "public",
                                         "register",
                                         "reinterpret_cast",
                                         "requires",
                                         "return",
                                         "short",
                                         "signed",
                                         "sizeof",
                                         "static",
                                         "static_assert",
                                         "static_cast",
                                         "struct",
                                         "switch",
                                         "template",
                                         "this",
                                         "thread_local",
                                         "throw",
                                         "true",
                                         "try",
                                         "typedef",
                                         "typeid",
                                         "typename",
                                         "union",
                                         "unsigned",
                                         "using",
                                         "virtual",
                                         "void",
                                         "volatile",
                                         "wchar_t",
                                         "while",
                                         "xor",
                                         "xor_eq",
                                         "main",
                                         "std",
                                         "testing",
                                         "linux",
                                         "unix",
                                         "registered",
                                         "Gyre",
                                         "Loam",
                                         "Orla",
                                         "Tarn",
                                         "all",
                                         "clean",
                                         "edit_cache",
                                         "help",
                                         "install",
                                         "list_install_components",
                                         "package",
                                         "package_source",
                                         "rebuild_cache",
                                         "standard",
                                         "test"};

bool isLower(char c) noexcept
{
    return c >= 'a' && c <= 'z';
}

// Macros have names without lower-case letters; "__" belongs to the compiler.
bool isIdentifier(std::string_view name) noexcept
{
    return !name.empty() && Loam::isLetter(name.front()) && std::ranges::any_of(name, isLower)
           && std::ranges::all_of(name, [](char c) { return Loam::isLetter(c) || Loam::isDigit(c) || c == '_'; })
           && name.find("__") == std::string_view::npos;
}

void requireName(const std::string& name)
{
    constexpr std::size_t MostCharacters = 100; // file names are longer than names
    const std::string found = "the name " + inQuotes(name);
    if (!isIdentifier(name) || name.size() > MostCharacters)
        throw UsageError{found
                         + " is refused, expected letters, digits and single underscores that begin with a letter and "
                           "contain a lower-case letter, 100 characters at most"};
    if (std::ranges::find(reserved, name) != std::end(reserved))
        throw UsageError{found + " has a meaning of its own in C++, CMake or the framework, expected another one"};
}

void requireNewType(const std::string& type)
{
    requireName(type);
    if (isLower(type.front()))
        throw UsageError{"the name " + inQuotes(type) + " is refused, expected one that begins with a capital letter"};
    const TypeCatalogue catalogue{std::vector<std::string>{}};
    const std::vector<std::string> types = Orla::VObjectCreator::names();
    if (std::ranges::find(types, type) != types.end())
        throw UsageError{"an object type " + inQuotes(type) + " exists already, expected another name"};
    if (!catalogue.valueTypes(type).empty())
        throw UsageError{"a value type " + inQuotes(type) + " exists already, expected another name"};
}

// Returns the text with both names replaced. What is inserted is not searched again.
std::string filled(std::string_view text, const std::string& library, const std::string& object)
{
    std::string result;
    while (!text.empty()) {
        if (text.starts_with(SampleLibrary)) {
            result += library;
            text.remove_prefix(std::size(SampleLibrary) - 1);
        } else if (text.starts_with(SampleObject)) {
            result += object;
            text.remove_prefix(std::size(SampleObject) - 1);
        } else {
            result += text.front();
            text.remove_prefix(1);
        }
    }
    return result;
}

std::string nameOf(const Template& file, const std::string& library, const std::string& object)
{
    // Most tools skip hidden files, so the template is not hidden.
    return file.name == "gitignore" ? ".gitignore" : filled(file.name, library, object);
}

/// Files and folders that are removed again unless `keep` is called.
class NewFiles {
public:
    NewFiles() = default;
    NewFiles(const NewFiles&) = delete;
    NewFiles& operator=(const NewFiles&) = delete;

    ~NewFiles()
    {
        std::error_code ignored;
        std::for_each(m_paths.rbegin(), m_paths.rend(),
                      [&](const std::string& path) { std::filesystem::remove(path, ignored); });
    }

    /// \throw Loam::FileError, also if the folder exists.
    void addFolder(const std::string& path)
    {
        if (::mkdir(path.c_str(), 0777) != 0)
            throw Loam::FileError{"cannot create the folder " + printable(path), errno};
        m_paths.push_back(path);
    }

    /// \throw Loam::FileError, also if the file exists.
    void addFile(const std::string& path, const std::string& text)
    {
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file < 0)
            throw Loam::FileError{"cannot create " + printable(path), errno};
        m_paths.push_back(path);
        ::close(file);
        Loam::OutputFile output{path};
        output.write(text);
        output.commit();
    }

    void keep() noexcept { m_paths.clear(); }

private:
    std::vector<std::string> m_paths;
};

void createLibrary(const std::string& library, const StandardStreams& streams)
{
    requireName(library);
    std::string object = library;
    if (isLower(object.front()))
        object.front() = static_cast<char>(object.front() - 'a' + 'A');
    requireNewType(object);

    NewFiles files;
    files.addFolder(library);
    for (const Template& file : libraryTemplates())
        files.addFile(library + '/' + nameOf(file, library, object), filled(file.text, library, object));
    print(streams, "created " + library + " with the object type " + object + "; see " + library + "/README.md\n");
    files.keep();
}

// Inserts a line after the first line that is `mark`. Returns false if no line is.
bool insertAfter(std::string& text, const std::string& mark, const std::string& line)
{
    const std::size_t at = text.find('\n' + mark + '\n');
    if (at == std::string::npos)
        return false;
    text.insert(at + mark.size() + 2, line + '\n');
    return true;
}

void createObject(const std::string& object, const StandardStreams& streams)
{
    requireNewType(object);
    std::error_code error;
    std::string build;
    if (std::filesystem::exists(Build, error))
        build = readFile(Build);
    if (!insertAfter(build, "    # Objects:", "    " + object + ".cpp")
        || !insertAfter(build, "    # Tests:", "    " + object + "Test.cpp"))
        throw UsageError{"the working folder has no CMakeLists.txt with the lines \"# Objects:\" and \"# Tests:\", "
                         "expected a folder that tarn new library made"};

    NewFiles files;
    for (const Template& file : libraryTemplates()) {
        if (file.name.starts_with(SampleObject))
            files.addFile(nameOf(file, {}, object), filled(file.text, {}, object));
    }
    // Last, because it replaces the old file.
    Loam::OutputFile output{Build};
    output.write(build);
    print(streams, "created " + object + ".cpp and " + object + "Test.cpp\n");
    output.commit();
    files.keep();
}

int performNew(const Arguments& arguments, const StandardStreams& streams)
{
    const std::string& kind = arguments.names[0];
    if (kind == "library")
        createLibrary(arguments.names[1], streams);
    else if (kind == "object")
        createObject(arguments.names[1], streams);
    else
        throw UsageError{"found " + inQuotes(kind) + ", expected library or object"};
    return Fine;
}

} // namespace

const Command& newCommand()
{
    static const Command command{
        .name = "new",
        .nameShape = "KIND NAME",
        .fewestNames = 2,
        .mostNames = 2,
        .summary = "Creates the source files of an object library or of an object.",
        .help = R"("tarn new library NAME" creates the folder NAME, which builds as it is: an object, its
test, a network that uses it, and a README.md with the commands. The object type has the
name of the library, with a capital.

"tarn new object NAME", in such a folder, adds the files NAME.cpp and NAMETest.cpp and
lists them in CMakeLists.txt.

A name consists of letters, digits and single underscores, and begins with a letter; that
of an object type begins with a capital. It may not be a word of C++ or the name of a type
of the standard library. Files that exist are not changed, except CMakeLists.txt, and a
creation that fails leaves nothing behind.
)",
        .options = {},
        .libraryFolders = {},
        .perform = &performNew,
    };
    return command;
}

} // namespace Tarn
