#include <trellis/VTypeDescription.hpp>

namespace Orla {

VTypeDescription::VTypeDescription(const VTypeDescriptionLiteral& parts)
    : m_parts{.sentence = std::string(parts.sentence),
              .details = std::string(parts.details),
              .category = std::string(parts.category),
              .keywords = {parts.keywords.begin(), parts.keywords.end()},
              .page = std::string(parts.page)}
{
}

VTypeDescription::VTypeDescription(const Parts& parts) : m_parts{parts}
{
}

VTypeDescription::~VTypeDescription() = default;

} // namespace Orla
