#include <tarn/reference/Markup.hpp>

#include <tarn/text/Messages.hpp>

#include <loam/Ascii.hpp>

#include <algorithm>
#include <cstddef>

namespace Tarn {

namespace {

// Returns \p text with each run of blanks and line breaks as one blank, other control characters
// escaped.
std::string onOneLineOfText(std::string_view text)
{
    std::string joined;
    for (const char c : text) {
        const bool isBlank = c == ' ' || c == '\n' || c == '\r' || c == '\t';
        if (!isBlank)
            joined += c;
        else if (!joined.empty() && joined.back() != ' ')
            joined += ' ';
    }
    if (joined.ends_with(' '))
        joined.pop_back();
    return onOneLine(joined);
}

// Returns the lines of \p text with control characters escaped, each with a newline.
std::string escapedLines(std::string_view text)
{
    std::string lines;
    Loam::StringUtil::forEachPiece(text, '\n', [&](std::string_view line) { lines += onOneLine(line) + '\n'; });
    return lines;
}

std::string inHtml(std::string_view text)
{
    std::string html;
    for (const char c : text) {
        if (c == '&')
            html += "&amp;";
        else if (c == '<')
            html += "&lt;";
        else if (c == '>')
            html += "&gt;";
        else if (c == '"')
            html += "&quot;";
        else
            html += c;
    }
    return html;
}

// Returns \p address with the characters that end an address in Markdown, and all beyond ASCII,
// as percent codes.
std::string percentEncoded(const std::string& address)
{
    constexpr std::string_view Unsafe = " \"<>\\^`{|}()[]";
    constexpr std::string_view Digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : address) {
        const auto code = static_cast<unsigned char>(c);
        if (code > 0x20 && code < 0x7F && Unsafe.find(c) == std::string_view::npos)
            encoded += c;
        else
            encoded += {'%', Digits[code / 16], Digits[code % 16]};
    }
    return encoded;
}

class Html final : public Markup {
public:
    std::string ending() const override { return ".html"; }
    std::string text(std::string_view text) const override { return inHtml(onOneLineOfText(text)); }

    std::string code(std::string_view text) const override
    {
        return text.empty() ? std::string() : "<code>" + inHtml(onOneLine(text)) + "</code>";
    }

    std::string link(const std::string& page, const std::string& id, const std::string& inner) const override
    {
        return linkTo(page + ending() + (id.empty() ? "" : '#' + id), inner);
    }

    std::string heading(int level, const std::string& id, const std::string& inner) const override
    {
        const std::string tag = 'h' + std::to_string(level);
        return '<' + tag + idAttribute(id) + '>' + inner + "</" + tag + ">\n";
    }

    std::string paragraph(const std::string& inner) const override { return "<p>" + inner + "</p>\n"; }

    std::string list(const std::vector<std::string>& inner) const override
    {
        std::string list = "<ul>\n";
        for (const std::string& each : inner)
            list += "<li>" + each + "</li>\n";
        return list + "</ul>\n";
    }

    std::string table(const std::vector<std::string>& titles, const std::vector<Row>& rows) const override
    {
        std::string table = "<table>\n<thead><tr>";
        for (const std::string& title : titles)
            table += "<th scope=\"col\">" + text(title) + "</th>";
        table += "</tr></thead>\n<tbody>\n";
        for (const Row& row : rows) {
            table += "<tr" + idAttribute(row.id) + '>';
            // On a phone the cells are below each other, and the style shows their titles.
            for (std::size_t i = 0; i < row.cells.size(); ++i)
                table += "<td data-title=\"" + text(titles.at(i)) + "\">" + row.cells[i] + "</td>";
            table += "</tr>\n";
        }
        return table + "</tbody>\n</table>\n";
    }

    std::string network(std::string_view text) const override
    {
        return "<pre><code>" + inHtml(escapedLines(text)) + "</code></pre>\n";
    }

    std::string picture(const std::string& file, std::string_view text) const override
    {
        return "<p><img src=\"" + inHtml(file) + "\" alt=\"" + this->text(text) + "\"></p>\n";
    }

    std::string page(std::string_view text, const std::string& body) const override
    {
        return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
               "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
               "<meta name=\"color-scheme\" content=\"light dark\">\n<title>"
               + this->text(text) + "</title>\n<link rel=\"stylesheet\" href=\""
               + StyleFile
               // Without it, browsers ask the server for /favicon.ico.
               + "\">\n<link rel=\"icon\" href=\"data:,\">\n</head>\n<body>\n" + body + "</body>\n</html>\n";
    }

protected:
    std::string linkTo(const std::string& address, const std::string& inner) const override
    {
        return "<a href=\"" + inHtml(address) + "\">" + inner + "</a>";
    }

private:
    static std::string idAttribute(const std::string& id)
    {
        return id.empty() ? std::string() : " id=\"" + inHtml(id) + '"';
    }
};

class Markdown final : public Markup {
public:
    std::string ending() const override { return ".md"; }

