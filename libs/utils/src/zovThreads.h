// Thread-local variables of the library, a few words in all, lie at a fixed distance from the thread's own data and are
// found without a call. glibc keeps room for those of libraries that are loaded at run time; not every C library does.
//
//     ZOV_NEAR_THREAD constinit thread_local char mark = 0;
#pragma once

#include <cstddef>

#if defined(__GLIBC__)
#    define ZOV_NEAR_THREAD [[gnu::tls_model("initial-exec")]]
#else
#    define ZOV_NEAR_THREAD
#endif
