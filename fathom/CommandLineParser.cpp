#include <fathom/CommandLineParser.hpp>

#include <loam/Environment.hpp>
#include <loam/FileInfo.hpp>
#include <loam/StringUtil.hpp>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace Orla {

namespace {

// Not printf: the texts come from outside and may contain any byte.
void print(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
}

std::list<std::string> findDataDirs()
{
    std::list<std::string> directories;
    if (std::string current = Loam::getCurrentDir(); !current.empty())
        directories.push_back(std::move(current));
    directories.push_back(Loam::getExecutableDir() + "/../../data");
    std::string further = Loam::getEnvString("TARN_DATA");
    std::ranges::replace(further, '\\', '/');
    Loam::StringUtil::split(further, directories, ';', true);
    return directories;
}

} // namespace

CommandLineParser::CommandLineParser()
{
    // The result is not kept: the program's directory is looked up once before any handler
    // runs.
    static_cast<void>(Loam::getExecutableDir());
}

CommandLineParser::~CommandLineParser() = default;

bool CommandLineParser::processOption(const std::string& option)
{
    print("Ignored option '" + option + "' -> define own overload to process\n");
    return true;
}

bool CommandLineParser::processArgument(const std::string& argument)
{
    print("Ignored argument '" + argument + "' -> define own overload to process\n");
    return true;
}

bool CommandLineParser::process(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        const char* const text = argv[i];
        if (!text)
            continue;
        const bool goesOn = *text == '-' ? processOption(text + 1) : processArgument(*text == '+' ? text + 1 : text);
        if (!goesOn)
            return false;
    }
    return true;
}

const std::list<std::string>& CommandLineParser::getDataDirs()
{
    static const std::list<std::string> theDirectories = findDataDirs();
    return theDirectories;
}

std::string CommandLineParser::resolvePath(const std::string& name)
{
    for (const std::string& directory : getDataDirs()) {
        const std::string candidate = directory + "/" + name;
        print("Checking file '" + candidate + "'");
        if (Loam::FileInfo(candidate).exists()) {
            print("... valid\n");
            return candidate;
        }
        print("... invalid\n");
    }
    return name;
}

} // namespace Orla
