#pragma once

// SANITIZED is defined if a sanitizer replaces the allocator: its allocator ends the
// program instead of throwing std::bad_alloc.

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#    define SANITIZED
#elif defined(__has_feature)
#    if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#        define SANITIZED
#    endif
#endif
