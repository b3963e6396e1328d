// Objects that end the program.

#include <fathom/Double.hpp>
#include <fathom/String.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObjectCreator.hpp>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using Preferences = Orla::StrongPtr<Orla::VCreationPreferences>;

__attribute__((noinline)) int overflow(volatile int* outer)
{
    volatile int frame[1000] = {*outer};
    return *outer > 1 ? 0 : overflow(frame) + frame[999];
}

// Does what its input asks for at any time above 0.
class Crasher final : public Orla::VObject, public Orla::TimeDependent {
public:
    Crasher(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, TimeDependent{"time", "range", preferences, Orla::VTime{}}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        const double time = getTime(pool, 0, Orla::Range{});
        m_out(pool) <<= time;
        if (time > 0)
            crash(m_how.value(pool));
        return true;
    }

private:
    static void crash(const std::string& how)
    {
        volatile int zero = 0;
        if (how == "fault")
            *reinterpret_cast<volatile int*>(8 + zero) = 1;
        else if (how == "overflow")
            overflow(&zero);
        else if (how == "division")
            std::raise(SIGFPE);
        else if (how == "abort")
            std::abort();
        else if (how == "terminate")
            std::terminate();
        else if (how == "exit")
            std::exit(zero);
        else if (how == "quick_exit")
            std::quick_exit(zero);
        else if (how == "_exit")
            ::_exit(zero);
        else if (how == "_Exit")
            std::_Exit(zero);
        else if (how == "throw in noexcept")
            throwThrough();
        else if (how == "fault in a thread")
            std::thread([] { *reinterpret_cast<volatile int*>(8) = 1; }).join();
        else if (how == "forked exit")
            runForked([] { std::exit(3); });
        else if (how == "forked fault")
            runForked([] { *reinterpret_cast<volatile int*>(8) = 1; });
        else if (how == "forked signal")
            runForked([] { ::kill(::getpid(), SIGTERM); });
    }

    static void throwReason() { throw std::runtime_error("lost \x1B[1m"); }
    static void throwThrough() noexcept { throwReason(); }

    // Throws the status of a process that runs `child`.
    static void runForked(void (*child)())
    {
        const pid_t process = ::fork();
        if (process == 0) {
            child();
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(process, &status, 0);
        throw std::runtime_error(WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                                                     : "status " + std::to_string(WEXITSTATUS(status)));
    }

    Orla::TypedSlot<std::string> m_how{this, "how", "", 0};
    Orla::VOutput<double> m_out{this, "out", 0.0};
};

class QuitterInConstructor final : public Orla::VObject {
public:
    QuitterInConstructor(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
    {
        std::exit(0);
    }

    bool update(Orla::VRequest&, double) override { return true; }
};

const Orla::VObjectType<Crasher> crasherType{"Crasher"};
const Orla::VObjectType<QuitterInConstructor> quitterType{"QuitterInConstructor"};

} // namespace
