// One class of a model: its name, label and aliases, its fields, its base classes, the fields that identify its
// objects.
//
//     refPtr<classInfo> part = model->createClassInfo(L"Part");
//     part->createFieldInfo(L"width", eDouble, genericSet(), L"");
//     refPtr<fieldInfo> width = part->fieldInfo(L"WIDTH", false, false);  // found: case does not matter here
//
// Ownership: a class holds its fields and its base classes strongly, and fields hold their class. A model's classes
// therefore live until modelInfo::tearDown(); a class of no model is let go with tearDown() here.
//
// Threads: reading is safe from any thread and waits for nobody: lookups and walks work on what was published when
// they began. Creating fields and adding bases is safe too; label, aliases and the abstract flag belong to the time
// while the class is built, by one thread. Walks may call anything, also on the class being walked.
//
// Fails: a refused operation throws false; so does creating a field when memory is gone, and then nothing changed.
// Whatever else needs memory throws std::bad_alloc, if nothing else is said, and nothing changed either.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include "zovGenericSet.h"
#include "zovMdlFieldType.h"
#include "zovMdlRelationType.h"
#include "zovMetamodelApi.h"
#include "zovRefPtr.h"
#include "zovScString.h"
#include "zovSharedPtr.h"
#include "zovString.h"

namespace zov::metamodel {

class fieldInfo;
class idInfo;
class modelInfo;
class relationInfo;
struct classData;

class ZOV_METAMODEL_API classInfo final : public iRefObj, public refObj {
public:
    // An entry of a table of classes: the class's name and the class.
    using entry = std::pair<scString const, refPtr<classInfo>>;

    // A class that belongs to no model, with names in any letter case. Null when memory is gone.
    static refPtr<classInfo> createClassInfo(string const& name);

    // ---- names and flags

    // The name, always in lower case: the key under which a model keeps the class.
    scString const& scName() const;

    // Display label, empty at first. The reference stays valid until the next set.
    string const& label() const;
    void setLabel(string const& label);

    // Whether the class has no objects of its own.
    bool isAbstract() const;
    void setAbstract(bool abstract);

    // Further names, kept in the spelling and order in which they were added. Adding a known one moves it to the
    // end. A model that ignores letter case finds lower-case aliases only.
    // Fail "alias.length()" when the alias is empty. Removing an unknown alias does nothing.
    void addAliasname(string const& alias);
    void removeAliasname(string const& alias);

    // Whether exactly this text is an alias.
    bool hasAliasname(scString const& alias) const;

    // Appends the aliases to `out`.
    void getAliasnames(std::vector<string>& out) const;

    // ---- fields

    // Creates a field of this class and returns it. A field of that name that the class or a direct base has is
    // returned instead, and the other arguments are ignored. `customTypeString` names the type of eCustom fields.
    // Throws false when memory is gone, or when the class holds a field that equals the name but for letter case
    // and that lookups cannot find (see copyFieldInfoFrom).
    refPtr<metamodel::fieldInfo> createFieldInfo(string const& name, eFieldType type, genericSet const& typeAttribs,
                                                 string const& customTypeString);

    // Creates the field that stands in this class for the field `name` of `baseClass`, or returns the class's own
    // field of that name. Throws false when this class is not derived from baseClass, when baseClass (and its
    // direct bases) have no such field, or when memory is gone. Where this class's case rule does not find the field's
    // name by the given letters, the field is added all the same; the direct base's field is returned then, and
    // without one false is thrown.
    refPtr<metamodel::fieldInfo> createFieldInfo(refPtr<classInfo>& baseClass, string const& name);
    refPtr<metamodel::fieldInfo> createFieldInfo(refPtr<classInfo> const& baseClass, string const& name);

    // The field of this name, by the class's case rule; null when there is none. With searchBaseClasses, direct
    // bases are searched as well, in no particular order; their own bases only when searchAliases is set too.
    // Aliases of fields are never found, whatever the flag.
    refPtr<metamodel::fieldInfo> fieldInfo(string const& name, bool searchBaseClasses, bool searchAliases);
    const_refPtr<metamodel::fieldInfo> fieldInfo(string const& name, bool searchBaseClasses, bool searchAliases) const;

    // A text is not a flag.
    template <class T>
    void fieldInfo(string const&, T const*, bool) = delete;
    template <class T>
    void fieldInfo(string const&, T const*, bool) const = delete;
    template <class T>
    void fieldInfo(string const&, bool, T const*) = delete;
    template <class T>
    void fieldInfo(string const&, bool, T const*) const = delete;

