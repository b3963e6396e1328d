#include <tarn/commands/TypeArguments.hpp>

#include <tarn/commands/ExitStatus.hpp>
#include <tarn/types/TypeCatalogue.hpp>
#include <tarn/run/WarningPrinter.hpp>
#include <tarn/text/Messages.hpp>

#include <charconv>
#include <optional>
#include <system_error>

namespace Tarn {

Option libraryOption()
{
    return {.name = "library",
            .shape = "NAME",
            .help = "Loads an object library besides the standard one. May be repeated.",
            .repeats = true};
}

Option levelOption()
{
    return {.name = "level", .shape = "N", .help = "Hides inputs above expert level N."};
}

Option jsonOption()
{
    return {.name = "json", .shape = "", .help = "Prints JSON for programs."};
}

std::vector<std::string> librariesOf(const Arguments& arguments)
{
    return arguments.texts("library");
}

int levelOf(const Arguments& arguments)
{
    const std::optional<std::string> text = arguments.text("level");
    if (!text)
        return TypeCatalogue::AllLevels;
    int level = 0;
    const char* const end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, level);
    if (error != std::errc{} || stop != end)
        throw UsageError{"--level=" + printable(*text) + ": expected a whole number"};
    return level;
}

int reportRefusals(const TypeCatalogue& catalogue)
{
    for (const std::string& why : catalogue.refusals())
        say(why);
    return catalogue.refusals().empty() ? Fine : NotUnderstood;
}

} // namespace Tarn
