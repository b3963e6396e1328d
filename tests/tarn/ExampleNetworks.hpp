#pragma once

#include "support/TestFolder.hpp"

#include <filesystem>
#include <string>
#include <vector>

/// Returns the paths of the networks among the examples.
inline std::vector<std::string> exampleNetworks()
{
    std::vector<std::string> networks;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(EXAMPLES_FOLDER)) {
        const std::string path = entry.path().string();
        if (path.ends_with(".toml") && contentOf(path).find("[[object]]") != std::string::npos)
            networks.push_back(path);
    }
    EXPECT_FALSE(networks.empty());
    return networks;
}