    // Calls `visit` for each field of the class's own, in the order of creation. Answers false when a visit
    // answered false and stopOnFalse is set (which ends the walk), else true. An empty function throws
    // std::bad_function_call at the first field.
    bool forEachFieldInfo(std::function<bool(refPtr<metamodel::fieldInfo>)> const& visit, bool stopOnFalse) const;

    // The number of fields of the class's own.
    std::uint64_t countFields() const;

    // Copies a field of another class into this one, under the prefix (null for none) followed by its name. A field
    // that the class has under that name is returned instead. The prefix is not folded: in a class that ignores
    // letter case, a prefix with capitals leaves a field that no lookup finds, and the call throws false.
    // Throws false when memory is gone. Fails "m_p != NULL" when `from` is empty.
    refPtr<metamodel::fieldInfo> copyFieldInfoFrom(const_refPtr<metamodel::fieldInfo>& from, wchar_t const* prefix);
    refPtr<metamodel::fieldInfo> copyFieldInfoFrom(const_refPtr<metamodel::fieldInfo> const& from,
                                                   wchar_t const* prefix);

    // Copies all fields of the other class's own in the same way, those that are there apart. They appear at once.
    // Answers true; throws and fails as above, and then nothing was copied.
    bool copyInfosFrom(const_refPtr<classInfo>& from, wchar_t const* prefix);
    bool copyInfosFrom(const_refPtr<classInfo> const& from, wchar_t const* prefix);

    // ---- identity

    // Appends the class's own identifying fields, in order.
    void getIdFieldInfos(std::vector<refPtr<metamodel::fieldInfo>>& out) const;

    // The set of the class's identifying fields: the same object at every call, until another field becomes
    // identifying. A field that ceases to be identifying stays in it until then.
    // Fails "rfields.size()>=1" when there is no such field, at every call anew.
    refPtr<metamodel::idInfo> idInfo() const;

    // Called by a field whose semantic has been set; drops the set above when the field is identifying now.
    void onSemanticChanged(refPtr<metamodel::fieldInfo> field);

    // ---- inheritance

    // Makes `base` a direct base of this class. Does nothing when it is empty, or when a base of that name is
    // there already. Nobody guards against a class that is, in the end, a base of itself: do not build one.
    void addBaseClass(refPtr<classInfo> base);

    // Call `visit` for each direct base or direct derived class, in the order of name handles, which is not
    // alphabetical. Answer as forEachFieldInfo does. Linking by addBaseClass leaves the derived table empty: it is
    // only ever refreshed where the entry is there already, so forEachDerivedClass visits nothing.
    bool forEachBaseClass(std::function<bool(entry const&)> const& visit, bool stopOnFalse) const;
    bool forEachDerivedClass(std::function<bool(entry const&)> const& visit, bool stopOnFalse) const;

    // Whether `other` is in the derived table of this class; false for classes linked by addBaseClass.
    bool isBaseOf(const_refPtr<classInfo>& other) const;
    bool isBaseOf(const_refPtr<classInfo> const& other) const;

    // Whether `other`, that very object, is a direct or indirect base of this class.
    bool isDerivedFrom(const_refPtr<classInfo> const& other) const;

    // ---- relations

    // Creates a relation from a field of this class (or, with searchBaseClasses, of a direct base) to a class or to a
    // field, files it with both classes, and gives the from field the relation semantic.
    // An empty `name` becomes the from field's name; an empty `reverseName` the name of the from field's class,
    // followed by a full stop and the from field's name for a relation to a field. To a field, a relation between the
    // same two fields that is there already is returned instead. To a class, a further relation is created at every
    // call. Fails "pFromFld" when there is no such field, "pFromFld->type()" when it has no type and leads to a class,
    // and as the relation does when the target is empty; nothing has changed then. An empty pointer, and nothing
    // changed, when memory is gone.
    refPtr<relationInfo> createRelation(string const& fromFieldName, bool searchBaseClasses, refPtr<classInfo> toClass,
                                        eRelationType type, string const& name, string const& reverseName);
    refPtr<relationInfo> createRelation(string const& fromFieldName, bool searchBaseClasses,
                                        refPtr<metamodel::fieldInfo> toField, eRelationType type, string const& name,
                                        string const& reverseName);

    // Call `visit` for each relation that leaves this class, or arrives at it, in the order of creation. Answer as
    // forEachFieldInfo does.
    bool forEachToRelation(std::function<bool(refPtr<relationInfo>)> const& visit, bool stopOnFalse) const;
    bool forEachFromRelation(std::function<bool(refPtr<relationInfo>)> const& visit, bool stopOnFalse) const;

