#pragma once

/// Marks the classes and functions that other libraries use.
#if defined(_WIN32)
#    if defined(earth_EXPORTS)
#        define EARTH_API __declspec(dllexport)
#    else
#        define EARTH_API __declspec(dllimport)
#    endif
#else
#    define EARTH_API __attribute__((visibility("default")))
#endif
