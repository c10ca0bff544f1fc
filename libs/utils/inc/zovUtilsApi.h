// What makes a declaration of zovUtils visible outside the library.
//
//   ZOV_UTILS_API   a function or class that lives in the library
//   ZOV_UTILS_TYPE  a template or header-only type whose run-time type must be one and the same
//                   in every shared library of the process
#pragma once

#if defined(_WIN32)
#    if defined(ZOV_UTILS_BUILD)
#        define ZOV_UTILS_API __declspec(dllexport)
#    else
#        define ZOV_UTILS_API __declspec(dllimport)
#    endif
#    define ZOV_UTILS_TYPE
#else
#    define ZOV_UTILS_API __attribute__((visibility("default")))
#    define ZOV_UTILS_TYPE __attribute__((visibility("default")))
#endif
