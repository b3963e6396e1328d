#include "Conversions.hpp"
#include "Support.hpp"

#include <tarn/commands/Commands.hpp>

// Applies the lines of an input as options --set to a network with an input of every type.

namespace {

constexpr char Network[] = R"(format = 1
libraries = ["testobjects"]
[[object]]
name = "all"
type = "Everything"
[[object]]
name = "all.of"
type = "Chooser"
[[object]]
name = "add"
type = "Adder"
[[object]]
name = "dots"
type = "Dotted"
[[object]]
name = "text"
type = "Echo"
[[object]]
name = "unknown"
type = "Missing"
)";

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::prepareHost();
    static const std::string network = Fuzz::fileWith("network.toml", Network);
    Tarn::Arguments arguments;
    std::string_view rest = Fuzz::textOf(data, size);
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = rest.find('\n');
        arguments.options["set"].emplace_back(rest.substr(0, end));
        if (end != std::string_view::npos)
            rest.remove_prefix(end + 1);
    }
    try {
        Fuzz::checkConversion(network, Tarn::overridesOf(arguments));
    } catch (const Tarn::UsageError& error) {
        Fuzz::require(*error.what() != '\0', "a refused option has a reason");
    }
    return 0;
}
