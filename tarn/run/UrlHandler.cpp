#include <tarn/run/UrlHandler.hpp>

#include <loam/StringUtil.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string_view>
#include <vector>

#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace Tarn {

namespace {

constexpr int PatienceInMilliseconds = 1000;

bool isSafe(const std::string& url)
{
    const bool isKnown = url.starts_with("http://") || url.starts_with("https://") || url.starts_with("file://");
    return isKnown && std::ranges::none_of(url, [](char letter) {
               const auto code = static_cast<unsigned char>(letter);
               return code <= 0x20 || code == 0x7F || letter == '"' || letter == '\'' || letter == '`'
                      || letter == '\\';
           });
}

// Returns the words of a command. An unclosed quote extends to the end.
std::vector<std::string> unquotedWords(std::string_view command)
{
    std::vector<std::string> words;
    bool isInside = false;
    char quote = 0;
    for (std::size_t at = 0; at < command.size(); ++at) {
        const char letter = command[at];
        if (quote == 0 && (letter == ' ' || letter == '\t')) {
            isInside = false;
            continue;
        }
        if (!isInside)
            words.emplace_back();
        isInside = true;
        if (letter == '\\' && quote != '\'' && at + 1 < command.size())
            words.back() += command[++at];
        else if (quote == 0 && (letter == '"' || letter == '\''))
            quote = letter;
        else if (letter == quote)
            quote = 0;
        else
            words.back() += letter;
    }
    return words;
}

std::vector<std::string> argumentsOf(std::string_view command, const std::string& url)
{
    std::vector<std::string> arguments = unquotedWords(command);
    // Programs always run in the background.
    if (!arguments.empty() && arguments.back() == "&")
        arguments.pop_back();
    bool hasUrl = false;
    for (std::string& argument : arguments) {
        for (std::size_t at = 0; (at = argument.find('%', at)) != std::string::npos && at + 1 < argument.size();) {
            const char kind = argument[at + 1];
            const std::string text = kind == 's' ? url : kind == 'c' ? ":" : kind == '%' ? "%" : argument.substr(at, 2);
            hasUrl |= kind == 's';
            argument.replace(at, 2, text);
            at += text.size();
        }
    }
    if (!arguments.empty() && !hasUrl)
        arguments.push_back(url);
    return arguments;
}

// Returns true unless the process fails before the time is over.
bool seemsToWork(pid_t process)
{
    const int handle = static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
    if (handle >= 0) {
        pollfd ended{handle, POLLIN, 0};
        ::poll(&ended, 1, PatienceInMilliseconds);
        ::close(handle);
    }
    int status = 0;
    const pid_t waited = ::waitpid(process, &status, handle >= 0 ? WNOHANG : 0);
    return waited != process || (WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

// Returns true if the program was started and seems to work.
bool start(std::vector<std::string> arguments)
{
    if (arguments.empty())
        return false;
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    pid_t process = -1;
    return ::posix_spawnp(&process, pointers[0], nullptr, nullptr, pointers.data(), environ) == 0
           && seemsToWork(process);
}

} // namespace

UrlHandler::~UrlHandler() = default;

bool UrlHandler::openUrl(const std::string& url)
{
    if (!isSafe(url))
        return false;
    const char* const chosen = std::getenv("BROWSER");
    bool isOpen = false;
    Loam::StringUtil::forEachPiece(chosen && *chosen ? chosen : "xdg-open", ':', [&](std::string_view command) {
        isOpen = isOpen || start(argumentsOf(command, url));
    });
    return isOpen;
}

} // namespace Tarn
