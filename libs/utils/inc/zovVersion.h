// The version of the two libraries, which are released together.
#pragma once

#define ZOV_VERSION_MAJOR 0
#define ZOV_VERSION_MINOR 1
#define ZOV_VERSION_PATCH 0
#define ZOV_VERSION_TEXT "0.1.0"
