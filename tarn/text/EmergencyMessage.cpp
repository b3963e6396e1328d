#include <tarn/text/EmergencyMessage.hpp>

#include <tarn/text/Activity.hpp>
#include <tarn/text/RunningCase.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VScheduler.hpp>

#include <loam/StringUtil.hpp>
#include <loam/Utf8.hpp>

#include <algorithm>
#include <charconv>
#include <cstdint>

#include <unistd.h>

namespace Tarn {

EmergencyMessage& EmergencyMessage::operator<<(std::string_view text) noexcept
{
    const std::size_t size = std::min(text.size(), Limit - m_size);
    std::copy_n(text.begin(), size, m_text.begin() + static_cast<std::ptrdiff_t>(m_size));
    m_size += size;
    return *this;
}

EmergencyMessage& EmergencyMessage::appendForeign(std::string_view text) noexcept
{
    while (!text.empty()) {
        const std::size_t length = Loam::characterLength(text);
        const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
        if (m_size + character.size() > Limit)
            break;
        *this << (length == 0 || Loam::StringUtil::isControl(character) ? "?" : character);
        text.remove_prefix(character.size());
    }
    return *this;
}

EmergencyMessage& EmergencyMessage::appendName(std::string_view name) noexcept
{
    *this << "\"";
    return appendForeign(name) << "\"";
}

bool EmergencyMessage::appendObjects(std::string_view before) noexcept
{
    std::array<const Orla::VObject*, 8> objects{};
    const std::size_t count = Orla::VScheduler::running(objects);
    for (std::size_t i = 0; i < count; ++i) {
        *this << (i == 0 ? before : ", ") << "object ";
        appendName(objects[i]->Name());
    }
    return count > 0;
}

bool EmergencyMessage::appendActivity(std::string_view before) noexcept
{
    const Activity* const activity = Activity::current();
    if (!activity)
        return false;
    *this << before << activity->what() << " ";
    appendName(activity->name());
    return true;
}

void EmergencyMessage::appendCase() noexcept
{
    const std::int64_t number = RunningCase::current();
    if (number < 0)
        return;
    std::array<char, 24> digits{};
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    *this << " of case " << std::string_view(digits.data(), end);
}

bool EmergencyMessage::appendContext() noexcept
{
    if (const Orla::VObject* const object = Orla::VScheduler::runningInThisThread()) {
        *this << " in object ";
        appendName(object->Name());
        appendCase();
        return true;
    }
    if (appendActivity(" while "))
        return true;
    if (!appendObjects(" while "))
        return false;
    *this << " ran";
    return true;
}

bool EmergencyMessage::appendRunning() noexcept
{
    return appendObjects({}) || appendActivity({});
}

void EmergencyMessage::write() noexcept
{
    m_text[m_size++] = '\n';
    for (std::size_t done = 0; done < m_size;) {
        const ssize_t written = ::write(STDERR_FILENO, m_text.data() + done, m_size - done);
        if (written <= 0)
            break;
        done += static_cast<std::size_t>(written);
    }
    m_size = 0;
}

} // namespace Tarn
