#include "tarn/TarnProcess.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

TarnProcess::TarnProcess(const std::vector<std::string>& arguments, const Options& options)
{
    std::vector<std::string> words;
    if (!options.shell.empty())
        words = {"/bin/sh", "-c", options.shell + "; exec \"$@\"", "sh"};
    words.emplace_back(TARN_PROGRAM);
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argumentPointers;
    for (std::string& word : words)
        argumentPointers.push_back(word.data());
    argumentPointers.push_back(nullptr);

    std::vector<std::string> settings = options.environment;
    // A shell would use the last of two settings, and the program the first.
    if (std::ranges::none_of(settings, [](const std::string& each) { return each.starts_with("TARN_LIBRARIES="); }))
        settings.emplace_back("TARN_LIBRARIES=" TEST_OBJECTS_FOLDER);
    std::vector<char*> environmentPointers;
    for (std::string& setting : settings)
        environmentPointers.push_back(setting.data());
    for (char** entry = environ; *entry; ++entry) {
        const std::string inherited = *entry;
        const std::string name = inherited.substr(0, inherited.find('=') + 1);
        if (std::ranges::none_of(settings, [&](const std::string& setting) { return setting.starts_with(name); }))
            environmentPointers.push_back(*entry);
    }
    environmentPointers.push_back(nullptr);

    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("cannot make a pipe");
    m_errorPipe = ends[0];

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    const std::string output = m_folder.file("out");
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_adddup2(&files, ends[1], STDERR_FILENO);

    // The tests may run in the background, where signals are ignored.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
        sigaddset(&defaults, signal);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

    const int error = ::posix_spawn(&m_process, argumentPointers[0], &files, &attributes, argumentPointers.data(),
                                    environmentPointers.data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    ::close(ends[1]);
    if (error != 0)
        throw std::runtime_error("cannot start " + words[0]);
}

TarnProcess::~TarnProcess()
{
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    ::close(m_errorPipe);
}

bool TarnProcess::readError()
{
    pollfd waiting{m_errorPipe, POLLIN, 0};
    constexpr int Minute = 60'000;
    if (::poll(&waiting, 1, Minute) == 0) {
        ADD_FAILURE() << "the program hangs; it printed: " << m_error;
        ::kill(m_process, SIGKILL);
        return false;
    }
    char block[4096];
    ssize_t got = 0;
    do
        got = ::read(m_errorPipe, block, sizeof block);
    while (got < 0 && errno == EINTR);
    if (got <= 0)
        return false;
    m_error.append(block, static_cast<std::size_t>(got));
    return true;
}

bool TarnProcess::waitForMessage(const std::string& text)
{
    while (m_error.find(text) == std::string::npos) {
        if (!readError())
            return false;
    }
    return true;
}

void TarnProcess::send(int signal) const
{
    ::kill(m_process, signal);
}

ProcessResult TarnProcess::wait()
{
    while (readError()) {}
    int status = 0;
    ::waitpid(m_process, &status, 0);
    m_process = -1;
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status), contentOf(m_folder.file("out")),
            m_error};
}

ProcessResult runTarn(const std::vector<std::string>& arguments, const TarnProcess::Options& options)
{
    return TarnProcess{arguments, options}.wait();
}
