#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Tarn {

/// Writes pages in a language for readers: HTML or Markdown. Functions whose parameter is called
/// `text` accept any bytes and show them literally: markup is escaped, control characters and
/// invalid UTF-8 appear as escapes such as `\x1b`. A parameter called `inner` is markup that
/// another function returned.
class Markup {
public:
    /// A row of a table.
    struct Row {
        std::string id; ///< for links to the row; may be empty
        std::vector<std::string> cells;
    };

    virtual ~Markup() = default;

    /// Returns the ending of the files: ".html" or ".md".
    virtual std::string ending() const = 0;

    /// Returns the text on one line; line breaks become blanks.
    virtual std::string text(std::string_view text) const = 0;

    /// Returns the text as written in a program or a network; empty for an empty text.
    virtual std::string code(std::string_view text) const = 0;

    /// Returns a link to the place \p id of the page \p page, a file name without ending. The
    /// whole page if \p id is empty, or if the language has no such places.
    virtual std::string link(const std::string& page, const std::string& id, const std::string& inner) const = 0;

    /// Returns a link to \p address if it begins with "http://" or "https://", else its text.
    std::string webLink(const std::string& address) const;

    /// Blocks, each with a newline at the end. The level of a heading is 1 to 3.
    virtual std::string heading(int level, const std::string& id, const std::string& inner) const = 0;
    virtual std::string paragraph(const std::string& inner) const = 0;
    virtual std::string list(const std::vector<std::string>& inner) const = 0;
    virtual std::string table(const std::vector<std::string>& titles, const std::vector<Row>& rows) const = 0;
    virtual std::string network(std::string_view text) const = 0;
    virtual std::string picture(const std::string& file, std::string_view text) const = 0;

    /// Returns a whole page. \p text is its title in lists of pages.
    virtual std::string page(std::string_view text, const std::string& body) const = 0;

protected:
    virtual std::string linkTo(const std::string& address, const std::string& inner) const = 0;
};

/// The name of the file with the style of the HTML pages, and its content.
inline constexpr char StyleFile[] = "manual.css";
std::string styleText();

const Markup& htmlMarkup();
const Markup& markdownMarkup();

} // namespace Tarn
