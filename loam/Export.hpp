#pragma once

// Three macros, because Windows and ELF need the attribute in different places:
// LOAM_API on classes and functions, LOAM_EXTERN_TEMPLATE on the declaration of
// an instantiation, LOAM_TEMPLATE on its definition.
#if defined(_WIN32)
#    if defined(loam_EXPORTS)
#        define LOAM_API __declspec(dllexport)
#        define LOAM_EXTERN_TEMPLATE
#        define LOAM_TEMPLATE __declspec(dllexport)
#    else
#        define LOAM_API __declspec(dllimport)
#        define LOAM_EXTERN_TEMPLATE __declspec(dllimport)
#        define LOAM_TEMPLATE
#    endif
#else
#    define LOAM_API __attribute__((visibility("default")))
#    define LOAM_EXTERN_TEMPLATE __attribute__((visibility("default")))
#    define LOAM_TEMPLATE
#endif
