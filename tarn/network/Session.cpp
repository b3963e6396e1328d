#include <tarn/network/Session.hpp>

#include <tarn/libraries/AnnouncedObjects.hpp>
#include <tarn/network/ChartChoice.hpp>
#include <tarn/network/NetworkParser.hpp>
#include <tarn/text/Messages.hpp>
#include <tarn/text/ReadFile.hpp>

#include <trellis/VActionNotifier.hpp>

#include <loam/Numbers.hpp>

#include <algorithm>

namespace Tarn {

namespace {

// Returns the place where the object's input is set, else the place of the object.
Place placeOfSetting(const NetworkFile& file, const std::string& object, const std::string& input)
{
    const auto entry = std::ranges::find(file.objects, object, [](const auto& each) { return each.name.text; });
    if (entry == file.objects.end())
        return {};
    const auto text = std::ranges::find(entry->texts, input, [](const auto& each) { return each.input.text; });
    if (text == entry->texts.end())
        return entry->place;
    return text->exact.empty() ? text->value.place : text->exact.front().place;
}

} // namespace

Session::Session(const std::string& path, const std::vector<std::string>& overrides,
                 std::optional<std::uint64_t> stepLimit, const std::optional<std::string>& chart)
    : m_faults{path}
    , m_folder{folderOf(path)}
    , m_libraries{Libraries::searchPath(m_folder)}
    , m_pool{Loam::makeStrong<Orla::ValuePool>(path)}
{
    const std::string text = readFile(path);
    const NetworkFile file = parseNetwork(text, m_faults);
    m_objects.emplace(m_folder);
    m_objects->setDataFolders(dataFolders());
    m_scope.emplace(*m_objects);
    const std::vector<std::string> missing = m_libraries.loadAll(file.libraries, m_faults);
    m_network = buildNetwork(file, overrides, missing, m_faults);
    m_chart = chart ? PlacedText{*chart, {}} : file.chart;
    if (m_faults.empty() && !m_chart.text.empty())
        chooseChart();
    if (m_faults.empty())
        countSteps(file, stepLimit);
}

Session::~Session()
{
    m_timeProvider = {};
    m_network = {};
    m_pool.reset();
    removeAnnouncedObjects();
    m_scope.reset();
    m_objects.reset();
    if (const Loam::Result<void> unloaded = m_libraries.unload(); !unloaded)
        Orla::VActionNotifier::Warning("The " + unloaded.reason());
}

void Session::chooseChart()
{
    if (const ChartChoice choice = ChartChoice::find())
        choice.want(m_chart.text);
    else
        m_faults.add(m_chart.place, std::string(m_chart.place ? "" : "--") + "chart: found " + inQuotes(m_chart.text)
                                        + ", but no object depends on a chart");
}

void Session::countSteps(const NetworkFile& file, std::optional<std::uint64_t> limit)
{
    m_timeProvider = TimeProvider::find();
    if (!m_timeProvider)
        return;
    const Orla::VTime time = m_timeProvider.time(m_pool);
    const double count = TimeProvider::stepCount(time);
    const auto report = [&](const std::string& expected) {
        m_faults.add(placeOfSetting(file, m_timeProvider.name(), m_timeProvider.inputName()),
                     "object " + inQuotes(m_timeProvider.name()) + ", input " + inQuotes(m_timeProvider.inputName())
                         + ": the time " + Orla::VValueTrait<Orla::VTime>::Text(time) + " has "
                         + Loam::numberText(count) + " steps, " + expected);
    };
    // Negated to refuse NaN too, which compares false with everything.
    if (!(count >= 1 && count <= MostCountedSteps)) {
        report("expected 1 or more, " + Loam::numberText(MostCountedSteps) + " at most");
        return;
    }
    m_stepCount = static_cast<std::uint64_t>(count);
    if (limit)
        m_stepCount = std::min(m_stepCount, *limit);
    else if (count > MostSteps)
        report("more than " + Loam::numberText(MostSteps) + "; --steps=N evaluates the first N of them");
}

} // namespace Tarn
