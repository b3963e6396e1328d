#include <earth/JsonText.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <ios>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace Earth {

std::string shortened(std::string text)
{
    constexpr std::size_t longest = 60;
    if (text.size() > longest)
        text.replace(longest, std::string::npos, "...");
    return text;
}

std::string described(const nlohmann::json* found)
{
    if (!found)
        return "nothing";
    if (found->is_object())
        return "an object";
    if (found->is_array())
        return "an array of " + std::to_string(found->size());
    const char* const kind = found->is_string() ? "the text " : found->is_number() ? "the number " : "";
    return kind + shortened(found->dump(-1, ' ', true, nlohmann::json::error_handler_t::replace));
}

void refuseJson(std::string place, const nlohmann::json* found, std::string expected)
{
    throw JsonFault{std::move(place), described(found), std::move(expected)};
}

std::ifstream openJson(const std::string& file, const std::string& expected)
{
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(file, ignored);
    if (status.type() == std::filesystem::file_type::not_found)
        throw std::runtime_error{file + ": file not found, expected " + expected};
    if (is_directory(status))
        throw std::runtime_error{file + ": found a folder, expected " + expected};
    errno = 0;
    std::ifstream stream{file, std::ios::binary};
    if (!stream)
        throw std::runtime_error{file + ": cannot be opened: " + std::generic_category().message(errno)};
    return stream;
}

void rethrowJsonFault(const std::string& name)
{
    try {
        throw;
    } catch (const JsonFault& fault) {
        throw std::runtime_error{name + ": " + fault.place + (fault.place.empty() ? "" : ": ") + "found " + fault.found
                                 + ", expected " + fault.expected};
    } catch (const nlohmann::json::exception& error) {
        std::string_view message = error.what();
        message.remove_prefix(std::min(message.find("] ") + 2, message.size()));
        throw std::runtime_error{name
                                 + ": invalid JSON: " + std::string(message.substr(0, message.find("; last read: ")))};
    } catch (const std::ios_base::failure& error) {
        throw std::runtime_error{name + ": cannot be read: " + error.code().message()};
    }
}

} // namespace Earth
