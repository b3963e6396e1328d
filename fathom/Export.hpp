#pragma once

// Windows and ELF need the attribute in different places: FATHOM_API on classes and functions,
// FATHOM_EXTERN_TEMPLATE on the declaration of an instantiation, FATHOM_TEMPLATE on its
// definition. FATHOM_VISIBLE marks class templates; on ELF it merges the instantiations in
// different libraries into one.
#if defined(_WIN32)
#    define FATHOM_VISIBLE
#    if defined(fathom_EXPORTS)
#        define FATHOM_API __declspec(dllexport)
#        define FATHOM_EXTERN_TEMPLATE
#        define FATHOM_TEMPLATE __declspec(dllexport)
#    else
#        define FATHOM_API __declspec(dllimport)
#        define FATHOM_EXTERN_TEMPLATE __declspec(dllimport)
#        define FATHOM_TEMPLATE
#    endif
#else
#    define FATHOM_VISIBLE __attribute__((visibility("default")))
#    define FATHOM_API __attribute__((visibility("default")))
#    define FATHOM_EXTERN_TEMPLATE __attribute__((visibility("default")))
#    define FATHOM_TEMPLATE
#endif
