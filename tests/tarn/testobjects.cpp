// Objects that show every behaviour a host has to handle.

#include <fathom/Action.hpp>
#include <fathom/Double.hpp>
#include <fathom/String.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VChart.hpp>
#include <fathom/VEnum.hpp>
#include <fathom/VInteractionEvent.hpp>
#include <fathom/VMultipleStringList.hpp>
#include <fathom/VObjectStatus.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VStringList.hpp>
#include <fathom/VUrlSystemHandler.hpp>

#include <trellis/TypedSlotCreator.hpp>
#include <trellis/VManagedObject.hpp>
#include <trellis/VObjectCreator.hpp>
#include <trellis/VValueCreator.hpp>

#include <loam/StringList.hpp>

#include <algorithm>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <limits>
#include <locale>
#include <stdexcept>
#include <string>
#include <thread>

#include <unistd.h>

// A value that no text restores: every read sets a new number.
struct Ticket {
    int number = 0;

    friend bool operator==(const Ticket&, const Ticket&) = default;
};

template<>
struct Orla::VValueTrait<Ticket> {
    static std::string Text(const Ticket& ticket) { return std::to_string(ticket.number); }

    static bool setValueFromText(Ticket& ticket, const std::string&)
    {
        static int last = 0;
        ticket.number = ++last;
        return true;
    }
};

namespace {

using Orla::StrongPtr;
using Orla::TypedSlot;
using Orla::VOutput;

using Preferences = StrongPtr<Orla::VCreationPreferences>;

class Adder final : public Orla::VObject {
public:
    Adder(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, m_a{this, "a", 0, 0}, m_b{this, "b", 0, 0}, m_sum{this, "sum", 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        m_sum(pool) <<= m_a.value(pool) + m_b.value(pool);
        return true;
    }

private:
    TypedSlot<double> m_a;
    TypedSlot<double> m_b;
    VOutput<double> m_sum;
};

class Negation final : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        m_out(request.valuePool()) <<= !m_in.value(request.valuePool());
        return true;
    }

private:
    TypedSlot<bool> m_in{this, "in", false, 0};
    VOutput<bool> m_out{this, "out", true};
};

// Adds 1 up to a limit. A loop through it settles at the limit.
class Counter final : public Orla::VObject {
public:
    Counter(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , m_in{this, "in", 0, 0}
        , m_limit{this, "limit", std::numeric_limits<double>::infinity(), 0}
        , m_out{this, "out", 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        m_out(pool) <<= std::min(m_in.value(pool) + 1, m_limit.value(pool));
        return true;
    }

private:
    TypedSlot<double> m_in;
    TypedSlot<double> m_limit;
    VOutput<double> m_out;
};

// Adds its input to its output in each update: state that belongs to a pool.
class Total final : public Orla::VObject {
public:
    Total(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, m_in{this, "in", 0, 0}, m_scale{this, "scale", 1, 0}, m_out{this, "out", 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        m_out(pool) <<= m_out.value(pool) + m_scale.value(pool) * m_in.value(pool);
        return true;
    }

private:
    TypedSlot<double> m_in;
    TypedSlot<double> m_scale;
    VOutput<double> m_out;
};

// Counts its runs in a member.
class RunCounter final : public Orla::VObject {
public:
    RunCounter(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, m_in{this, "in", 0, 0}, m_runs{this, "runs", 0}
    {
        keepsState();
    }

    bool update(Orla::VRequest& request, double) override
    {
        m_runs(request.valuePool()) <<= ++m_count;
        return true;
    }

private:
    double m_count = 0;
    TypedSlot<double> m_in;
    VOutput<double> m_runs;
};

class Echo final : public Orla::VObject {
public:
    Echo(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, m_text{this, "text", "", 0}, m_out{this, "out", ""}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        m_out(request.valuePool()) <<= m_text.value(request.valuePool());
        return true;
    }

private:
    TypedSlot<std::string> m_text;
    VOutput<std::string> m_out;
};

// Has slots whose names contain dots and an equals sign.
class Dotted final : public Orla::VObject {
public:
    Dotted(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, m_in{this, "in.a=b", 0, 0}, m_out{this, "out.range", Orla::VTime{}}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        m_out(request.valuePool()) <<= Orla::VTime{m_in.value(request.valuePool())};
        return true;
    }

private:
    TypedSlot<double> m_in;
    VOutput<Orla::VTime> m_out;
};

class TimeReader final : public Orla::VObject, public Orla::TimeDependent {
public:
    TimeReader(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , TimeDependent{"time", "range", preferences, Orla::VTime{}}
        , m_out{this, "out", 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        m_out(request.valuePool()) <<= timeSlot().value(request.valuePool()).time;
        return true;
    }

private:
    VOutput<double> m_out;
};

// Fails at every time above 0: throws if `how` is "throw", otherwise returns false.
class Failing final : public Orla::VObject, public Orla::TimeDependent {
public:
    Failing(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , TimeDependent{"time", "range", preferences, Orla::VTime{}}
        , m_how{this, "how", "throw", 0}
        , m_out{this, "out", 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const double time = timeSlot().value(request.valuePool()).time;
        if (time <= 0) {
            m_out(request.valuePool()) <<= 42.0;
            return true;
        }
        if (m_how.value(request.valuePool()) == "throw")
            throw std::runtime_error("out of paint");
        return false;
    }

private:
    TypedSlot<std::string> m_how;
    VOutput<double> m_out;
};

// Prints a message and works until it is cancelled. If `listens` is 0, it never stops.
class Slow final : public Orla::VObject {
public:
    Slow(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, m_listens{this, "listens", 1, 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        std::puts("slow object at work");
        while (m_listens.value(request.valuePool()) == 0 || !request.isCancelled())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return true;
    }

private:
    TypedSlot<double> m_listens;
};

class Canceller final : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        request.cancel();
        return true;
    }
};

// Removes the object that its input names from the network, at any time above 0.
class Remover final : public Orla::VObject, public Orla::TimeDependent {
public:
    Remover(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , TimeDependent{"time", "range", preferences, Orla::VTime{}}
        , m_victim{this, "victim", "", 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        if (timeSlot().value(request.valuePool()).time > 0)
            VManagedObject::remove(VManagedObject::find(m_victim.value(request.valuePool())));
        return true;
    }

private:
    TypedSlot<std::string> m_victim;
};

// Prints to standard output through stdio, iostream and the file descriptor.
class Talker final : public Orla::VObject {
public:
    Talker(const std::string& name, int level, const Preferences& preferences) : VObject{name, level, preferences}
    {
        std::puts("talker: puts in the constructor");
    }

