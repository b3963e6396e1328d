#pragma once

#include <fathom/Export.hpp>

#include <list>
#include <string>

namespace Orla {

/// Base of an application's start-up code: walks the program's arguments, hands
/// each to a handler that the application overrides, and finds data files.
///
/// An argument is an option if it begins with "-". What else there is, is a plain
/// argument; "+" in front of it marks one that would look like an option
/// otherwise. Exactly one of these characters is taken away: `--fast` is the
/// option `-fast`, and a lone "-" is the empty option.
class FATHOM_API CommandLineParser {
public:
    CommandLineParser();
    virtual ~CommandLineParser();

    /// Handles \p option, which comes without its leading "-". False stops the
    /// parser. The default says on standard output that the option is ignored and
    /// returns true.
    virtual bool processOption(const std::string& option);

    /// Handles \p argument, which comes without the "+" that it may have had. False
    /// stops the parser. The default says on standard output that the argument is
    /// ignored and returns true.
    virtual bool processArgument(const std::string& argument);

    /// Hands the arguments of `main` to the handlers in their order, the program's
    /// name left out. False if a handler returned false, with the arguments after it
    /// not looked at. Null entries are skipped.
    bool process(int argc, char** argv);

    /// Where data files are looked for, in this order: the working directory; the
    /// directory `../../data` seen from the program's own; those in the environment
    /// variable `TARN_DATA`, separated by ";", with "/" for "\". The list is made
    /// when it is first asked for and is the same from then on. Its directories need
    /// not exist.
    static const std::list<std::string>& getDataDirs();

    /// The path of the first file \p name in the data directories, or \p name as it
    /// is if none has it. A directory is no file, and a name that begins with "/" is
    /// looked for below the data directories too. Says on standard output where it
    /// looked.
    std::string resolvePath(const std::string& name);
};

} // namespace Orla
