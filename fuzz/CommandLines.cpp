#include "Support.hpp"

#include <tarn/commands/CommandLine.hpp>
#include <tarn/commands/Commands.hpp>

#include <string>
#include <vector>

// Parses the lines of an input as the arguments of the program.

namespace {

void check(const Tarn::CommandLine& line)
{
    if (line.request != Tarn::CommandLine::Request::Perform)
        return;
    Fuzz::require(line.command != nullptr, "a request is for a command");
    const Tarn::Command& command = *line.command;
    const std::size_t names = line.arguments.names.size();
    Fuzz::require(names >= command.fewestNames && names <= command.mostNames,
                  "a command gets as many names as it takes");
    for (const Tarn::Option& option : command.options) {
        const std::vector<std::string> texts = line.arguments.texts(option.name);
        Fuzz::require(option.repeats || texts.size() <= 1, "an option is given once");
        for (const std::string& text : texts)
            Fuzz::require(text.empty() == option.shape.empty(), "an option has a text if it takes one");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::string> words{"tarn"};
    std::string_view rest = Fuzz::textOf(data, size);
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        // Arguments of programs end at their first NUL.
        words.emplace_back(std::string(rest.substr(0, end)).c_str());
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    try {
        check(Tarn::CommandLine::parse(static_cast<int>(words.size()), arguments.data(), Tarn::commands()));
    } catch (const Tarn::UsageError& error) {
        for (const char* letter = error.what(); *letter; ++letter)
            Fuzz::require(static_cast<unsigned char>(*letter) >= ' ', "a message has no control characters");
    }
    return 0;
}
