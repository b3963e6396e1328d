#include <tarn/study/CaseRecord.hpp>

#include <loam/Utf8.hpp>

#include <nlohmann/json.hpp>

#include <charconv>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Tarn {

namespace {

using Json = nlohmann::ordered_json;

constexpr char Bytes[] = "bytes"; // key of a text that is not UTF-8

Json jsonOf(const std::string& text)
{
    if (Loam::isUtf8(text))
        return text;
    constexpr char digits[] = "0123456789abcdef";
    std::string hexadecimal;
    for (const char letter : text) {
        const auto byte = static_cast<unsigned char>(letter);
        hexadecimal += digits[byte / 16];
        hexadecimal += digits[byte % 16];
    }
    return {{Bytes, hexadecimal}};
}

std::string textOf(const Json& json)
{
    if (json.is_string())
        return json.get<std::string>();
    const std::string hexadecimal = json.at(Bytes).get<std::string>();
    std::string text;
    for (std::size_t i = 0; i < hexadecimal.size(); i += 2) {
        unsigned byte = 0;
        const char* const end = hexadecimal.data() + std::min(i + 2, hexadecimal.size());
        if (std::from_chars(hexadecimal.data() + i, end, byte, 16).ptr != end)
            throw std::invalid_argument{"invalid hexadecimal digits"};
        text += static_cast<char>(byte);
    }
    return text;
}

Json jsonOf(const std::vector<std::string>& texts)
{
    Json json = Json::array();
    for (const std::string& text : texts)
        json.push_back(jsonOf(text));
    return json;
}

std::vector<std::string> textsOf(const Json& json)
{
    std::vector<std::string> texts;
    for (const Json& each : json)
        texts.push_back(textOf(each));
    return texts;
}

} // namespace

std::string recordOf(const CaseResult& result)
{
    Json rows = Json::array();
    for (const auto& row : result.rows) {
        Json cells = Json::array();
        for (const std::optional<std::string>& cell : row)
            cells.push_back(cell ? jsonOf(*cell) : Json());
        rows.push_back(std::move(cells));
    }
    const Json record{{"case", result.number},
                      {"failed", result.hasFailed},
                      {"rows", std::move(rows)},
                      {"messages", jsonOf(result.messages)},
                      {"printed", jsonOf(result.printed)}};
    return record.dump() + '\n';
}

Loam::Result<CaseResult> resultOf(std::string_view record)
{
    return Loam::attempt([record] {
        const Json json = Json::parse(record);
        CaseResult result{.number = json.at("case").get<std::uint64_t>(), .hasFailed = json.at("failed").get<bool>()};
        for (const Json& cells : json.at("rows")) {
            std::vector<std::optional<std::string>>& row = result.rows.emplace_back();
            for (const Json& cell : cells)
                row.push_back(cell.is_null() ? std::nullopt : std::optional(textOf(cell)));
        }
        result.messages = textsOf(json.at("messages"));
        result.printed = textsOf(json.at("printed"));
        return result;
    });
}

} // namespace Tarn
