#pragma once

#include <tarn/Export.hpp>

#include <string>
#include <string_view>

// Reading the texts of statuses, which have HTML markup; see `Orla::VObjectStatus`.

namespace Tarn {

enum class Severity { Information, Warning, Error };

/// Returns the severity that the `Orla::StatusMarkup` around \p text denotes; unmarked text is
/// `Information`.
TARN_API Severity severityOf(std::string_view text) noexcept;

/// Returns \p text for output that cannot show markup, such as a terminal: without tags, with a
/// line feed for each `<BR>` and characters in place of entities. Text that only resembles a
/// tag or an entity is kept, and so are entities of control characters.
TARN_API std::string plainText(std::string_view text);

} // namespace Tarn
