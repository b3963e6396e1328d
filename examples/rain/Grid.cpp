#include "Grid.hpp"

#include <fathom/Chunk.hpp>
#include <fathom/VComponent.hpp>
#include <fathom/VConnectionTypeColors.hpp>

#include <loam/Numbers.hpp>

#include <cassert>
#include <cmath>
#include <cstring>
#include <string_view>
#include <typeinfo>

namespace Rain {

namespace {

constexpr double wholeTurn = 360;
constexpr double rounding = 1e-9; // degrees

} // namespace

bool GridFrame::isWholeTurn() const noexcept
{
    return columns > 0 && std::abs(static_cast<double>(columns) * eastStep - wholeTurn) <= rounding;
}

bool GridFrame::isValid() const noexcept
{
    if (columns == 0 || rows == 0 || columns > mostCells || rows > mostCells / columns)
        return false;
    // In this form, the comparisons also refuse NaN.
    const auto isLatitude = [](double degrees) { return std::abs(degrees) <= 90 + rounding; };
    return eastStep > 0 && static_cast<double>(columns) * eastStep <= wholeTurn + rounding
           && std::abs(longitude) <= wholeTurn && northStep != 0 && isLatitude(latitude)
           && isLatitude(latitudeAt(static_cast<double>(rows - 1)));
}

Grid::Grid(const GridFrame& frame, const std::vector<double>& values)
    : m_frame{frame}, m_values{Loam::TypedChunkBase<double>::createNewChunk(values.size(), false)}
{
    assert(frame.isValid() && values.size() == frame.cells());
    // One form of NaN, so that equal grids are equal bit by bit.
    for (std::size_t i = 0; i < values.size(); ++i)
        (*m_values)[i] = std::isfinite(values[i]) ? values[i] + 0.0 : missing;
}

bool operator==(const Grid& a, const Grid& b) noexcept
{
    if (!(a.m_frame == b.m_frame))
        return false;
    return a.m_values == b.m_values
           || std::memcmp(a.m_values->data(), b.m_values->data(), a.m_frame.cells() * sizeof(double)) == 0;
}

namespace {

void append(std::string& text, double number)
{
    char buffer[Loam::numberTextSize];
    text.append(buffer, Loam::writeNumber(buffer, buffer + sizeof buffer, number));
}

// Reads the parts of a grid's text. Each function returns false if the text is invalid.
class TextReader {
public:
    explicit TextReader(std::string_view text) : m_place{text.data()}, m_end{text.data() + text.size()} {}

    bool atEnd() const { return m_place == m_end; }
    bool isNext(char expected) const { return !atEnd() && *m_place == expected; }

    bool skip(std::string_view expected)
    {
        if (!std::string_view(m_place, static_cast<std::size_t>(m_end - m_place)).starts_with(expected))
            return false;
        m_place += expected.size();
        return true;
    }

    bool read(double& number)
    {
        const char* const next = Loam::readNumber(m_place, m_end, number);
        if (!next || !std::isfinite(number))
            return false;
        m_place = next;
        return true;
    }

    bool read(std::size_t& count)
    {
        double number = 0;
        if (!read(number) || !(number >= 0 && number <= static_cast<double>(GridFrame::mostCells))
            || number != std::floor(number))
            return false;
        count = static_cast<std::size_t>(number);
        return true;
    }

    bool read(GridFrame& frame)
    {
        return read(frame.columns) && skip("x") && read(frame.rows) && skip(" ") && read(frame.longitude) && skip(",")
               && read(frame.latitude) && skip(" ") && read(frame.eastStep) && skip(",") && read(frame.northStep)
               && skip(":") && frame.isValid();
    }

    bool read(std::vector<double>& values, std::size_t count)
    {
        skip(" ");
        while (values.size() < count) {
            if (!values.empty() && !skip(","))
                return false;
            if (atEnd() || isNext(','))
                values.push_back(missing);
            else if (!read(values.emplace_back()))
                return false;
        }
        return atEnd();
    }

private:
    const char* m_place;
    const char* m_end;
};

} // namespace

} // namespace Rain

std::string Orla::VValueTrait<Rain::Grid>::Text(const Rain::Grid& grid)
{
    if (grid.empty())
        return {};
    const Rain::GridFrame& frame = grid.frame();
    std::string text = std::to_string(frame.columns) + 'x' + std::to_string(frame.rows);
    Rain::append(text += ' ', frame.longitude);
    Rain::append(text += ',', frame.latitude);
    Rain::append(text += ' ', frame.eastStep);
    Rain::append(text += ',', frame.northStep);
    const char* separator = ": ";
    for (const double value : *grid.values()) {
        text += separator;
        if (!std::isnan(value))
            Rain::append(text, value);
        separator = ",";
    }
    return text;
}

bool Orla::VValueTrait<Rain::Grid>::setValueFromText(Rain::Grid& grid, const std::string& text)
{
    if (text.empty()) {
        grid = {};
        return true;
    }
    Rain::TextReader reader{text};
    Rain::GridFrame frame;
    std::vector<double> values;
    if (!reader.read(frame) || !reader.read(values, frame.cells()))
        return false;
    grid = Rain::Grid{frame, values};
    return true;
}

namespace {

using Rain::Grid;
using Rain::GridFrame;

template<auto Part>
auto partOfFrame(const Grid& grid)
{
    return grid.frame().*Part;
}

const Orla::VValueType<Grid> gridType{"grid"};

// Connections can pick these, and they are attributes in Python.
const Orla::VValueComponents gridParts{typeid(Grid),
                                       {Orla::component<&Grid::values>("values"),
                                        Orla::component<partOfFrame<&GridFrame::columns>>("columns"),
                                        Orla::component<partOfFrame<&GridFrame::rows>>("rows"),
                                        Orla::component<partOfFrame<&GridFrame::longitude>>("longitude"),
                                        Orla::component<partOfFrame<&GridFrame::latitude>>("latitude"),
                                        Orla::component<partOfFrame<&GridFrame::eastStep>>("eastStep"),
                                        Orla::component<partOfFrame<&GridFrame::northStep>>("northStep")}};

// Sets the colour of connections that carry a grid.
const bool gridHasColor = [] {
    Orla::VConnectionTypeColors::set(typeid(Rain::Grid), "#1F77B4");
    return true;
}();

} // namespace
