#include <earth/Chart.hpp>

#include <earth/Ellipsoid.hpp>
#include <earth/Recent.hpp>
#include <earth/StaysLoaded.hpp>

#include <proj.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>
#include <stdexcept>
#include <string_view>

namespace Earth {

namespace {

[[maybe_unused]] const bool projStays = staysLoaded(reinterpret_cast<void*>(&proj_create));

constexpr double none = std::numeric_limits<double>::quiet_NaN();

// Keeps the last message, which is more specific than the number of the error.
void keepMessage(void* kept, int, const char* message)
{
    std::string_view text{message};
    if (const auto function = text.find(": "); function != std::string_view::npos && text.starts_with("proj_"))
        text.remove_prefix(function + 2);
    if (const auto detail = text.find("): "); text.starts_with("Error ") && detail != std::string_view::npos)
        text.remove_prefix(detail + 3);
    *static_cast<std::string*>(kept) = text;
}

bool hasParameter(const std::string& text, const std::string& parameter)
{
    const std::string sought = parameter + '=';
    for (auto found = text.find(sought); found != std::string::npos; found = text.find(sought, found + 1)) {
        if (found == 0 || text[found - 1] == ' ' || text[found - 1] == '+')
            return true;
    }
    return false;
}

// PROJ's own default is the ellipsoid GRS 80.
std::string onWgs84(const std::string& text)
{
    for (const char* shape : {"ellps", "datum", "a", "R"}) {
        if (hasParameter(text, shape))
            return text;
    }
    const bool isPipeline = text.find("step") != std::string::npos;
    return hasParameter(text, "proj") && !isPipeline ? text + " +ellps=WGS84" : text;
}

} // namespace

// A conversion from longitude and latitude. A context and its conversions may be used by
// one thread at a time.
class Chart::Proj {
public:
    explicit Proj(const std::string& text) : m_context{proj_context_create()}
    {
        std::string message;
        proj_log_func(m_context, &message, keepMessage);
        proj_context_set_enable_network(m_context, 0);
        m_conversion = proj_create(m_context, onWgs84(text).c_str());
        if (m_conversion && proj_is_crs(m_conversion))
            convertTo(m_conversion);
        proj_log_func(m_context, nullptr, ignore);
        if (!m_conversion) {
            const char* const reason = proj_context_errno_string(m_context, proj_context_errno(m_context));
            proj_context_destroy(m_context);
            throw std::invalid_argument{"found the chart \"" + text + "\", which PROJ refuses: "
                                        + (message.empty() ? reason ? reason : "no reason is known" : message)};
        }
        const PJ_PROJ_INFO info = proj_pj_info(m_conversion);
        m_hasInverse = info.has_inverse != 0;
        const std::string_view kind{info.id ? info.id : ""};
        m_isGeocentric = m_isGeocentric || kind == "geocent" || kind == "cart";
    }

    Proj(const Proj&) = delete;
    Proj& operator=(const Proj&) = delete;
    ~Proj()
    {
        proj_destroy(m_conversion);
        proj_context_destroy(m_context);
    }

    bool hasInverse() const noexcept { return m_hasInverse; }
    bool isGeocentric() const noexcept { return m_isGeocentric; }
    const std::optional<Extent>& areaOfUse() const noexcept { return m_areaOfUse; }

    void convert(std::span<point> places, PJ_DIRECTION direction) const
    {
        const std::lock_guard lock{m_mutex};
        const bool fromRadians = proj_angular_input(m_conversion, direction);
        const bool toRadians = proj_angular_output(m_conversion, direction);
        for (point& place : places) {
            const double in = fromRadians ? proj_torad(1) : 1;
            // An error of one place must not affect the next.
            proj_errno_reset(m_conversion);
            const PJ_COORD found =
                proj_trans(m_conversion, direction, proj_coord(place.x() * in, place.y() * in, place.z(), 0));
            const double out = toRadians ? proj_todeg(1) : 1;
            place = std::isfinite(found.xy.x) && std::isfinite(found.xy.y)
                        ? point{found.xyz.x * out, found.xyz.y * out, found.xyz.z}
                        : point{none, none, none};
        }
    }

private:
    static void ignore(void*, int, const char*) {}

    void convertTo(PJ* system)
    {
        m_isGeocentric = proj_get_type(system) == PJ_TYPE_GEOCENTRIC_CRS;
        Extent area;
        // Unknown areas are -1000.
        if (proj_get_area_of_use(m_context, system, &area.west, &area.south, &area.east, &area.north, nullptr)
            && area.west >= -180) {
            if (area.east <= area.west)
                area.east += 360;
            m_areaOfUse = area;
        }
        PJ* const places = proj_create(m_context, "+proj=longlat +datum=WGS84 +type=crs");
        PJ* const conversion = proj_create_crs_to_crs_from_pj(m_context, places, system, nullptr, nullptr);
        m_conversion = conversion ? proj_normalize_for_visualization(m_context, conversion) : nullptr;
        proj_destroy(conversion);
        proj_destroy(places);
        proj_destroy(system);
    }

    PJ_CONTEXT* m_context;
    PJ* m_conversion = nullptr;
    bool m_hasInverse = false;
    bool m_isGeocentric = false;
    std::optional<Extent> m_areaOfUse;
    mutable std::mutex m_mutex;
};

Chart::Chart(const std::string& name) : m_name{name}
{
    static Recent<Proj> recent;
    if (name == "geographic")
        m_kind = Kind::Geographic;
    else if (name == "geocentric")
        m_kind = Kind::Geocentric;
    else if (name == "plate carree")
        m_kind = Kind::PlateCarree;
    else if (!isProjText(name))
        throw std::invalid_argument{"found the chart \"" + name
                                    + "\", expected geographic, geocentric, plate carree or a text for PROJ"};
    else {
        m_kind = Kind::Proj;
        m_proj = recent.get(name, [&] { return std::make_shared<const Proj>(name); });
    }
}

bool Chart::isProjText(const std::string& name) noexcept
{
    return hasParameter(name, "proj") || name.find_first_of(":[{") != std::string::npos;
}

bool Chart::isGeocentric() const noexcept
{
    return m_proj ? m_proj->isGeocentric() : m_kind == Kind::Geocentric;
}

bool Chart::hasInverse() const noexcept
{
    return !m_proj || m_proj->hasInverse();
}

std::optional<Chart::Extent> Chart::areaOfUse() const
{
    return m_proj ? m_proj->areaOfUse() : std::nullopt;
}

Chart::point Chart::fromGeographic(const point& place) const
{
    point result = place;
    fromGeographic({&result, 1});
    return result;
}

void Chart::fromGeographic(std::span<point> places) const
{
    if (m_proj)
        return m_proj->convert(places, PJ_FWD);
    for (point& place : places) {
        if (m_kind == Kind::Geocentric)
            place = geocentric(place.x(), place.y(), place.z());
        else if (m_kind == Kind::PlateCarree)
            place = plateCarree(place);
    }
}

Chart::point Chart::toGeographic(const point& place) const
{
    point result = place;
    toGeographic({&result, 1});
    return result;
}

void Chart::toGeographic(std::span<point> places) const
{
    if (m_proj && !m_proj->hasInverse())
        std::fill(places.begin(), places.end(), point{none, none, none});
    else if (m_proj)
        m_proj->convert(places, PJ_INV);
    else {
        for (point& place : places) {
            if (m_kind == Kind::Geocentric)
                place = geographic(place);
            else if (m_kind == Kind::PlateCarree)
                place = fromPlateCarree(place);
        }
    }
}

} // namespace Earth
