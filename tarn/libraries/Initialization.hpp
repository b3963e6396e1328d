#pragma once

#include <string>

namespace Tarn {

/// Exists while a library is loaded, and thus initialized.
///
/// An exception that leaves the initialization of a library cannot pass through the C library,
/// which still holds its locks, and would end the program without a reason. During the life of
/// this object such an exception is reported with the name of the library, unfinished files
/// are removed, and the program ends with the status of a network that was not understood.
class Initialization {
public:
    /// \p title names the library in the message and must exist as long as this object.
    explicit Initialization(const std::string& title) noexcept;
    ~Initialization();
    Initialization(const Initialization&) = delete;
    Initialization& operator=(const Initialization&) = delete;

private:
    void (*m_former)();
    const std::string* m_outer; // of a library that is loaded by the initialization of another one
};

} // namespace Tarn
