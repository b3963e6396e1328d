#include <tarn/libraries/PythonLibraries.hpp>

#include <tarn/text/Messages.hpp>

#include <trellis/VActionNotifier.hpp>

#include <loam/Environment.hpp>

#include <cstddef>
#include <filesystem>
#include <system_error>
#include <type_traits>

#include <dlfcn.h>

namespace Tarn {

namespace {

namespace fs = std::filesystem;
using Loam::Failure;
using Loam::Result;

// Python's functions are looked up when they are needed, so that the program starts without Python.
// All of them belong to its stable binary interface.
struct Interpreter {
    int (*isInitialized)() = nullptr;
    void (*initialize)(int) = nullptr;
    wchar_t* (*decode)(const char*, std::size_t*) = nullptr;
    void (*setProgramName)(const wchar_t*) = nullptr;
    void* (*saveThread)() = nullptr;
    int (*ensure)() = nullptr;
    void (*release)(int) = nullptr;
    int (*run)(const char*) = nullptr;
    void* (*import)(const char*) = nullptr;
    void* (*call)(void*, const char*, const char*, ...) = nullptr;
    const char* (*text)(void*, long*) = nullptr;
    void (*decrement)(void*) = nullptr;
    void (*clearError)() = nullptr;
    bool isEmbedded = false; // this file started the interpreter

    // Returns false if a function is missing.
    bool find(void* library)
    {
        const auto get = [library](auto& function, const char* name) {
            function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(::dlsym(library, name));
            return function != nullptr;
        };
        return get(isInitialized, "Py_IsInitialized") && get(initialize, "Py_InitializeEx")
               && get(decode, "Py_DecodeLocale") && get(setProgramName, "Py_SetProgramName")
               && get(saveThread, "PyEval_SaveThread") && get(ensure, "PyGILState_Ensure")
               && get(release, "PyGILState_Release") && get(run, "PyRun_SimpleString")
               && get(import, "PyImport_ImportModule") && get(call, "PyObject_CallMethod")
               && get(text, "PyUnicode_AsUTF8AndSize") && get(decrement, "Py_DecRef") && get(clearError, "PyErr_Clear");
    }
};

// The interpreter of a virtual environment knows its packages.
std::string programOfPython()
{
    const std::string environment = Loam::getEnvString("VIRTUAL_ENV");
    return environment.empty() ? std::string(TARN_PYTHON_PROGRAM) : environment + "/bin/python3";
}

Result<Interpreter> startedInterpreter()
{
    Interpreter python;
    // A global library, because Python's own modules use its functions without naming it.
    if (!python.find(RTLD_DEFAULT)) {
        void* const library = ::dlopen(TARN_PYTHON_LIBRARY, RTLD_NOW | RTLD_GLOBAL);
        if (!library) {
            const char* const error = ::dlerror();
            return Failure{"Python is not installed (" + std::string(error ? error : TARN_PYTHON_LIBRARY)
                           + "); on Debian, install python3-fathom"};
        }
        if (!python.find(library))
            return Failure{std::string(TARN_PYTHON_LIBRARY) + " lacks functions that Python has"};
    }
    static bool isEmbedded = false;
    if (python.isInitialized() != 0) {
        python.isEmbedded = isEmbedded;
        return python;
    }
    // Lives as long as the process, as Python requires.
    if (const wchar_t* const program = python.decode(programOfPython().c_str(), nullptr))
        python.setProgramName(program);
    python.initialize(0); // without signal handlers
    // Standard output is for results.
    python.run("import sys; sys.stdout = sys.stderr");
    python.saveThread();
    python.isEmbedded = isEmbedded = true;
    return python;
}

class Lock {
public:
    explicit Lock(const Interpreter& python) : m_python{python}, m_state{python.ensure()} {}
    ~Lock() { m_python.release(m_state); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    const Interpreter& m_python;
    int m_state;
};

// Lets Python find the package in the installation or in the build folder.
void addPackageFolder(const Interpreter& python, const std::string& libraryFolder)
{
    for (const char* const folder : {"/../python3/dist-packages", "/../../python"}) {
        std::error_code error;
        const fs::path path = fs::canonical(libraryFolder + folder, error);
        if (error || !fs::exists(path / "fathom/__init__.py", error))
            continue;
        void* const system = python.import("sys");
        void* const paths = system ? python.call(system, "__getattribute__", "s", "path") : nullptr;
        void* const done = paths ? python.call(paths, "append", "s", path.c_str()) : nullptr;
        for (void* const each : {done, paths, system}) {
            if (each)
                python.decrement(each);
        }
        python.clearError();
        return;
    }
}

// Calls a function of the package with a path; it returns a reason, or an empty text.
Result<void> callPackage(const Interpreter& python, const char* function, const std::string& path)
{
    void* const module = python.import("fathom._loading");
    if (!module) {
        python.clearError();
        return Failure{"the Python package fathom cannot be imported by " + programOfPython()
                       + "; on Debian, install python3-fathom"};
    }
    void* const reason = python.call(module, function, "y", path.c_str());
    python.decrement(module);
    long size = 0;
    const char* const text = reason ? python.text(reason, &size) : nullptr;
    const std::string message = text ? std::string(text, static_cast<std::size_t>(size)) : "Python failed";
    python.clearError();
    if (reason)
        python.decrement(reason);
    return message.empty() ? Result<void>{} : Result<void>{Failure{printable(message)}};
}

} // namespace

bool isPythonLibrary(std::string_view library) noexcept
{
    return library.ends_with(".py");
}

Loam::Result<void> loadPythonLibrary(const std::string& path, const std::string& libraryFolder)
{
    const Result<Interpreter> python = startedInterpreter();
    if (!python)
        return Failure{printable(path) + ": " + python.reason()};
    const Lock lock{*python};
    addPackageFolder(*python, libraryFolder);
    // In a Python program, the thread that waits for an evaluation does this.
    if (python->isEmbedded) {
        if (const Result<void> begun = callPackage(*python, "watch", {}); !begun)
            return Failure{printable(path) + ": " + begun.reason()};
    }
    if (const Result<void> loaded = callPackage(*python, "load", path); !loaded)
        return Failure{printable(path) + ": " + loaded.reason()};
    return {};
}

void unloadPythonLibrary(const std::string& path)
{
    const Result<Interpreter> python = startedInterpreter();
    if (!python)
        return;
    const Lock lock{*python};
    if (const Result<void> unloaded = callPackage(*python, "unload", path); !unloaded)
        Orla::VActionNotifier::Warning(printable(path) + ": " + unloaded.reason());
}

} // namespace Tarn
