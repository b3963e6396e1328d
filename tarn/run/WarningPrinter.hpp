#pragma once

#include <trellis/VActionNotifier.hpp>

#include <cstddef>
#include <map>
#include <string>

namespace Tarn {

/// Prints warnings to standard error, each once: an object that complains in
/// every step does not bury what the others say.
class WarningPrinter final : public Orla::VActionNotifier {
public:
    ~WarningPrinter() override;

    bool warned(const std::string& message) override;

    /// Prints how often each warning came that came more than once.
    void printRepeats() const;

private:
    std::map<std::string, std::size_t> m_counts;
};

/// Prints a line to standard error.
void printLine(const std::string& line);

/// Prints a line that begins with the program's name to standard error.
void say(const std::string& message);

} // namespace Tarn
