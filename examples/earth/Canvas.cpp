#include <earth/Canvas.hpp>

#include <earth/StaysLoaded.hpp>

#include <loam/Ascii.hpp>
#include <loam/Utf8.hpp>

#include <cairo-svg.h>
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <new>
#include <numbers>
#include <stdexcept>
#include <utility>

namespace Earth {

namespace {

[[maybe_unused]] const bool cairoStays = staysLoaded(reinterpret_cast<void*>(&cairo_create));

[[noreturn]] void fail(cairo_status_t status)
{
    throw std::runtime_error{std::string("cannot draw the picture: ") + cairo_status_to_string(status)};
}

// cairo calls this from C code, which must not see exceptions.
cairo_status_t append(void* bytes, const unsigned char* data, unsigned int length) noexcept
{
    try {
        static_cast<std::string*>(bytes)->append(data, data + length);
        return CAIRO_STATUS_SUCCESS;
    } catch (const std::bad_alloc&) {
        return CAIRO_STATUS_NO_MEMORY;
    }
}

// Replaces invalid bytes: after invalid UTF-8, cairo stops drawing.
std::string drawable(std::string_view text)
{
    std::string result = Loam::validUtf8(text);
    std::ranges::replace_if(
        result, [](unsigned char byte) { return byte < 0x20 || byte == 0x7f; }, ' ');
    return result;
}

// Renumbers surfaces in the order in which they appear. cairo numbers them throughout the
// process, so a second equal picture would differ from the first.
std::string withOwnSurfaceNumbers(const std::string& svg)
{
    constexpr std::string_view word = "surface";
    std::map<std::string, std::size_t, std::less<>> numbers;
    std::string result;
    result.reserve(svg.size());
    std::size_t done = 0;
    for (std::size_t found = svg.find(word); found != std::string::npos; found = svg.find(word, done)) {
        const std::size_t begin = found + word.size();
        std::size_t end = begin;
        while (end < svg.size() && Loam::isDigit(svg[end]))
            ++end;
        result.append(svg, done, begin - done);
        if (end > begin)
            result += std::to_string(numbers.try_emplace(svg.substr(begin, end - begin), numbers.size()).first->second);
        done = end;
    }
    return result.append(svg, done);
}

void setColor(cairo_t* cairo, const Canvas::Color& color)
{
    cairo_set_source_rgba(cairo, static_cast<double>(color.r), static_cast<double>(color.g),
                          static_cast<double>(color.b), static_cast<double>(color.a));
}

void addStop(cairo_pattern_t* pattern, double offset, const Canvas::Color& color)
{
    cairo_pattern_add_color_stop_rgba(pattern, offset, static_cast<double>(color.r), static_cast<double>(color.g),
                                      static_cast<double>(color.b), static_cast<double>(color.a));
}

void setPath(cairo_t* cairo, const std::vector<Canvas::Path>& paths, bool isClosed)
{
    cairo_new_path(cairo);
    for (const Canvas::Path& path : paths) {
        cairo_new_sub_path(cairo);
        for (const Pixel& pixel : path)
            cairo_line_to(cairo, pixel.x, pixel.y);
        if (isClosed)
            cairo_close_path(cairo);
    }
}

// Returns the signed distance of a place from the line from a to b.
double signedDistance(const Pixel& a, const Pixel& b, const Pixel& place)
{
    return ((b.x - a.x) * (place.y - a.y) - (b.y - a.y) * (place.x - a.x)) / std::hypot(b.x - a.x, b.y - a.y);
}

// Returns the intersection of two convex paths. The first lies inside the given circle.
Canvas::Path intersection(Canvas::Path path, const Pixel& center, double radius, const Canvas::Path& with)
{
    double doubledArea = 0;
    for (std::size_t i = 0; i < with.size(); ++i) {
        const Pixel& next = with[(i + 1) % with.size()];
        doubledArea += with[i].x * next.y - next.x * with[i].y;
    }
    const double inwards = doubledArea < 0 ? -1 : 1;
    Canvas::Path cut;
    for (std::size_t side = 0; side < with.size(); ++side) {
        const Pixel& a = with[side];
        const Pixel& b = with[(side + 1) % with.size()];
        // Most sides are far away.
        if (a == b || inwards * signedDistance(a, b, center) >= radius)
            continue;
        cut.clear();
        for (std::size_t i = 0; i < path.size(); ++i) {
            const Pixel& from = path[i];
            const Pixel& to = path[(i + 1) % path.size()];
            const double before = inwards * signedDistance(a, b, from);
            const double after = inwards * signedDistance(a, b, to);
            if (before >= 0)
                cut.push_back(from);
            if ((before >= 0) != (after >= 0)) {
                const double part = before / (before - after);
                cut.push_back({from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part});
            }
        }
        path.swap(cut);
    }
    return path;
}

void setPath(cairo_t* cairo, const Rectangle& rectangle)
{
    cairo_new_path(cairo);
    cairo_rectangle(cairo, rectangle.left, rectangle.top, rectangle.width, rectangle.height);
}

} // namespace

PictureFormat pictureFormat(const std::string& file)
{
    const std::string found = std::filesystem::path(file).extension().string();
    std::string ending = found;
    for (char& c : ending)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (ending == ".png")
        return PictureFormat::Png;
    if (ending == ".svg")
        return PictureFormat::Svg;
    throw std::runtime_error{file + ": found " + (found.empty() ? "no extension" : "the extension \"" + found + '"')
                             + ", expected \".png\" or \".svg\""};
}

struct Canvas::Drawing {
    std::string bytes; // outlives the surface, which writes to it
    cairo_surface_t* surface = nullptr;
    cairo_t* cairo = nullptr;

