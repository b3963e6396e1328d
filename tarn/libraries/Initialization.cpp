#include <tarn/libraries/Initialization.hpp>

#include <tarn/text/EmergencyMessage.hpp>
#include <tarn/text/EndProcess.hpp>

#include <loam/OutputFile.hpp>

#include <exception>
#include <new>
#include <string_view>

namespace Tarn {

namespace {

// As of a network with faults.
constexpr int Status = 2;

thread_local const std::string* theTitle = nullptr;

// Allocates nothing: the exception may report that no memory is left.
[[noreturn]] void endBecauseOfLibrary()
{
    Loam::OutputFile::removeUnfinished();
    EmergencyMessage message;
    message << "tarn: " << (theTitle ? std::string_view(*theTitle) : "a library")
            << " cannot be loaded: its initialization ";
    try {
        if (const std::exception_ptr thrown = std::current_exception())
            std::rethrow_exception(thrown);
        message << "ended the program without an exception";
    } catch (const std::bad_alloc&) {
        message << "ran out of memory";
    } catch (const std::exception& error) {
        (message << "threw an exception: ").appendForeign(error.what());
    } catch (...) {
        message << "threw an object that is not an exception of the standard library";
    }
    message.write();
    endProcess(Status);
}

} // namespace

Initialization::Initialization(const std::string& title) noexcept
    : m_former{std::set_terminate(endBecauseOfLibrary)}, m_outer{theTitle}
{
    theTitle = &title;
}

Initialization::~Initialization()
{
    theTitle = m_outer;
    std::set_terminate(m_former);
}

} // namespace Tarn
