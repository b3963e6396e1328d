#pragma once

#include <trellis/VActionNotifier.hpp>
#include <trellis/ValueNotifierList.hpp>

#include <string>
#include <vector>

/// Records the framework's warnings instead of printing them to standard error.
class Warnings {
public:
    Warnings() { Orla::VActionNotifier::add(m_recorder); }
    Warnings(const Warnings&) = delete;
    Warnings& operator=(const Warnings&) = delete;
    ~Warnings() { Orla::VActionNotifier::remove(m_recorder); }

    const std::vector<std::string>& all() const { return m_recorder->messages; }

private:
    struct Recorder final : Orla::VActionNotifier {
        bool warned(const std::string& message) override
        {
            messages.push_back(message);
            return true;
        }

        std::vector<std::string> messages;
    };

    Orla::StrongPtr<Recorder> m_recorder{new Recorder};
};

/// Counts the changes that a parameter announces.
class Changes {
public:
    explicit Changes(const Orla::StrongPtr<Orla::ValueNotifierList>& source) { source->addListener(m_listener); }

    int count() const { return static_cast<int>(m_listener->pools.size()); }

    /// The pool of the last change; null for the initial value.
    Orla::StrongPtr<Orla::ValuePool> lastPool() const { return m_listener->pools.back(); }

private:
    using Pool = Orla::StrongPtr<Orla::ValuePool>;

    struct Listener final : Orla::VValueListener {
        void valueChanged(const Orla::ValueNotifierList&, const Pool& pool) override { pools.push_back(pool); }

        std::vector<Pool> pools;
    };

    Orla::StrongPtr<Listener> m_listener{new Listener};
};
