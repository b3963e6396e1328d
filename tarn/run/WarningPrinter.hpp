#pragma once

#include <tarn/text/SimilarMessages.hpp>

#include <trellis/VActionNotifier.hpp>

#include <atomic>
#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace Tarn {

/// Prints warnings and errors to standard error. Prints each one only once, the reason for which
/// several objects fail only once, and few of many similar messages, so an object that warns in
/// every step does not bury the messages of others. It may be used in several threads.
class WarningPrinter final : public Orla::VActionNotifier {
public:
    WarningPrinter() noexcept;
    ~WarningPrinter() override;

    bool warned(const std::string& message) override;
    bool failed(const std::string& message) override;

    /// Prints which objects failed for a reason that was printed for another one, the number
    /// of occurrences of each repeated message, and the numbers of similar ones not printed.
    void printRepeats() const;

    /// Forgets all messages, so they are printed again when they come again.
    void forget();

    /// Returns the printer that was created last, or null.
    static WarningPrinter* last() noexcept { return s_last; }

private:
    friend class HeldFailures;

    struct Failure {
        std::string first;
        std::set<std::string> others;
    };

    bool print(const std::string& kind, const std::string& message);
    bool printFailure(const std::string& message);

    // Returns true if another object has failed for the same reason. The object is then
    // remembered for the end.
    bool isKnownFailure(const std::string& message);

    mutable std::mutex m_mutex;
    std::map<std::string, std::size_t> m_counts;
    std::map<std::string, Failure> m_failures;        // objects, by reason
    std::map<std::string, SimilarMessages> m_similar; // by kind of message

    static inline std::atomic<WarningPrinter*> s_last{nullptr};
};

/// Keeps the failures of objects until it is destroyed, which prints them. For a step whose
/// failures may be consequences of a fault that is not known yet. Only one may exist at a time.
class HeldFailures {
public:
    HeldFailures() noexcept;
    ~HeldFailures();
    HeldFailures(const HeldFailures&) = delete;
    HeldFailures& operator=(const HeldFailures&) = delete;

    /// Removes the failures that contain \p text.
    void drop(const std::string& text);

private:
    friend class WarningPrinter;

    static bool hold(WarningPrinter& printer, const std::string& message);

    std::mutex m_mutex;
    Loam::StrongPtr<WarningPrinter> m_printer;
    std::vector<std::string> m_messages;

    static inline std::atomic<HeldFailures*> s_current{nullptr};
};

/// Prints a line to standard error, or passes it to the function that `setMessageSink` was called
/// with. Escapes control characters that \p line still contains.
void printLine(const std::string& line);

/// Replaces the function that receives the lines; null prints them.
void setMessageSink(std::function<void(const std::string& line)> sink);

/// Prints a line to standard error, whatever function receives other lines.
void writeLine(const std::string& line);

/// Prints a line that begins with the program's name to standard error.
void say(const std::string& message);

} // namespace Tarn
