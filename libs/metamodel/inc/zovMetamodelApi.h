// What makes a declaration of zovMetamodel visible outside the library.
#pragma once

#if defined(_WIN32)
#    if defined(ZOV_METAMODEL_BUILD)
#        define ZOV_METAMODEL_API __declspec(dllexport)
#    else
#        define ZOV_METAMODEL_API __declspec(dllimport)
#    endif
#else
#    define ZOV_METAMODEL_API __attribute__((visibility("default")))
#endif