    Drawing() = default;
    Drawing(const Drawing&) = delete;
    Drawing& operator=(const Drawing&) = delete;
    ~Drawing()
    {
        cairo_destroy(cairo);
        cairo_surface_destroy(surface);
    }
};

Canvas::Canvas(PictureFormat format, int width, int height)
    : m_format{format}, m_width{width}, m_height{height}, m_drawing{std::make_unique<Drawing>()}
{
    if (!(width >= 1 && width <= largestSize && height >= 1 && height <= largestSize))
        throw std::runtime_error{"found a picture of " + std::to_string(width) + " x " + std::to_string(height)
                                 + " pixels, expected sides from 1 to " + std::to_string(largestSize)};
    if (format == PictureFormat::Png) {
        m_drawing->surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    } else {
        m_drawing->surface = cairo_svg_surface_create_for_stream(append, &m_drawing->bytes, width, height);
        cairo_svg_surface_set_document_unit(m_drawing->surface, CAIRO_SVG_UNIT_PX);
    }
    if (const cairo_status_t status = cairo_surface_status(m_drawing->surface); status != CAIRO_STATUS_SUCCESS)
        fail(status);
    cairo_t* const cairo = m_drawing->cairo = cairo_create(m_drawing->surface);
    cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);

    // Both formats place letters alike, independently of the user's settings.
    cairo_font_options_t* const options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_set_font_options(cairo, options);
    cairo_font_options_destroy(options);
}

Canvas::~Canvas() = default;

void Canvas::clear(const Color& color)
{
    setColor(m_drawing->cairo, color);
    cairo_paint(m_drawing->cairo);
}

void Canvas::fill(const std::vector<Path>& paths, const Color& color)
{
    setPath(m_drawing->cairo, paths, true);
    setColor(m_drawing->cairo, color);
    cairo_fill(m_drawing->cairo);
}

void Canvas::fill(const std::vector<Path>& paths, const RadialColors& colors)
{
    cairo_pattern_t* const pattern =
        cairo_pattern_create_radial(colors.innerCenter.x, colors.innerCenter.y, colors.innerRadius,
                                    colors.outerCenter.x, colors.outerCenter.y, colors.outerRadius);
    addStop(pattern, 0, colors.inner);
    addStop(pattern, 1, colors.outer);
    setPath(m_drawing->cairo, paths, true);
    cairo_set_source(m_drawing->cairo, pattern);
    cairo_fill(m_drawing->cairo);
    cairo_pattern_destroy(pattern);
}

void Canvas::fill(const Rectangle& rectangle, const std::vector<Color>& leftToRight)
{
    cairo_pattern_t* const pattern = cairo_pattern_create_linear(rectangle.left, 0, rectangle.right(), 0);
    for (std::size_t i = 0; i < leftToRight.size(); ++i)
        addStop(pattern, static_cast<double>(i) / static_cast<double>(leftToRight.size() - 1), leftToRight[i]);
    setPath(m_drawing->cairo, rectangle);
    cairo_set_source(m_drawing->cairo, pattern);
    cairo_fill(m_drawing->cairo);
    cairo_pattern_destroy(pattern);
}

