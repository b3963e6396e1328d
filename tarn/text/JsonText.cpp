#include <tarn/text/JsonText.hpp>

#include <loam/StringUtil.hpp>

namespace Tarn {

Json orNull(const std::string& text)
{
    return text.empty() ? Json(nullptr) : Json(text);
}

std::string indented(const Json& json)
{
    return Loam::StringUtil::unicodeEscaped(json.dump(2, ' ', false, Json::error_handler_t::replace)) + '\n';
}

} // namespace Tarn
