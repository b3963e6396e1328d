#pragma once

#include <exception>
#include <string>

namespace Tarn {

/// Exists while a library is loaded, and thus initialized.
///
/// An exception that leaves the initialization of a library cannot pass through the C library,
/// which still holds its locks; it ends the process through the terminate handler. A program may
/// set a handler for this case that names the library.
class Initialization {
public:
    /// \p title names the library and must exist as long as this object.
    explicit Initialization(const std::string& title) noexcept;
    ~Initialization();
    Initialization(const Initialization&) = delete;
    Initialization& operator=(const Initialization&) = delete;

    /// Sets the terminate handler of the process during the life of later instances. Null, the
    /// initial value, keeps the handler of the process.
    static void setTerminateHandler(std::terminate_handler handler) noexcept;

    /// Returns the title of the library that this thread initializes, or null. Allocates nothing.
    static const std::string* title() noexcept;

private:
    std::terminate_handler m_former = nullptr; // null if this object has not replaced it
    const std::string* m_outer;                // of a library that is loaded by the initialization of another one
};

} // namespace Tarn
