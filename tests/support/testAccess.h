// The friend through which tests reach what hosts cannot see. For tests that link the libraries' objects.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "data/classData.h"
#include "data/fieldData.h"
#include "data/modelRegistry.h"
#include "data/relationData.h"
#include "zovMetamodel.h"

namespace zov::metamodel {

struct testAccess {
    static int flags(classInfo const& target) { return target.flags(); }
    static int flags(fieldInfo const& target) { return target.flags(); }

    static void releaseInfo(classInfo& target) { target.releaseInfo(); }
    static void releaseInfo(fieldInfo& target) { target.releaseInfo(); }

    static classData& data(classInfo& target) { return *target.mData; }
    static fieldData& data(fieldInfo& target) { return *target.mData; }
    static modelRegistry& registry(modelInfo& target) { return *target.mRegistry; }

    static void addDerivedClass(classInfo& base, refPtr<classInfo> const& derived) { base.addDerivedClass(derived); }
    static bool hasBaseClass(classInfo const& target, refPtr<classInfo> const& base) {
        return target.hasBaseClass(base);
    }
    static bool hasDerivedClass(classInfo const& target, refPtr<classInfo> const& derived) {
        return target.hasDerivedClass(derived);
    }

    static refPtr<classInfo> makeClass(string const& name, bool caseSensitiveNames) {
        return refPtr<classInfo>(new classInfo(name, caseSensitiveNames));
    }
    static refPtr<fieldInfo> makeField(refPtr<classInfo> const& owner, string const& name, eFieldType type) {
        return refPtr<fieldInfo>(new fieldInfo(owner.get(), scString::createFrom(name), type, genericSet(), L""));
    }
    static refPtr<idInfo> makeId(std::vector<refPtr<fieldInfo>> const& fields) {
        return refPtr<idInfo>(new idInfo(fields));
    }

    // What becomes of a field whose relation could not be filed; `meanwhile` runs before its semantic is taken back.
    static void giveRelationAndTakeItBack(fieldInfo& target, std::function<void()> const& meanwhile) {
        auto former = target.semanticNow();
        target.setSemantic(eSemRelation, genericSet(), L"");
        meanwhile();
        target.restoreSemantic(std::move(former));
    }

    static relationData& data(relationInfo& target) { return *target.mData; }

    // A relation from a field to a field or a class, filed nowhere.
    template <class Target>
    static refPtr<relationInfo> makeRelation(refPtr<fieldInfo> const& from, Target const& to, string const& name,
                                             string const& reverseName) {
        return refPtr<relationInfo>(new relationInfo(from, to, eAgg, name, reverseName));
    }
};

} // namespace zov::metamodel