    bool update(Orla::VRequest&, double) override
    {
        std::printf("talker: printf\n");
        std::cout << "talker: cout" << std::endl;
        constexpr char text[] = "talker: write\n";
        return ::write(STDOUT_FILENO, text, sizeof text - 1) > 0;
    }
};

// Sets the global locale, as a library with a graphical toolkit does.
class LocaleSetter final : public Orla::VObject {
public:
    LocaleSetter(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, m_out{this, "out", 0}
    {
        if (!std::setlocale(LC_ALL, ""))
            throw std::runtime_error("no such locale");
        std::locale::global(std::locale{""});
    }

    bool update(Orla::VRequest& request, double) override
    {
        char text[8];
        std::snprintf(text, sizeof text, "%.1f", 0.5);
        if (std::string(text) != "0,5")
            throw std::runtime_error("the locale has no decimal comma");
        m_out(request.valuePool()) <<= 1234567.5;
        return true;
    }

private:
    VOutput<double> m_out;
};

class FileReader final : public Orla::VObject {
public:
    FileReader(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, m_file{this, "file", "", 0}, m_line{this, "line", ""}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        std::ifstream file(inputFile(m_file.value(request.valuePool())));
        std::string line;
        if (!std::getline(file, line))
            throw std::runtime_error("cannot read " + m_file.value(request.valuePool()));
        m_line(request.valuePool()) <<= line;
        return true;
    }

private:
    TypedSlot<std::string> m_file;
    VOutput<std::string> m_line;
};

// Adds the time to its own output.
class Integrator final : public Orla::VObject, public Orla::TimeDependent {
public:
    Integrator(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , TimeDependent{"time", "range", preferences, Orla::VTime{}}
        , m_sum{this, "sum", 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        const double sum = m_sum.value(pool);
        m_sum(pool) << sum + timeSlot().value(pool).time;
        return true;
    }

private:
    VOutput<double> m_sum;
};

// Counts its updates in a member. Declares that unless its name is "secretive".
class Tally final : public Orla::VObject, public Orla::TimeDependent {
public:
    Tally(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , TimeDependent{"time", "range", preferences, Orla::VTime{}}
        , m_in{this, "in", 0, 0}
        , m_count{this, "count", 0}
    {
        if (name == "secretive")
            runsInOnePool();
        else
            keepsState();
    }

    bool update(Orla::VRequest& request, double) override
    {
        ++m_updates;
        m_count(request.valuePool()) <<= m_updates;
        return true;
    }

private:
    TypedSlot<double> m_in;
    VOutput<double> m_count;
    double m_updates = 0;
};

// Writes its text to a file.
class Reporter final : public Orla::VObject, public Orla::TimeDependent {
public:
    Reporter(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , TimeDependent{"time", "range", preferences, Orla::VTime{}}
        , m_text{this, "text", "", 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        std::ofstream file(resultFile("report.txt", pool));
        file.imbue(std::locale::classic());
        if (!(file << m_text.value(pool) << ' ' << timeSlot().value(pool).time).flush())
            throw std::runtime_error("cannot write the report");
        return true;
    }

private:
    TypedSlot<std::string> m_text;
};

// Passes a number on, the longer the smaller it is. Fails for negative numbers.
class Sleeper final : public Orla::VObject, public Orla::TimeDependent {
public:
    Sleeper(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , TimeDependent{"time", "range", preferences, Orla::VTime{}}
        , m_in{this, "in", 0, 0}
        , m_out{this, "out", 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        const double number = m_in.value(pool);
        if (number < 0)
            throw std::runtime_error("the number is negative");
        const double time = timeSlot().value(pool).time;
        std::this_thread::sleep_for(std::chrono::milliseconds(10) / (1 + number + 4 * time));
        m_out(pool) <<= number + time;
        return true;
    }

private:
    TypedSlot<double> m_in;
    VOutput<double> m_out;
};

// Passes a number on. If it is 5 and the file "fuse" has the number of a signal, sends that to the
// process first.
class Fuse final : public Orla::VObject {
public:
    Fuse(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, m_in{this, "in", 0, 0}, m_out{this, "out", 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        int signal = 0;
        if (m_in.value(pool) == 5 && std::ifstream(inputFile("fuse")) >> signal) {
            ::kill(::getpid(), signal);
            while (!request.isCancelled())
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        m_out(pool) <<= m_in.value(pool);
        return true;
    }

private:
    TypedSlot<double> m_in;
    VOutput<double> m_out;
};

class Unmakable final : public Orla::VObject {
public:
    Unmakable(const std::string& name, int level, const Preferences& preferences) : VObject{name, level, preferences}
    {
        throw std::runtime_error("no licence");
    }

    bool update(Orla::VRequest&, double) override { return true; }
};

// Its creation is interrupted by the user if its name is "interrupted".
class Interrupted final : public Orla::VObject {
public:
    Interrupted(const std::string& name, int level, const Preferences& preferences) : VObject{name, level, preferences}
    {
        if (name == "interrupted")
            std::raise(SIGINT);
    }

    bool update(Orla::VRequest&, double) override { return true; }
};

// Has an input with the name of a result.
class FileWriter final : public Orla::VObject {
public:
    FileWriter(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, m_file{this, "file", "", 0}
    {
        m_file.slot()->setFlag(Orla::VSlot::NamesResult);
    }

    bool update(Orla::VRequest&, double) override { return true; }

private:
    TypedSlot<std::string> m_file;
};

class Unfinishable final : public Orla::VObject {
public:
    Unfinishable(const std::string& name, int level, const Preferences& preferences) : VObject{name, level, preferences}
    {
        setupFunctions().insert(
            [](Orla::VSlotContainer*, const Orla::VSlotSet&) { throw std::runtime_error("no partner"); });
    }

    bool update(Orla::VRequest&, double) override { return true; }
};

// Its own library holds it forever.
class Clinging final : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest&, double) override
    {
        static StrongPtr<VObject> held;
        held = Orla::WeakPtrImpl<VObject>(this).lock();
        return true;
    }
};

// Offers the charts that its input lists, separated by commas.
class Chartmaker final : public Orla::VObject, public Orla::Atlas {
public:
    Chartmaker(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, Atlas{"atlas"}, m_charts{this, "charts", "", 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        Orla::VChartList charts;
        const Loam::StringList names(m_charts.value(request.valuePool()), ',');
        for (const std::string& name : names)
            charts.insert(name);
        publish(request.valuePool(), charts);
        return true;
    }

private:
    TypedSlot<std::string> m_charts;
};

// Outputs the name of the chart that it follows.
class Follower final : public Orla::VObject, public Orla::VChartDependent {
public:
    Follower(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, VChartDependent{"chart", 0}, m_out{this, "out", ""}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        m_out(request.valuePool()) <<= getChart(request.valuePool()).name();
        return true;
    }

private:
    VOutput<std::string> m_out;
};

// Offers a chart, follows the chart, and outputs the charts of its updates.
class Cartographer final : public Orla::VObject, public Orla::Atlas, public Orla::VChartDependent {
public:
    Cartographer(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, Atlas{"atlas"}, VChartDependent{"chart", 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        Orla::VChartList charts;
        charts.insert("geographic");
        publish(pool, charts);
        m_seen(pool) <<= m_seen.value(pool) + '[' + getChart(pool).name() + ']';
        return true;
    }

private:
    VOutput<std::string> m_seen{this, "seen", ""};
};

// Logs all events, and holds the grab from a press to the release.
class Listener final : public Orla::VObject, public Orla::Interactive {
public:
    Listener(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, Interactive{"event", 0}, m_log{this, "log", ""}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        using Event = Orla::VInteractionEvent;
        Event event = interactionSlot().value(request.valuePool());
        const Orla::WeakPtrImpl<VObject> self = this;
        if (event.kind == Event::Nothing)
            return true;
        if (!event.mayuse(self)) {
            m_text += "(not mine)";
        } else {
            if (event.kind == Event::Press)
                event.grab(self, Event::GrabReason::Pointer, event.button, nullptr);
            m_text += std::to_string(event.kind) + "@" + std::to_string(event.x) + "," + std::to_string(event.y) + ":"
                      + std::to_string(event.button) + ":" + std::to_string(event.modifiers) + ":" + event.keyText + ":"
                      + event.armingKeyText + ":" + Orla::VValueTrait<double>::Text(event.wheel) + ";";
            if (event.kind == Event::Release)
                event.ungrab(self);
        }
        m_log(request.valuePool()) <<= m_text;
        return true;
    }

private:
    std::string m_text;
    VOutput<std::string> m_log;
};

// Adds up the numbers of the actions that reach it.
class ActionCounter final : public Orla::VObject {
public:
    ActionCounter(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, m_trigger{this, "trigger", nullptr, 0}, m_count{this, "count", 0}
    {
    }

    bool update(Orla::VRequest& request, double number) override
    {
        m_count(request.valuePool()) <<= m_sum += number;
        return true;
    }

private:
    double m_sum = 0;
    TypedSlot<StrongPtr<Orla::VAction>> m_trigger;
    VOutput<double> m_count;
};

// Fails when an action reaches it.
class Touchy final : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest&, double number) override { return number == 0; }

private:
    TypedSlot<StrongPtr<Orla::VAction>> m_trigger{this, "trigger", nullptr, 0};
};

// Reports the status that its inputs give.
class Teller final : public Orla::VObject, public Orla::StatusIndicator {
public:
    Teller(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , StatusIndicator{this, "", 0, Slotname}
        , m_kind{this, "kind", "info", 0}
        , m_text{this, "text", "", 0}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        const std::string kind = m_kind.value(pool);
        const std::string text = m_text.value(pool);
        if (kind == "error")
            setStatusError(pool, text, false);
        else if (kind == "warning")
            setStatusWarning(pool, text);
        else
            setStatusInfo(pool, text);
        return true;
    }

private:
    TypedSlot<std::string> m_kind;
    TypedSlot<std::string> m_text;
};

// Succeeds with a status at time 0 and fails afterwards: throws, returns false, or reports an
// error and returns false.
class FailingTeller final : public Orla::VObject, public Orla::TimeDependent, public Orla::StatusIndicator {
public:
    FailingTeller(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , TimeDependent{"time", "range", preferences, Orla::VTime{}}
        , StatusIndicator{this, "", 0, Slotname}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        const std::string how = m_how.value(pool);
        if (timeSlot().value(pool).time <= 0) {
            setStatusInfo(pool, m_status.value(pool));
            return true;
        }
        if (how == "throw")
            throw std::runtime_error("out of paint");
        if (how == "report")
            setStatusError(pool, "no paint left", false);
        return false;
    }

private:
    TypedSlot<std::string> m_how{this, "how", "throw", 0};
    TypedSlot<std::string> m_status{this, "status", "", 0};
    VOutput<double> m_out{this, "out", 42};
};

// Reports the number that it read.
class Reteller final : public Orla::VObject, public Orla::StatusIndicator {
public:
    Reteller(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, StatusIndicator{this, "", 0, Slotname}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        setStatusInfo(pool, "read " + Orla::VValueTrait<double>::Text(m_a.value(pool)));
        return true;
    }

private:
    TypedSlot<double> m_a{this, "a", 0, 0};
};

class Opener final : public Orla::VObject {
public:
    Opener(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, m_url{this, "url", "", 0}, m_opened{this, "opened", ""}
    {
    }

    bool update(Orla::VRequest& request, double) override
    {
        const bool opened = Orla::VUrlSystemHandler::Exec(m_url.value(request.valuePool()));
        m_opened(request.valuePool()) <<= std::string(opened ? "yes" : "no");
        return true;
    }

private:
    TypedSlot<std::string> m_url;
    VOutput<std::string> m_opened;
};

// Has one input per type that inputs may have, named after the type.
class Everything final : public Orla::VObject {
public:
    Everything(const std::string& name, int level, const Preferences& preferences) : VObject{name, level, preferences}
    {
        for (const std::string& type : Orla::VValueCreator::names()) {
            const auto value = Orla::VValueCreator::find(type);
            bool ok = false;
            if (const auto input = Orla::TypedSlotCreator::find(value->valueType()))
                input->newSlot(this, type, "", ok, nullptr, 0);
        }
    }