void Canvas::fill(const Rectangle& rectangle, const Color& color)
{
    setPath(m_drawing->cairo, rectangle);
    setColor(m_drawing->cairo, color);
    cairo_fill(m_drawing->cairo);
}

void Canvas::stroke(const std::vector<Path>& paths, const Color& color, double lineWidth, bool isClosed)
{
    setPath(m_drawing->cairo, paths, isClosed);
    setColor(m_drawing->cairo, color);
    cairo_set_line_width(m_drawing->cairo, lineWidth);
    cairo_stroke(m_drawing->cairo);
}

void Canvas::stroke(const Rectangle& rectangle, const Color& color, double lineWidth)
{
    setPath(m_drawing->cairo, rectangle);
    setColor(m_drawing->cairo, color);
    cairo_set_line_width(m_drawing->cairo, lineWidth);
    cairo_stroke(m_drawing->cairo);
}

void Canvas::circle(const Pixel& center, double radius, const Color& color, const Color& outline, double lineWidth)
{
    cairo_t* const cairo = m_drawing->cairo;
    cairo_new_path(cairo);
    cairo_arc(cairo, center.x, center.y, radius, 0, 2 * std::numbers::pi);
    cairo_close_path(cairo);
    setColor(cairo, color);
    cairo_fill(cairo);
    cairo_arc(cairo, center.x, center.y, radius + lineWidth / 2, 0, 2 * std::numbers::pi);
    cairo_close_path(cairo);
    setColor(cairo, outline);
    cairo_set_line_width(cairo, lineWidth);
    cairo_stroke(cairo);
}

void Canvas::circle(const Pixel& center, double radius, const Color& color, const Color& outline, double lineWidth,
                    const Path& within)
{
    Path circlePath;
    constexpr int corners = 64;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2 * std::numbers::pi * i / corners;
        circlePath.push_back({center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)});
    }
    // cairo's clipping would repeat the clip path in an SVG for each circle.
    const Path part = intersection(circlePath, center, radius, within);
    if (part == circlePath) {
        circle(center, radius, color, outline, lineWidth);
        return;
    }
    fill({part}, color);
    stroke({part}, outline, lineWidth, true);
}

void Canvas::beginClip(const Rectangle& rectangle)
{
    cairo_save(m_drawing->cairo);
    setPath(m_drawing->cairo, rectangle);
    cairo_clip(m_drawing->cairo);
}

void Canvas::beginClip(const std::vector<Path>& paths)
{
    cairo_save(m_drawing->cairo);
    setPath(m_drawing->cairo, paths, true);
    cairo_clip(m_drawing->cairo);
}

void Canvas::endClip()
{
    cairo_restore(m_drawing->cairo);
}

void Canvas::setFont(double size, bool isBold)
{
    cairo_select_font_face(m_drawing->cairo, "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           isBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(m_drawing->cairo, size);
}

void Canvas::text(const Pixel& place, std::string_view text, double size, const Color& color, Align align, bool isBold)
{
    const double width = align == Align::Left ? 0 : textWidth(text, size, isBold);
    setFont(size, isBold);
    setColor(m_drawing->cairo, color);
    cairo_move_to(m_drawing->cairo, place.x - (align == Align::Right ? width : width / 2), place.y);
    cairo_show_text(m_drawing->cairo, drawable(text).c_str());
    cairo_new_path(m_drawing->cairo);
}

double Canvas::textWidth(std::string_view text, double size, bool isBold)
{
    setFont(size, isBold);
    cairo_text_extents_t extents{};
    cairo_text_extents(m_drawing->cairo, drawable(text).c_str(), &extents);
    return extents.x_advance;
}

std::string Canvas::finished()
{
    if (const cairo_status_t status = cairo_status(m_drawing->cairo); status != CAIRO_STATUS_SUCCESS)
        fail(status);
    cairo_status_t status = CAIRO_STATUS_SUCCESS;
    if (m_format == PictureFormat::Png) {
        status = cairo_surface_write_to_png_stream(m_drawing->surface, append, &m_drawing->bytes);
    } else {
        cairo_surface_finish(m_drawing->surface);
        status = cairo_surface_status(m_drawing->surface);
    }
    if (status != CAIRO_STATUS_SUCCESS)
        fail(status);
    return m_format == PictureFormat::Png ? std::move(m_drawing->bytes) : withOwnSurfaceNumbers(m_drawing->bytes);
}

} // namespace Earth
