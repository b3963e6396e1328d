#pragma once

// Marks the classes and functions that programs may use. Everything else is hidden in the shared
// library.
#if defined(_WIN32)
#    if defined(libtarn_EXPORTS)
#        define TARN_API __declspec(dllexport)
#    else
#        define TARN_API __declspec(dllimport)
#    endif
#else
#    define TARN_API __attribute__((visibility("default")))
#endif
