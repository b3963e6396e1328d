#include <tarn/commands/ManPage.hpp>

#include <tarn/commands/CommandLine.hpp>

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <utility>

namespace Tarn {

namespace {

constexpr char Opening[] = R"(.SH NAME
tarn \- loads networks of processing objects and evaluates them
.SH SYNOPSIS
.ad l
)";

constexpr char Closing[] = R"(.SH ENVIRONMENT
.TP
.B TARN_DATA
Folders of networks and data, separated by semicolons.
.TP
.B TARN_LIBRARIES
Folders of object libraries, separated by colons.
.SH EXAMPLES
Evaluate a network and write its table to a file, or the table of its first ten steps
to standard output:
.PP
.RS 4
.EX
tarn run network.toml \-\-table=results.csv
tarn run network.toml \-\-table=\- \-\-steps=10
.EE
.RE
)";

// Escapes what the formatter would take for markup or replace by a typographic sign.
std::string escaped(std::string_view text)
{
    std::string result = text.starts_with('.') ? "\\&" : "";
    for (const char c : text) {
        switch (c) {
        case '\\':
            result += "\\(rs";
            break;
        case '-':
            result += "\\-";
            break;
        case '\'':
            result += "\\(aq";
            break;
        case '`':
            result += "\\(ga";
            break;
        case '^':
            result += "\\(ha";
            break;
        case '~':
            result += "\\(ti";
            break;
        default:
            result += c;
        }
    }
    return result;
}

std::string bold(std::string_view text)
{
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(std::string_view text)
{
    return "\\fI" + escaped(text) + "\\fR";
}

std::string synopsis(const Command& command)
{
    const std::string start = "tarn " + command.name;
    std::istringstream words(synopsisOf(command).substr(start.size()));
    std::string text = ".HP 8\n" + bold(start);
    for (std::string word; words >> word;)
        text += " " + escaped(word);
    return text + "\n";
}

std::string section(const Command& command)
{
    std::string text = ".SS " + escaped(command.name) + "\n" + manText(command.summary);
    for (const Option& option : command.options) {
        text += ".TP\n" + bold("--" + option.name);
        if (!option.shape.empty())
            text += "=" + italic(option.shape);
        text += "\n";
        std::istringstream lines(option.help);
        for (std::string line; std::getline(lines, line);)
            text += escaped(line) + "\n";
    }
    return text + manText(paragraphsOn(command));
}

// Formats a text line by line, depending on the kind of the previous line.
class TextWriter {
public:
    void add(std::string_view line)
    {
        const auto indent = line.find_first_not_of(' ');
        if (indent == std::string_view::npos)
            begin(Kind::None);
        else if (indent == 0)
            addToParagraph(line);
        else if (m_kind == Kind::Item && indent >= m_itemColumn)
            m_text += escaped(line.substr(indent)) + "\n";
        else if (const auto gap = line.find("  ", indent); gap != std::string_view::npos)
            addItem(line, indent, gap);
        else
            addExample(line);
    }

    std::string take()
    {
        begin(Kind::None);
        return std::move(m_text);
    }

private:
    enum class Kind { None, Paragraph, Item, Example };

    void addToParagraph(std::string_view line)
    {
        if (m_kind != Kind::Paragraph) {
            begin(Kind::Paragraph);
            m_text += ".PP\n";
        }
        m_text += escaped(line) + "\n";
    }

    void addItem(std::string_view line, std::size_t indent, std::size_t gap)
    {
        begin(Kind::Item);
        m_itemColumn = std::min(line.find_first_not_of(' ', gap), line.size());
        m_text += ".TP\n" + bold(line.substr(indent, gap - indent)) + "\n" + escaped(line.substr(m_itemColumn)) + "\n";
    }

    void addExample(std::string_view line)
    {
        if (m_kind != Kind::Example) {
            begin(Kind::Example);
            m_text += ".PP\n.RS 4\n.EX\n";
        }
        m_text += "\\&" + escaped(line) + "\n";
    }

    void begin(Kind kind)
    {
        if (m_kind == Kind::Example)
            m_text += ".EE\n.RE\n";
        m_kind = kind;
    }

    std::string m_text;
    Kind m_kind = Kind::None;
    std::size_t m_itemColumn = 0;
};

} // namespace

std::string manPage(const std::vector<const Command*>& commands)
{
    std::string version = CommandLine::versionText();
    version.pop_back();
    std::string text = ".TH TARN 1 \"\" \"" + version + "\" \"User Commands\"\n" + Opening;
    for (const Command* command : commands)
        text += synopsis(*command);
    text += ".HP 8\n" + bold("tarn") + " [" + italic("COMMAND") + "] " + bold("--help") + "\n.HP 8\n"
            + bold("tarn --version") + "\n.ad b\n.SH DESCRIPTION\n" + manText(CommandLine::filesHelp())
            + ".SH COMMANDS\n";
    for (const Command* command : commands)
        text += section(*command);
    return text + ".SH \"EXIT STATUS\"\n" + manText(CommandLine::statusHelp()) + Closing;
}

std::string manText(std::string_view help)
{
    TextWriter writer;
    while (!help.empty()) {
        const std::size_t end = std::min(help.find('\n'), help.size());
        writer.add(help.substr(0, end));
        help.remove_prefix(std::min(end + 1, help.size()));
    }
    return writer.take();
}

} // namespace Tarn
