#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

/// A folder of its own for a test, gone with what is in it at the end.
class TestFolder {
public:
    TestFolder();
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const std::string& path() const noexcept { return m_path; }

    /// The path of the file \p name in it.
    std::string file(const std::string& name) const { return m_path + '/' + name; }

    /// Writes a file and returns its path.
    std::string write(const std::string& name, const std::string& content) const;

    /// Names of everything in it, sorted.
    std::vector<std::string> names() const;

private:
    std::string m_path;
};

/// All of the file \p path; an error of the test if it cannot be read.
std::string contentOf(const std::string& path);

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

/// True if what is no regular file is written directly. A test checks it before it
/// names a device: otherwise a program with that mistake, run by root, would
/// replace the device with a file.
bool isSafeToWriteDevices();

/// Runs the host program to its end.
ProcessResult runTarn(const std::vector<std::string>& arguments, const TarnProcess::Options& options = {});
