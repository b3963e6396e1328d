#include "Bindings.hpp"
#include "References.hpp"
#include "Serving.hpp"
#include "Texts.hpp"

#include <trellis/VActionNotifier.hpp>

#include <mutex>
#include <string>
#include <utility>
#include <vector>

// Passes the framework's warnings to the module logging of Python.

namespace Tarn::Python {

namespace {

struct Message {
    bool isError;
    std::string text;
};

class Notes final : public Orla::VActionNotifier {
public:
    bool warned(const std::string& message) override { return note({false, message}); }
    bool failed(const std::string& message) override { return note({true, message}); }

    std::vector<Message> taken()
    {
        const std::lock_guard lock{m_mutex};
        return std::exchange(m_messages, {});
    }

private:
    bool note(Message message)
    {
        const std::lock_guard lock{m_mutex};
        m_messages.push_back(std::move(message));
        return true;
    }

    std::mutex m_mutex;
    std::vector<Message> m_messages;
};

// Never destroyed: it receives warnings until the process ends.
const Orla::StrongPtr<Notes>& notes()
{
    static const auto& notes = *new Orla::StrongPtr<Notes>(Loam::makeStrong<Notes>());
    return notes;
}

} // namespace

void logMessages()
{
    releaseDropped();
    const std::vector<Message> messages = notes()->taken();
    if (messages.empty())
        return;
    // A pending exception is kept: this also runs while one propagates.
    const py::error_scope pending;
    try {
        const py::object logger = py::module_::import("logging").attr("getLogger")("fathom");
        for (const Message& message : messages)
            logger.attr(message.isError ? "error" : "warning")("%s", toStr(message.text));
    } catch (py::error_already_set& error) {
        error.discard_as_unraisable("logging of fathom");
    }
}

void bindMessages(py::module_& module)
{
    Orla::VActionNotifier::add(notes());
    module.def("_log_messages", logMessages);
    // The interpreter may end while networks are destroyed; their last warnings are printed.
    py::module_::import("atexit").attr("register")(py::cpp_function([] {
        endServing();
        logMessages();
        Orla::VActionNotifier::remove(notes());
    }));
}

} // namespace Tarn::Python
