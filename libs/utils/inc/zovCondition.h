// Conditions that a value must satisfy. The library keeps conditions for hosts and copies them; what a condition
// means and how it is evaluated is the host's business.
#pragma once

#include "zovUtilsApi.h"

namespace zov::conditions {

class ZOV_UTILS_API condition {
public:
    virtual ~condition();

    // A new condition that means the same; the caller owns it. Throws what copying throws.
    virtual condition* clone() const = 0;

protected:
    condition() = default;
    condition(condition const&) = default;
    condition& operator=(condition const&) = default;
};

} // namespace zov::conditions
