#include <earth/DataFile.hpp>

#include <fathom/CommandLineParser.hpp>

#include <loam/FileInfo.hpp>

#include <filesystem>
#include <system_error>

namespace Earth {

std::string findData(const std::string& name)
{
    std::error_code error;
    if (std::filesystem::exists(name, error))
        return name;
    for (const std::string& folder : Orla::CommandLineParser::getDataDirs()) {
        if (std::string file = folder + '/' + name; Loam::FileInfo{file}.exists())
            return file;
    }
    return name;
}

} // namespace Earth