    // The first relation of exactly this name that leaves this class, else, with searchBaseClasses, one of its bases,
    // depth first; empty when there is none. Reverse names are not searched.
    const_refPtr<relationInfo> toRelation(string const& name, bool searchBaseClasses) const;

    // Reserved: answers an empty pointer and changes nothing.
    refPtr<relationInfo> copyRelationFrom(const_refPtr<relationInfo>& other);
    refPtr<relationInfo> copyRelationFrom(const_refPtr<relationInfo> const& other);

    // ---- user properties

    // Store a value of the host's under the name, for the class alone or, when inheritable, also for derived classes.
    // Each of the two keeps its own values, so that one name may have both. A value under the name is replaced.
    void setUserProperty(string const& name, string const& value, bool inheritable);
    void setUserProperty(string const& name, refPtr<refObj> const& value, bool inheritable);
    void setUserProperty(string const& name, genericValue const& value, bool inheritable);

    // Read a value into `value`: the class's own, else its inheritable one, else, with searchInherited, the first
    // inheritable one of its bases, depth first. A value that cannot be read as the asked type counts as not found, and
    // the search goes on. Without searchInherited, only the text and object forms see the inheritable one. Answer
    // whether there was one; `value` is as before otherwise.
    bool getUserProperty(string const& name, string& value, bool searchInherited) const;
    bool getUserProperty(string const& name, refPtr<refObj>& value, bool searchInherited);
    bool getUserProperty(string const& name, const_refPtr<refObj>& value, bool searchInherited) const;
    bool getUserProperty(string const& name, genericValue& value, bool searchInherited) const;

    // Calls `visit` for each private or each inheritable property of the class's own, in some order. Answers false when
    // a visit answered false and stopOnFalse is set (which ends the walk), else true.
    bool forEachUserProperty(bool inheritable, std::function<bool(scString const&, genericValue const&)> const& visit,
                             bool stopOnFalse) const;

    // ---- the end

    // Lets go of everything that the class holds in cycles: its fields (and the fields that its relations made)
    // forget their class, and the class its fields, bases, derived classes and relations. Names, properties, label and
    // aliases stay. For a class of no model; a model's classes are let go with the model. Allocates nothing, cannot
    // fail, and may be called twice, by any thread, in the middle of a walk and beside readers.
    void tearDown() noexcept;

    // A process-wide note that hosts leave for one another; the library does not read it. False at start.
    static void setIsClosing(bool closing) noexcept;
    static bool isClosing() noexcept;

    std::uint32_t refCount() const override { return currentCount(); }
    std::uint32_t addRef() override { return refObj::addRef(); }
    std::uint32_t release() override { return refObj::release(); }

private:
    friend class modelInfo;
    friend class metamodel::fieldInfo;
    friend struct classData;
    friend struct testAccess;

    classInfo(string const& name, bool caseSensitiveNames);
    ~classInfo() override;
    void destroy() override;

    int flags() const;
    ZOV_METAMODEL_LOCAL void releaseInfo();

    refPtr<metamodel::fieldInfo> findField(std::wstring_view name, bool searchBaseClasses, bool searchAliases) const;
    refPtr<metamodel::fieldInfo> findCreated(std::wstring_view name) const;
    std::vector<refPtr<metamodel::fieldInfo>> identifyingFields() const;
    ZOV_METAMODEL_LOCAL refPtr<metamodel::idInfo> collectedIdInfo() const;
    // For a field that is identifying again, since what was set instead has been taken back.
    ZOV_METAMODEL_LOCAL void onKeyRestored(metamodel::fieldInfo const& field) noexcept;

    refPtr<relationInfo> relationBetween(refPtr<metamodel::fieldInfo> const& fromField,
                                         refPtr<metamodel::fieldInfo> const& toField) const;
    template <class Target>
    refPtr<relationInfo> createAndFile(refPtr<metamodel::fieldInfo> const& fromField, Target const& target,
                                       eRelationType type, string const& name, string const& reverseName);
    void fileRelation(refPtr<relationInfo> const& made);
    template <class T>
    bool findInherited(scString key, T& out) const;

    void addDerivedClass(refPtr<classInfo> derived);
    bool hasBaseClass(refPtr<classInfo> const& base) const;
    bool hasDerivedClass(refPtr<classInfo> const& derived) const;

    sharedPtr<classData> mData;
};

} // namespace zov::metamodel
