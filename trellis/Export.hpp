#pragma once

// Windows and ELF need the attribute in different places: TRELLIS_API on classes and
// functions, TRELLIS_EXTERN_TEMPLATE on the declaration of an instantiation, TRELLIS_TEMPLATE
// on its definition. TRELLIS_HIDDEN marks internal classes that are nested in an exported
// class.
#if defined(_WIN32)
#    define TRELLIS_HIDDEN
#    if defined(trellis_EXPORTS)
#        define TRELLIS_API __declspec(dllexport)
#        define TRELLIS_EXTERN_TEMPLATE
#        define TRELLIS_TEMPLATE __declspec(dllexport)
#    else
#        define TRELLIS_API __declspec(dllimport)
#        define TRELLIS_EXTERN_TEMPLATE __declspec(dllimport)
#        define TRELLIS_TEMPLATE
#    endif
#else
#    define TRELLIS_HIDDEN __attribute__((visibility("hidden")))
#    define TRELLIS_API __attribute__((visibility("default")))
#    define TRELLIS_EXTERN_TEMPLATE __attribute__((visibility("default")))
#    define TRELLIS_TEMPLATE
#endif
