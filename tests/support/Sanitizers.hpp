#pragma once

// SANITIZED is defined where a sanitizer's allocator stands in for the usual
// one: it ends the program where the usual one throws std::bad_alloc.

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#    define SANITIZED
#elif defined(__has_feature)
#    if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#        define SANITIZED
#    endif
#endif
