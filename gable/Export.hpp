#pragma once

// Three macros, because Windows and ELF need the attribute in different places:
// GABLE_API on classes and functions, GABLE_EXTERN_TEMPLATE on the declaration of
// an instantiation, GABLE_TEMPLATE on its definition.
#if defined(_WIN32)
#    if defined(gable_EXPORTS)
#        define GABLE_API __declspec(dllexport)
#        define GABLE_EXTERN_TEMPLATE
#        define GABLE_TEMPLATE __declspec(dllexport)
#    else
#        define GABLE_API __declspec(dllimport)
#        define GABLE_EXTERN_TEMPLATE __declspec(dllimport)
#        define GABLE_TEMPLATE
#    endif
#else
#    define GABLE_API __attribute__((visibility("default")))
#    define GABLE_EXTERN_TEMPLATE __attribute__((visibility("default")))
#    define GABLE_TEMPLATE
#endif