    std::string text(std::string_view text) const override
    {
        const std::string line = onOneLineOfText(text);
        // Where these begin a line, they make it an item of a list, or the line before it a
        // heading.
        const std::size_t number =
            static_cast<std::size_t>(std::ranges::find_if_not(line, &Loam::isDigit) - line.begin());
        const bool isItem = number > 0 && number < line.size() && (line[number] == '.' || line[number] == ')');
        const std::size_t begin = isItem ? number : 0;
        const bool isEscaped = isItem || line.starts_with('+') || line.starts_with('-') || line.starts_with('=');
        std::string markdown;
        for (std::size_t i = 0; i < line.size(); ++i) {
            const char c = line[i];
            if (c == '&')
                markdown += "&amp;";
            else if (c == '<')
                markdown += "&lt;";
            else if (c == '>')
                markdown += "&gt;";
            else if ((i == begin && isEscaped) || Special.find(c) != std::string_view::npos)
                markdown += {'\\', c};
            else
                markdown += c;
        }
        return markdown;
    }

    std::string code(std::string_view text) const override
    {
        if (text.empty())
            return {};
        const std::string line = onOneLine(text);
        // Code cannot consist of blanks, and in a table, its bars and backslashes would be read
        // differently by different programs.
        const bool isBlank = line.find_first_not_of(' ') == std::string::npos;
        if (isBlank || line.find_first_of("|\\") != std::string::npos)
            return isBlank ? "\" \"" : this->text(line);
        const std::string ticks = fence(line, 1);
        const bool needsBlanks =
            line.starts_with('`') || line.ends_with('`') || (line.front() == ' ' && line.back() == ' ');
        return ticks + (needsBlanks ? " " + line + " " : line) + ticks;
    }

    std::string link(const std::string& page, const std::string&, const std::string& inner) const override
    {
        return linkTo(page + ending(), inner);
    }

    std::string heading(int level, const std::string&, const std::string& inner) const override
    {
        return std::string(static_cast<std::size_t>(level), '#') + ' ' + inner + "\n\n";
    }

    std::string paragraph(const std::string& inner) const override { return inner + "\n\n"; }

    std::string list(const std::vector<std::string>& inner) const override
    {
        std::string list;
        for (const std::string& each : inner)
            list += "- " + each + '\n';
        return list + '\n';
    }

    std::string table(const std::vector<std::string>& titles, const std::vector<Row>& rows) const override
    {
        std::string table = "|";
        for (const std::string& title : titles)
            table += ' ' + text(title) + " |";
        table += "\n|";
        for (std::size_t i = 0; i < titles.size(); ++i)
            table += "---|";
        table += '\n';
        for (const Row& row : rows) {
            table += '|';
            for (const std::string& cell : row.cells)
                table += ' ' + cell + " |";
            table += '\n';
        }
        return table + '\n';
    }

    std::string network(std::string_view text) const override
    {
        const std::string lines = escapedLines(text);
        const std::string ticks = fence(lines, 3);
        return ticks + "toml\n" + lines + ticks + "\n\n";
    }

    std::string picture(const std::string& file, std::string_view text) const override
    {
        return "![" + this->text(text) + "](" + file + ")\n\n";
    }

    std::string page(std::string_view, const std::string& body) const override
    {
        // One newline at the end, as editors expect it.
        return body.ends_with("\n\n") ? body.substr(0, body.size() - 1) : body;
    }

protected:
    std::string linkTo(const std::string& address, const std::string& inner) const override
    {
        return '[' + inner + "](" + address + ')';
    }

private:
    static constexpr std::string_view Special = "\\`*_[]|~#$";

    // Returns more backticks than follow each other in \p text, at least \p least.
    static std::string fence(std::string_view text, std::size_t least)
    {
        std::size_t run = 0;
        for (const char c : text) {
            run = c == '`' ? run + 1 : 0;
            least = std::max(least, run + 1);
        }
        return std::string(least, '`');
    }
};

} // namespace

std::string Markup::webLink(const std::string& address) const
{
    const bool isWeb = address.starts_with("https://") || address.starts_with("http://");
    return isWeb ? linkTo(percentEncoded(address), text(address)) : text(address);
}

std::string styleText()
{
    return R"(:root { color-scheme: light dark; --line: #c8c8c8; --back: #f3f3f3; --link: #0b57d0; }
@media (prefers-color-scheme: dark) { :root { --line: #555; --back: #2a2a2a; --link: #8ab4f8; } }
body { font: 16px/1.5 sans-serif; max-width: 60em; margin: 0 auto; padding: 1em; overflow-wrap: anywhere; }
a { color: var(--link); }
h1 { font-size: 1.6em; line-height: 1.2; }
h2 { font-size: 1.2em; margin-top: 2em; border-bottom: 1px solid var(--line); }
table { border-collapse: collapse; width: 100%; }
th, td { text-align: left; vertical-align: top; padding: 0.3em 1em 0.3em 0; border-bottom: 1px solid var(--line); }
td { overflow-wrap: break-word; max-width: 20em; }
td:last-child { overflow-wrap: anywhere; }
tr:target { background: var(--back); }
code { font-family: monospace; }
pre { background: var(--back); padding: 0.8em; overflow-x: auto; }
img { max-width: 100%; background: #fff; border-radius: 4px; }
@media (max-width: 40em) {
    table, tbody, tr, td { display: block; }
    thead { display: none; }
    tr { border-bottom: 1px solid var(--line); padding: 0.4em 0; }
    td { border: 0; padding: 0; max-width: none; }
    td:first-child { font-weight: bold; }
    td:empty { display: none; }
    td:not(:first-child)::before { content: attr(data-title) ": "; opacity: 0.7; }
}
)";
}

const Markup& htmlMarkup()
{
    static const Html markup;
    return markup;
}

const Markup& markdownMarkup()
{
    static const Markdown markup;
    return markup;
}

} // namespace Tarn
