// A type of a host's that the library knows by the host's conversions only.
#pragma once

#include <typeinfo>

#include "zovTypeConvert.h"

namespace zov::metamodel::tests {

struct measure {
    int millimetres;
};

// Conversions from a measure into the given types while it lives.
template <class... Targets>
class conversionsFromMeasures {
public:
    template <class Function>
    explicit conversionsFromMeasures(Function function) {
        auto& registry = typeconvert::typeConversionManager::instance();
        (registry.add<Targets, measure>(function), ...);
    }
    ~conversionsFromMeasures() {
        auto& registry = typeconvert::typeConversionManager::instance();
        (registry.add(typeid(Targets), typeid(measure), {}), ...);
    }
    conversionsFromMeasures(conversionsFromMeasures const&) = delete;
    conversionsFromMeasures& operator=(conversionsFromMeasures const&) = delete;
};

} // namespace zov::metamodel::tests
