#pragma once

#include <tarn/text/Faults.hpp>
#include <tarn/text/PlacedText.hpp>

#include <loam/Result.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace Tarn {

/// A row of a table and the places of its fields.
using CsvRow = std::vector<PlacedText>;

/// Reads comma-separated values (RFC 4180) as `TableWriter` and spreadsheets write them: a field
/// in quotes may contain commas, line breaks and doubled quotes. Lines end in LF or CRLF. Empty
/// lines are skipped; a byte order mark is ignored.
///
/// Adds a fault for each quote that is not closed or not at the start of a field, and for text
/// that is not UTF-8.
std::vector<CsvRow> parseCsv(std::string_view text, Faults& faults);

/// Reads one row, such as the texts `1,"2,5",3` of an option. A line break outside quotes is part
/// of its field. Fails if a quote is not closed or not at the start of a field.
Loam::Result<std::vector<std::string>> parseCsvRow(std::string_view text);

} // namespace Tarn
