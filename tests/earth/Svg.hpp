#pragma once

#include <earth/Pixels.hpp>

#include <loam/Numbers.hpp>

#include <cctype>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Reads an SVG file as XML: properly nested elements with quoted attributes. Reports
/// the first fault.
class Svg {
public:
    struct Element {
        std::string name;
        std::vector<std::pair<std::string, std::string>> attributes;

        std::string attribute(std::string_view key) const
        {
            for (const auto& [name_, value] : attributes) {
                if (name_ == key)
                    return value;
            }
            return "";
        }
    };

    explicit Svg(std::string_view text) : m_rest{text}
    {
        if (!skip("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"))
            fault = "no XML declaration";
        std::vector<std::string> open;
        bool isRootRead = false;
        while (fault.empty()) {
            const std::size_t length = m_rest.find('<');
            const std::string_view between = m_rest.substr(0, length);
            if (between.find('&') != std::string_view::npos || between.find('>') != std::string_view::npos)
                fault = "a special character between elements";
            if (open.empty() && between.find_first_not_of(" \n\r\t") != std::string_view::npos)
                fault = "text outside the root";
            if (length == std::string_view::npos)
                break;
            m_rest.remove_prefix(length + 1);
            if (skip("/")) {
                const std::string name = word();
                if (open.empty() || open.back() != name || !skip(">"))
                    fault = "</" + name + "> does not close the open element";
                else
                    open.pop_back();
                continue;
            }
            if (open.empty() && isRootRead)
                fault = "a second root";
            isRootRead = true;
            Element element;
            element.name = word();
            if (element.name.empty())
                fault = "an element without a name";
            while (fault.empty() && blanks() && !m_rest.starts_with('/') && !m_rest.starts_with('>'))
                attribute(element);
            if (fault.empty() && !skip("/>")) {
                if (!skip(">"))
                    fault = "<" + element.name + " does not end";
                open.push_back(element.name);
            }
            elements.push_back(std::move(element));
        }
        if (fault.empty() && (!open.empty() || !isRootRead))
            fault = "not every element is closed";
    }

    std::string fault; ///< empty if there is no fault
    std::vector<Element> elements;

private:
    bool skip(std::string_view expected)
    {
        if (!m_rest.starts_with(expected))
            return false;
        m_rest.remove_prefix(expected.size());
        return true;
    }

    bool blanks()
    {
        while (!m_rest.empty() && std::isspace(static_cast<unsigned char>(m_rest.front())))
            m_rest.remove_prefix(1);
        return true;
    }

    std::string word()
    {
        std::string result;
        while (!m_rest.empty() && m_rest.find_first_of(" \n\r\t=/><\"&") != 0) {
            result += m_rest.front();
            m_rest.remove_prefix(1);
        }
        return result;
    }

    void attribute(Element& element)
    {
        const std::string name = word();
        if (name.empty() || !skip("=\"")) {
            fault = "an attribute of <" + element.name + " is not of the form name=\"value\"";
            return;
        }
        const std::size_t end = m_rest.find('"');
        const std::string value{m_rest.substr(0, end)};
        if (end == std::string_view::npos || value.find_first_of("<&") != std::string::npos) {
            fault = "a value of <" + element.name + " has a special character";
            return;
        }
        m_rest.remove_prefix(end + 1);
        element.attributes.emplace_back(name, value);
    }

    std::string_view m_rest;
};

/// Returns the parts of a path's `d` with moves (M), lines (L) and the ends of curves (C).
/// A part ends where it is closed (Z) or the next one begins.
inline std::vector<std::vector<Earth::Pixel>> pathParts(const std::string& d)
{
    std::vector<std::vector<Earth::Pixel>> parts;
    std::vector<double> numbers;
    const char* place = d.data();
    const char* const end = place + d.size();
    char command = ' ';
    while ((place = Loam::skipBlanks(place, end)) != end) {
        if (*place >= 'A' && *place <= 'Z') {
            command = *place++;
            numbers.clear();
            if (command == 'M' || parts.empty())
                parts.emplace_back();
            else if (command == 'Z' && !parts.back().empty())
                parts.back().push_back(parts.back().front());
            continue;
        }
        double number = 0;
        place = Loam::readNumber(place, end, number);
        if (!place)
            break;
        numbers.push_back(number);
        if (numbers.size() == (command == 'C' ? 6u : 2u)) {
            parts.back().push_back({numbers[numbers.size() - 2], numbers.back()});
            numbers.clear();
        }
    }
    return parts;
}