    bool update(Orla::VRequest&, double) override { return true; }
};

// Offers choices whose names contain the separators of the text forms.
class Chooser final : public Orla::VObject {
public:
    using One = StrongPtr<Orla::StringSelection, Orla::StringList>;
    using Many = StrongPtr<Orla::MultipleStringSelection, Orla::StringList>;

    Chooser(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , m_case{this, "case", Orla::Enum{cases, 4}, 0}
        , m_one{this, "one", Loam::makeStrong<Orla::StringSelection>("plain", names()), 0}
        , m_many{this, "many",
                 Loam::makeStrong<Orla::MultipleStringSelection>("plain", "plain;pi{e}ces;\u00e4\"\n", ';'), 0}
    {
    }

    bool update(Orla::VRequest&, double) override { return true; }

private:
    static constexpr const char* cases[] = {"plain", "cubic", "two words \u00e4\"\n", "pi{e}ces"};

    static StrongPtr<Orla::StringList> names()
    {
        const auto list = Loam::makeStrong<Orla::StringList>();
        for (const char* name : {"plain", "a|b", "a@b", "@@", "two words \u00e4\"\n{}", ""})
            list->append(name);
        return list;
    }

    TypedSlot<Orla::Enum> m_case;
    TypedSlot<One> m_one;
    TypedSlot<Many> m_many;
};

// Fills its lists from the input `offered`, as objects do from their data.
class Picker final : public Orla::VObject {
public:
    using One = StrongPtr<Orla::StringSelection, Orla::StringList>;
    using Many = StrongPtr<Orla::MultipleStringSelection, Orla::StringList>;

    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        const std::string offered = m_offered.value(pool);
        m_chosen(pool) <<= updateSelection(m_one, pool, Loam::makeStrong<Orla::StringSelection>(',', offered, ""));
        const auto fresh = Loam::makeStrong<Orla::MultipleStringSelection>("", offered, ',');
        if (const Many held = m_many.value(pool))
            *fresh->selection = *held->selection;
        return m_many.slot()->set(pool, Many{fresh});
    }

private:
    TypedSlot<std::string> m_offered{this, "offered", "", 0};
    TypedSlot<One> m_one{this, "one", Loam::makeStrong<Orla::StringSelection>(), 0};
    TypedSlot<Many> m_many{this, "many", Loam::makeStrong<Orla::MultipleStringSelection>(), 0};
    TypedSlot<int> m_count{this, "count", 0, 0};
    VOutput<std::string> m_chosen{this, "chosen", ""};
};

// Its input and its output have the same name.
class Doubler final : public Orla::VObject {
public:
    using VObject::VObject;

