#pragma once

#include "support/TestFolder.hpp"

#include <string>
#include <vector>

#include <sys/types.h>

/// The exit status and the output of a program.
struct ProcessResult {
    int status = -1; ///< exit status, or 1000 plus the number of the signal that killed it
    std::string out;
    std::string err;
};

/// A running host program. It finds the test object library through its environment.
class TarnProcess {
public:
    struct Options {
        std::vector<std::string> environment; ///< NAME=VALUE; overrides the test's own
        std::string shell;                    ///< commands to run in the shell before it becomes the program
    };

    explicit TarnProcess(const std::vector<std::string>& arguments) : TarnProcess{arguments, Options{}} {}
    TarnProcess(const std::vector<std::string>& arguments, const Options& options);

    /// Kills the program unless wait() was called.
    ~TarnProcess();

    TarnProcess(const TarnProcess&) = delete;
    TarnProcess& operator=(const TarnProcess&) = delete;

    /// Waits until the program has printed \p text to standard error. Returns false if it
    /// ends without it, or prints nothing for a minute.
    bool waitForMessage(const std::string& text);

    void send(int signal) const;

    /// Waits until the program ends. Kills it if it prints nothing for a minute.
    ProcessResult wait();

private:
    bool readError();

    TestFolder m_folder;
    pid_t m_process = -1;
    int m_errorPipe = -1;
    std::string m_error;
};

/// Runs the host program until it ends.
ProcessResult runTarn(const std::vector<std::string>& arguments, const TarnProcess::Options& options = {});
