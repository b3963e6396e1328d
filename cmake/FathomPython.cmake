# Decides whether the Python package is built: by default, if an interpreter with numpy, its headers
# and pybind11 are found.

# The first python3 in the path may be a launcher of another installation, without numpy.
function(fathom_has_numpy result candidate)
    execute_process(
        COMMAND "${candidate}" -c "import sys, numpy; sys.exit(sys.version_info < (3, 11))"
        RESULT_VARIABLE status
        OUTPUT_QUIET
        ERROR_QUIET)
    if(NOT status EQUAL 0)
        set(${result} FALSE PARENT_SCOPE)
    endif()
endfunction()

if(NOT FATHOM_BUILD_HOST OR (DEFINED FATHOM_BUILD_PYTHON AND NOT FATHOM_BUILD_PYTHON))
    set(FATHOM_BUILD_PYTHON OFF)
    return()
endif()

find_program(Python3_EXECUTABLE NAMES python3 VALIDATOR fathom_has_numpy DOC "A Python interpreter with numpy")

set(is_found OFF)
if(Python3_EXECUTABLE)
    find_package(Python3 3.11 QUIET COMPONENTS Interpreter Development.Module)
    # This project chooses the interpreter.
    set(PYBIND11_NOPYTHON ON)
    find_package(pybind11 2.10 CONFIG QUIET)
    if(Python3_Development.Module_FOUND AND pybind11_FOUND)
        set(is_found ON)
    endif()
else()
    # Other parts need an interpreter without numpy.
    unset(Python3_EXECUTABLE CACHE)
endif()
option(FATHOM_BUILD_PYTHON "Build the Python package; needs pybind11 and numpy" ${is_found})
if(FATHOM_BUILD_PYTHON AND NOT is_found)
    message(FATAL_ERROR
        "The Python package needs Python 3.11 with its headers and numpy, and pybind11 2.10; on Debian the "
        "packages python3-dev, python3-numpy and pybind11-dev. -DFATHOM_BUILD_PYTHON=OFF leaves it out.")
endif()
