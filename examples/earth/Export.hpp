#pragma once

/// Marks what a library or a network's types need from outside `earth`.
#if defined(_WIN32)
#    if defined(earth_EXPORTS)
#        define EARTH_API __declspec(dllexport)
#    else
#        define EARTH_API __declspec(dllimport)
#    endif
#else
#    define EARTH_API __attribute__((visibility("default")))
#endif