    bool update(Orla::VRequest& request, double) override
    {
        m_result(request.valuePool()) <<= 2 * m_value.value(request.valuePool());
        return true;
    }

private:
    TypedSlot<double> m_value{this, "value", 0.0, 0};
    VOutput<double> m_result{this, "value", 0.0};
};

class TicketReader final : public Orla::VObject {
public:
    TicketReader(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, m_ticket{this, "ticket", Ticket{}, 0}
    {
    }

    bool update(Orla::VRequest&, double) override { return true; }

private:
    TypedSlot<Ticket> m_ticket;
};

// Has names that contain markup and bytes that are not UTF-8.
class Misnamed final : public Orla::VObject {
public:
    Misnamed(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
        , m_in{this, "\xFF<b>&amp;\"{in|x}\\N", "", 0}
        , m_out{this, "</TABLE>\n\x01&#65;\\", ""}
    {
    }

    bool update(Orla::VRequest&, double) override { return true; }

private:
    TypedSlot<std::string> m_in;
    VOutput<std::string> m_out;
};

// Throws after a partner has been created for it.
class HalfMade final : public Orla::VObject, public Orla::Interactive {
public:
    HalfMade(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}, Interactive{"event", 0}
    {
        throw std::runtime_error("no licence for events");
    }

    bool update(Orla::VRequest&, double) override { return true; }
};

// Creates another object and holds it forever.
class Hoarder final : public Orla::VObject {
public:
    Hoarder(const std::string& name, int level, const Preferences& preferences) : VObject{name, level, preferences}
    {
        static const StrongPtr<VObject> hoard = createObject("Adder", "hoard");
    }

