#include <tarn/run/EmergencyMessage.hpp>

#include <tarn/text/Activity.hpp>

#include <trellis/VObject.hpp>
#include <trellis/VScheduler.hpp>

#include <algorithm>

#include <unistd.h>

namespace Tarn {

EmergencyMessage& EmergencyMessage::operator<<(std::string_view text) noexcept
{
    const std::size_t size = std::min(text.size(), Limit - m_size);
    std::copy_n(text.begin(), size, m_text.begin() + static_cast<std::ptrdiff_t>(m_size));
    m_size += size;
    return *this;
}

EmergencyMessage& EmergencyMessage::appendName(std::string_view name) noexcept
{
    const std::size_t start = m_size + 1;
    *this << "\"" << name;
    for (std::size_t i = start; i < m_size; ++i) {
        const auto byte = static_cast<unsigned char>(m_text[i]);
        // The control characters U+0080 to U+009F are C2 80 to C2 9F in UTF-8.
        const bool isWideControl = i + 1 < m_size && byte == 0xC2 && static_cast<unsigned char>(m_text[i + 1]) < 0xA0;
        if (isWideControl)
            m_text[i + 1] = '?';
        if (byte < 0x20 || byte == 0x7F || isWideControl)
            m_text[i] = '?';
    }
    return *this << "\"";
}

bool EmergencyMessage::appendObjects() noexcept
{
    std::array<const Orla::VObject*, 8> objects{};
    const std::size_t count = Orla::VScheduler::running(objects);
    for (std::size_t i = 0; i < count; ++i) {
        *this << (i == 0 ? "object " : ", object ");
        appendName(objects[i]->Name());
    }
    return count > 0;
}

bool EmergencyMessage::appendCulprit() noexcept
{
    if (appendObjects())
        return true;
    const Activity* const activity = Activity::current();
    if (!activity)
        return false;
    *this << activity->what() << " ";
    appendName(activity->name());
    return true;
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
