// The records of the baselines: what there is to know about a class and a field, in plain values.
#pragma once

#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "workload.h"

namespace zov::benchmarks {

using plainValue = std::variant<std::monostate, bool, int, long, double, std::wstring>;

struct plainField {
    std::wstring mName;
    valueType mType = valueType::boolean;
    plainValue mDefault;

    int intDefault() const {
        auto const* const number = std::get_if<int>(&mDefault);
        return number ? *number : 0;
    }
};

inline std::wstring wide(std::string const& text) {
    return {text.begin(), text.end()};
}

// The names of a workload as both baselines hold them.
class plainNames {
public:
    using text = std::wstring;
    using qualifiedText = std::wstring;

    explicit plainNames(workload const& load) {
        for (auto const& name : load.fieldNames())
            mFieldNames.push_back(wide(name));
    }

    static text classNameOf(std::string const& name) { return wide(name); }
    static text fieldNameOf(std::string const& name) { return wide(name); }
    static qualifiedText qualifiedNameOf(std::string const& className, std::string const& fieldName) {
        return wide(className + "." + fieldName);
    }

protected:
    std::vector<text> mFieldNames;
};

inline plainValue plainDefault(fieldPlan const& plan) {
    if (!plan.mHasDefault) return {};
    switch (plan.mType) {
    case valueType::boolean: return plan.mDefault % 2 != 0;
    case valueType::integer: return int{plan.mDefault};
    case valueType::longInteger: return long{plan.mDefault};
    case valueType::real: return plan.mDefault / 2.0;
    case valueType::text: return std::to_wstring(plan.mDefault);
    }
    throw std::logic_error("a type without a default");
}

} // namespace zov::benchmarks
