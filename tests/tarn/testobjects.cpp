// Objects with all the habits that a host has to cope with.

#include <fathom/Double.hpp>
#include <fathom/String.hpp>
#include <fathom/TimeDependent.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VManagedObject.hpp>
#include <trellis/VObjectCreator.hpp>

#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>

#include <unistd.h>

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

// Adds 1 up to a limit, so that it settles when it reads itself.
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

// Slots whose names have dots and an equals sign.
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

// Fails in each step behind the first, in the way that its input says.
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

// Works until it is told to stop; says when it has begun.
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

// Takes the object that its input names out of the network.
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

// Prints on all ways that lead to standard output.
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

// As a library does that brings a graphical toolkit.
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
        std::ifstream file(m_file.value(request.valuePool()));
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

class Unmakable final : public Orla::VObject {
public:
    Unmakable(const std::string& name, int level, const Preferences& preferences) : VObject{name, level, preferences}
    {
        throw std::runtime_error("no licence");
    }

    bool update(Orla::VRequest&, double) override { return true; }
};

class Unfinishable final : public Orla::VObject {
public:
    Unfinishable(const std::string& name, int level, const Preferences& preferences)
        : VObject{name, level, preferences}
    {
        setupFunctions().insert(
            [](Orla::VSlotContainer*, const Orla::VSlotSet&) { throw std::runtime_error("no partner"); });
    }

    bool update(Orla::VRequest&, double) override { return true; }
};

// Is held by its own library for ever.
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

const Orla::VObjectType<Adder> adderType{"Adder"};
const Orla::VObjectType<Counter> counterType{"Counter"};
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
const Orla::VObjectType<Unfinishable> unfinishableType{"Unfinishable"};
const Orla::VObjectType<Clinging> clingingType{"Clinging"};

} // namespace
