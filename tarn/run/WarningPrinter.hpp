#pragma once

#include <trellis/VActionNotifier.hpp>

#include <cstddef>
#include <map>
#include <string>

namespace Tarn {

/// Prints each warning and each error to standard error once, so an object that warns in every
/// step does not bury the messages of others.
class WarningPrinter final : public Orla::VActionNotifier {
public:
    ~WarningPrinter() override;

    bool warned(const std::string& message) override;
    bool failed(const std::string& message) override;

    /// Prints the number of occurrences of each repeated message.
    void printRepeats() const;

private:
    bool print(const std::string& message);

    std::map<std::string, std::size_t> m_counts;
};

/// Prints a line to standard error.
void printLine(const std::string& line);

/// Prints a line that begins with the program's name to standard error.
void say(const std::string& message);

} // namespace Tarn
