#include <earth/JsonText.hpp>

#include <nlohmann/json.hpp>

#include <cstddef>

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

} // namespace Earth
