#include <earth/JsonText.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <ios>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace Earth {

std::string shortened(std::string text)
{
    constexpr std::size_t longest = 60;
    if (text.size() > longest)
        text.replace(longest, std::string::npos, "...");
    return text;
}

std::string described(const nlohmann::json* found)
{
    if (!found)
        return "nothing";
    if (found->is_object())
        return "an object";
    if (found->is_array())
        return "an array of " + std::to_string(found->size());
    const char* const kind = found->is_string() ? "the text " : found->is_number() ? "the number " : "";
    return kind + shortened(found->dump(-1, ' ', true, nlohmann::json::error_handler_t::replace));
}

void refuseJson(std::string place, const nlohmann::json* found, std::string expected)
{
    throw JsonFault{std::move(place), described(found), std::move(expected)};
}

JsonFile::JsonFile(const std::string& file, const std::string& expected, std::uint64_t largest,
                   ReadingProgress progress)
    : m_file{file}, m_largest{largest}, m_progress{std::move(progress)}
{
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(file, ignored);
    if (status.type() == std::filesystem::file_type::not_found)
        throw std::runtime_error{file + ": file not found, expected " + expected};
    if (is_directory(status))
        throw std::runtime_error{file + ": found a folder, expected " + expected};
    errno = 0;
    if (!m_content.open(file, std::ios::in | std::ios::binary))
        throw std::runtime_error{file + ": cannot be opened: " + std::generic_category().message(errno)};
    if (is_regular_file(status)) {
        const std::uintmax_t size = std::filesystem::file_size(file, ignored);
        m_size = ignored ? 0 : size;
    }
}

JsonFile::int_type JsonFile::underflow()
{
    constexpr std::size_t blockSize = 65536;
    m_block.resize(blockSize);
    const std::streamsize got = m_content.sgetn(m_block.data(), static_cast<std::streamsize>(m_block.size()));
    m_read += static_cast<std::uint64_t>(got);
    if (m_read > m_largest)
        throw std::runtime_error{m_file + ": larger than " + std::to_string(m_largest >> 20)
                                 + " MiB, expected a smaller file"};
    // The file may grow meanwhile.
    const double fraction = m_size == 0 ? 0 : std::min(1.0, static_cast<double>(m_read) / static_cast<double>(m_size));
    if (m_progress && !m_progress(fraction))
        throw ReadingStopped{};
    setg(m_block.data(), m_block.data(), m_block.data() + got);
    return got == 0 ? traits_type::eof() : traits_type::to_int_type(m_block.front());
}

void rethrowJsonFault(const std::string& name)
{
    try {
        throw;
    } catch (const JsonFault& fault) {
        throw std::runtime_error{name + ": " + fault.place + (fault.place.empty() ? "" : ": ") + "found " + fault.found
                                 + ", expected " + fault.expected};
    } catch (const nlohmann::json::exception& error) {
        std::string_view message = error.what();
        message.remove_prefix(std::min(message.find("] ") + 2, message.size()));
        throw std::runtime_error{name
                                 + ": invalid JSON: " + std::string(message.substr(0, message.find("; last read: ")))};
    } catch (const std::ios_base::failure& error) {
        throw std::runtime_error{name + ": cannot be read: " + error.code().message()};
    }
}

} // namespace Earth