    bool update(Orla::VRequest&, double) override { return true; }
};

const Orla::VObjectType<Misnamed> misnamedType{"Misnamed"};
const Orla::VObjectType<HalfMade> halfMadeType{"HalfMade"};
const Orla::VObjectType<Hoarder> hoarderType{"Hoarder"};
const Orla::VObjectType<Everything> everythingType{"Everything"};
const Orla::VObjectType<Chooser> chooserType{"Chooser"};
const Orla::VObjectType<TicketReader> ticketReaderType{"TicketReader"};
const Orla::VObjectType<Integrator> integratorType{"Integrator"};
const Orla::VObjectType<Tally> tallyType{"Tally"};
const Orla::VObjectType<Reporter> reporterType{"Reporter"};
const Orla::VObjectType<Sleeper> sleeperType{"Sleeper"};
const Orla::VObjectType<Fuse> fuseType{"Fuse"};
const Orla::VObjectType<Adder> adderType{"Adder"};
const Orla::VObjectType<Negation> negationType{"Negation"};
const Orla::VObjectType<Counter> counterType{"Counter"};
const Orla::VObjectType<Total> totalType{"Total"};
const Orla::VObjectType<RunCounter> runCounterType{"RunCounter"};
const Orla::VObjectType<Echo> echoType{"Echo"};
const Orla::VObjectType<Dotted> dottedType{"Dotted"};
const Orla::VObjectType<TimeReader> timeReaderType{"TimeReader"};
const Orla::VObjectType<Failing> failingType{"Failing"};
const Orla::VObjectType<Slow> slowType{"Slow"};
const Orla::VObjectType<Canceller> cancellerType{"Canceller"};
const Orla::VObjectType<Remover> removerType{"Remover"};
const Orla::VObjectType<Talker> talkerType{"Talker"};
const Orla::VObjectType<LocaleSetter> localeSetterType{"LocaleSetter"};
const Orla::VObjectType<FileReader> fileReaderType{"FileReader"};
const Orla::VObjectType<Unmakable> unmakableType{"Unmakable"};
const Orla::VObjectType<Interrupted> interruptedType{"Interrupted"};
const Orla::VObjectType<FileWriter> fileWriterType{"FileWriter"};
const Orla::VObjectType<Unfinishable> unfinishableType{"Unfinishable"};
const Orla::VObjectType<Clinging> clingingType{"Clinging"};
const Orla::VObjectType<Chartmaker> chartmakerType{"Chartmaker"};
const Orla::VObjectType<Follower> followerType{"Follower"};
const Orla::VObjectType<Listener> listenerType{"Listener"};
const Orla::VObjectType<ActionCounter> actionCounterType{"ActionCounter"};
const Orla::VObjectType<Touchy> touchyType{"Touchy"};
const Orla::VObjectType<Teller> tellerType{"Teller"};
const Orla::VObjectType<FailingTeller> failingTellerType{"FailingTeller"};
const Orla::VObjectType<Cartographer> cartographerType{"Cartographer"};
const Orla::VObjectType<Picker> pickerType{"Picker"};
const Orla::VObjectType<Doubler> doublerType{"Doubler"};
const Orla::VObjectType<Reteller> retellerType{"Reteller"};
const Orla::VObjectType<Opener> openerType{"Opener"};

} // namespace
