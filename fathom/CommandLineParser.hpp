#pragma once

#include <fathom/Export.hpp>

#include <list>
#include <string>

namespace Orla {

/// Base class for an application's start-up code: passes each program argument to a handler
/// that the application overrides, and finds data files.
///
/// An argument that begins with "-" is an option; any other is a plain argument. A leading "+"
/// marks a plain argument that would otherwise look like an option. Exactly one of these
/// characters is removed: `--fast` is the option `-fast`, and a lone "-" is the empty option.
class FATHOM_API CommandLineParser {
public:
    CommandLineParser();
    virtual ~CommandLineParser();

    /// Handles \p option, which is passed without its leading "-". Returning false stops the
    /// parser. The default prints to standard output that the option is ignored, and returns
    /// true.
    virtual bool processOption(const std::string& option);

    /// Handles \p argument, which is passed without its leading "+", if any. Returning false
    /// stops the parser. The default prints to standard output that the argument is ignored,
    /// and returns true.
    virtual bool processArgument(const std::string& argument);

    /// Passes the arguments of `main`, except the program's name, to the handlers in order.
    /// Stops and returns false when a handler returns false. Skips null entries.
    bool process(int argc, char** argv);

    /// Returns the directories to search for data files, in this order: the working directory;
    /// `../../data` relative to the program's directory; the directories in the environment
    /// variable `TARN_DATA`, separated by ";", with "\" converted to "/". The list is made on
    /// first use and does not change afterwards. The directories need not exist.
    static const std::list<std::string>& getDataDirs();

    /// Returns the path of the first file \p name in the data directories, or \p name
    /// unchanged if they do not contain it. Ignores directories of that name. A name that
    /// begins with "/" is looked up below the data directories, too. Prints each lookup to
    /// standard output.
    std::string resolvePath(const std::string& name);
};

} // namespace Orla
