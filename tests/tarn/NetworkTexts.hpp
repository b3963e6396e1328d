#pragma once

#include "tarn/TarnProcess.hpp"

#include <string>
#include <vector>

// Fragments of network files, and a function to run them.

inline const std::string networkHead = "format = 1\nlibraries = ['testobjects']\n";

inline std::string object(const std::string& name, const std::string& type, const std::string& more = {})
{
    return "[[object]]\nname = '" + name + "'\ntype = '" + type + "'\n" + more;
}

inline std::string column(const std::string& title, const std::string& value)
{
    return "[[column]]\ntitle = '" + title + "'\nvalue = '" + value + "'\n";
}

/// A clock that runs from 0 to 1 in steps of 0.25.
inline const std::string clockInQuarters = object("clock", "GlobalTime", "set = { time = '0[0,1]@0.25' }\n");

/// Runs a network and returns the result, with the table in `out`. Messages name the
/// network net.toml.
inline ProcessResult evaluate(const std::string& network, std::vector<std::string> options = {},
                              const std::vector<std::string>& environment = {})
{
    const TestFolder folder;
    folder.write("net.toml", networkHead + network);
    options.insert(options.begin(), {"run", "net.toml", "--table=-"});
    return runTarn(options, {.environment = environment, .shell = "cd '" + folder.path() + "'"});
}

/// Compares two networks, which messages and results name a.toml and b.toml.
inline ProcessResult compare(const std::string& a, const std::string& b, std::vector<std::string> options = {})
{
    const TestFolder folder;
    folder.write("a.toml", networkHead + a);
    folder.write("b.toml", networkHead + b);
    options.insert(options.begin(), {"diff", "a.toml", "b.toml"});
    return runTarn(options, {{}, "cd '" + folder.path() + "'"});
}
