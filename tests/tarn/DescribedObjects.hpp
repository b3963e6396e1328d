#pragma once

#include "tarn/NetworkTexts.hpp"

// Networks of the library describedobjects, whose types describe their inputs.

/// The environment in which the program finds the library describedobjects.
inline const std::vector<std::string> describedLibrary{"TARN_LIBRARIES=" ODD_LIBRARIES_FOLDER};
inline const std::string describedHead = "format = 1\nlibraries = ['describedobjects']\n";

/// Runs a command on a network of the library describedobjects, which messages name net.toml.
inline ProcessResult runDescribed(const std::string& command, const std::string& network,
                                  std::vector<std::string> options = {})
{
    const TestFolder folder;
    folder.write("net.toml", describedHead + network);
    options.insert(options.begin(), {command, "net.toml"});
    return runTarn(options, {.environment = describedLibrary, .shell = "cd '" + folder.path() + "'"});
}
