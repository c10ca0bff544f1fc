// What the tests of the metamodel share: models and classes that are let go when a test ends, and short ways to make
// and list things.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "eventLog.h"
#include "zovMetamodel.h"

namespace zov::metamodel::tests {

using events = std::vector<std::string>;
using names = std::vector<string>;

// A model that is torn down at the end of its scope.
class ownModel {
public:
    explicit ownModel(bool caseSensitiveNames = false) : mModel(modelInfo::createModelInfo(caseSensitiveNames)) {}
    ~ownModel() { mModel->tearDown(); }

    ownModel(ownModel const&) = delete;
    ownModel& operator=(ownModel const&) = delete;

    modelInfo* operator->() const { return mModel.get(); }
    refPtr<modelInfo> const& pointer() const { return mModel; }

private:
    refPtr<modelInfo> mModel;
};

// A class that is torn down at the end of its scope: one of no model, or one that a model has replaced.
class ownClass {
public:
    explicit ownClass(wchar_t const* name) : mClass(classInfo::createClassInfo(name)) {}
    explicit ownClass(refPtr<classInfo> adopted) : mClass(std::move(adopted)) {}
    ~ownClass() { mClass->tearDown(); }

    ownClass(ownClass const&) = delete;
    ownClass& operator=(ownClass const&) = delete;

    classInfo* operator->() const { return mClass.get(); }
    refPtr<classInfo> const& pointer() const { return mClass; }
    operator refPtr<classInfo> const&() const { return mClass; }
    operator const_refPtr<classInfo>() const { return mClass; }

private:
    refPtr<classInfo> mClass;
};

// An ordinary field without attributes.
inline refPtr<fieldInfo> addField(refPtr<classInfo> const& owner, wchar_t const* name, eFieldType type = eInt) {
    return owner->createFieldInfo(name, type, genericSet(), L"");
}

// The names of the class's own fields, in order.
inline names fieldNames(refPtr<classInfo> const& owner) {
    names found;
    owner->forEachFieldInfo(
        [&](refPtr<fieldInfo> const& field) {
            found.push_back(field->scName().string());
            return true;
        },
        false);
    return found;
}

inline events sorted(events list) {
    std::sort(list.begin(), list.end());
    return list;
}

// How many of the events begin with this text.
inline std::size_t countStarting(events const& list, std::string const& start) {
    return static_cast<std::size_t>(
        std::count_if(list.begin(), list.end(), [&](std::string const& event) { return event.starts_with(start); }));
}

inline constexpr char const* emptyRefPtr = "assert m_p != NULL @ libs/utils/inc/zovRefPtr.h:156";
inline constexpr char const* emptyConstRefPtr = "assert m_p != NULL @ libs/utils/inc/zovRefPtr.h:348";

// An event that reports this condition of the field's source.
inline std::string fieldAssertion(std::string const& condition, int line) {
    return "assert " + condition + " @ libs/metamodel/src/zovMdlFieldInfo.cpp:" + std::to_string(line);
}

} // namespace zov::metamodel::tests
