#pragma once

#include "support/TestFolder.hpp"

#include <string>
#include <vector>

#include <sys/types.h>

/// How a program ended and what it printed.
struct ProcessResult {
    int status = -1; ///< exit status; 1000 and the number of the signal that killed it
    std::string out;
    std::string err;
};

/// The host program, running. Finds the test object library through its
/// environment.
class TarnProcess {
public:
    struct Options {
        std::vector<std::string> environment; ///< NAME=VALUE, over the test's own
        std::string shell;                    ///< commands to run in the shell that becomes the program
    };

    explicit TarnProcess(const std::vector<std::string>& arguments) : TarnProcess{arguments, Options{}} {}
    TarnProcess(const std::vector<std::string>& arguments, const Options& options);

    /// Ends it if it was not waited for.
    ~TarnProcess();

    TarnProcess(const TarnProcess&) = delete;
    TarnProcess& operator=(const TarnProcess&) = delete;

    /// Waits until it has printed \p text to standard error; false if it ends, or
    /// prints nothing for a minute, without.
    bool waitForMessage(const std::string& text);

    void send(int signal) const;

    /// Waits for its end; kills it if it prints nothing for a minute.
    ProcessResult wait();

private:
    bool readError();

    TestFolder m_folder;
    pid_t m_process = -1;
    int m_errorPipe = -1;
    std::string m_error;
};

/// Runs the host program to its end.
ProcessResult runTarn(const std::vector<std::string>& arguments, const TarnProcess::Options& options = {});
