#include <tarn/libraries/Libraries.hpp>

#include <tarn/commands/ExitStatus.hpp>
#include <tarn/types/TypeReport.hpp>
#include <tarn/commands/Commands.hpp>
#include <tarn/commands/TypeArguments.hpp>

#include <loam/Environment.hpp>

#include <algorithm>

namespace Tarn {

namespace {

int performLibraries(const Arguments& arguments, const StandardStreams& streams)
{
    // Loading a library runs its code, so the working folder must not be enough of a reason.
    const auto folders =
        arguments.names.empty() ? Libraries::searchPath() : Libraries::searchPath(Loam::getCurrentDir());
    const auto files = findLibraryFiles(folders, arguments.names);
    print(streams, arguments.has("json") ? libraryListJson(files) : libraryListText(files));
    // Files that the user did not name do not affect the exit status.
    const bool failed = std::ranges::any_of(files, [](const LibraryFile& file) { return !file.loading; });
    return failed && !arguments.names.empty() ? NotUnderstood : Fine;
}

} // namespace

const Command& librariesCommand()
{
    static const Command command{
        .name = "libraries",
        .nameShape = "LIBRARY",
        .mostNames = ~std::size_t{0},
        .summary = "Lists object libraries and their types.",
        .help = R"(Loads each library found, or each library named, and lists its file, object types and
value types. A file that cannot be loaded is listed with the reason; if it was named,
the exit status is 2. Loading a library runs its code, so only libraries that are named
are searched for in the working folder, and only files in Python that are named, such
as deepest.py, are run.
)",
        .options = {jsonOption()},
        .libraryFolders = WorkingFolders,
        .perform = &performLibraries,
    };
    return command;
}

} // namespace Tarn
