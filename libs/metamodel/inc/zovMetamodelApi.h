// What makes a declaration of zovMetamodel visible outside the library, and what keeps a member of a visible class
// inside where the platform can.
#pragma once

#if defined(_WIN32)
#    if defined(ZOV_METAMODEL_BUILD)
#        define ZOV_METAMODEL_API __declspec(dllexport)
#    else
#        define ZOV_METAMODEL_API __declspec(dllimport)
#    endif
#    define ZOV_METAMODEL_LOCAL
#else
#    define ZOV_METAMODEL_API __attribute__((visibility("default")))
#    define ZOV_METAMODEL_LOCAL __attribute__((visibility("hidden")))
#endif
