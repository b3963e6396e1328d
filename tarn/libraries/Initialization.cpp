#include <tarn/libraries/Initialization.hpp>

#include <loam/OutputFile.hpp>

#include <cstring>
#include <exception>

#include <unistd.h>

namespace Tarn {

namespace {

// As of a network with faults.
constexpr int Status = 2;

thread_local const std::string* theTitle = nullptr;

void print(const char* text, std::size_t size) noexcept
{
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text, size);
}

// Allocates nothing: the exception may report that no memory is left.
[[noreturn]] void endBecauseOfLibrary()
{
    Loam::OutputFile::removeUnfinished();
    const auto say = [](const char* text) { print(text, std::strlen(text)); };
    say("tarn: ");
    if (theTitle)
        print(theTitle->data(), theTitle->size());
    say(" cannot be loaded: its initialization threw ");
    try {
        if (const std::exception_ptr thrown = std::current_exception())
            std::rethrow_exception(thrown);
        say("no exception but ended the program");
    } catch (const std::exception& error) {
        say("an exception: ");
        say(error.what());
    } catch (...) {
        say("an object that is not an exception of the standard library");
    }
    say("\n");
    ::_exit(Status);
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
