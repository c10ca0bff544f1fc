// One field of a class: its type, its meaning, and what a host says about it.
//
// Fields are made by their class (classInfo::createFieldInfo and its like). A field holds its class strongly, and
// the class its fields: the cycle is intended and ends with modelInfo::tearDown() or classInfo::tearDown().
//
// A field either defines itself or, as an *inheriting field*, stands in a derived class for a field of a base
// class. Name, type and semantic are then those of the field at the end of that chain, the root; label, unit,
// flags, aliases, type attributes and texts of its own type are the inheriting field's own.
//
// Threads: reading is safe from any thread. Type, semantic and flags may be changed beside readers; label, unit
// and aliases belong to the time while the class is built, by one thread.
//
// Fails: as each member says; a failed check reports and throws false (zovAssert.h).
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "zovGenericSet.h"
#include "zovMdlFieldSemantics.h"
#include "zovMdlFieldType.h"
#include "zovMetamodelApi.h"
#include "zovRefPtr.h"
#include "zovScString.h"
#include "zovString.h"

namespace zov::metamodel {

class classInfo;
struct fieldData;

class ZOV_METAMODEL_API fieldInfo final : public iRefObj, public refObj {
public:
    // ---- names

    // The root field's name: the key that lookups compare. Stays valid as long as the process.
    scString const& scName() const;

    // "class.field". For an inheriting field the part behind the full stop is empty while its class is attached,
    // since it has no name of its own; a field without a class answers the bare name, the root's.
    string qualifiedName() const;

    // Display label and unit, empty at first. The references stay valid until the next set.
    string const& label() const noexcept;
    string const& unit() const noexcept;
    void setLabel(string const& label);
    void setUnit(string const& unit);

    // Aliases of fields never come into being: addAliasname always ends by failing "pAliasNames", lists stay
    // empty, removeAliasname finds nothing and hasAliasname answers false. An empty alias fails "alias.length()".
    void addAliasname(string const& alias);
    void removeAliasname(string const& alias);
    void getAliasnames(std::vector<string>& out) const;
    bool hasAliasname(scString const& alias) const;

    // ---- place in the model

    // The class that the field belongs to; empty after a tear-down.
    refPtr<metamodel::classInfo> classInfo() const;

    // The base-class field that an inheriting field stands for; empty for a defining field.
    refPtr<fieldInfo> baseField() const;

    // ---- flags

    // Whether a value must be given, and whether no two objects may share one. Own to each field.
    bool isMandatory() const noexcept;
    bool isUnique() const noexcept;
    void setMandatory(bool mandatory) noexcept;
    void setUnique(bool unique) noexcept;

    // ---- type

    // Reads a type text such as L"string(80)": letter case, blanks and tabs do not matter. `length` becomes the
    // declared length of a string type, else 0. Answers false, with `type` as it was, when the text names no type.
    // Any text that begins with "string" is one; string(0), string() and string(abc) are none; no other type takes
    // a length; what follows the digits of a length is ignored.
    static bool parseType(string const& text, eFieldType& type, unsigned long& length);

    // The text of a type; the empty text for eCustom and for values that are no type.
    static scString typeStringFromType(eFieldType type);

    // The root field's type, and its text: for eCustom the root's custom type text.
    eFieldType type() const noexcept;
    scString typeString() const;

    // This field's own custom type text. Setting it does not change the type.
    scString customTypeString() const noexcept;
    void setCustomTypeString(string const& text);

    // This field's own type attributes as given at creation; an inheriting field's are empty.
    genericSet const& typeAttribs() const noexcept;

    // A set of types for picking fields. It holds its first argument only; further ones are accepted and ignored.
    class ZOV_METAMODEL_API hasTypeFunc {
    public:
        hasTypeFunc(eFieldType type, eFieldType ignored, ...);

        // Whether the field's type is in the set. Fails "m_p != NULL" for an empty pointer.
        bool operator()(const_refPtr<fieldInfo> const& field) const;

    private:
        struct signedLess {
            bool operator()(eFieldType left, eFieldType right) const noexcept {
                return static_cast<std::int32_t>(left) < static_cast<std::int32_t>(right);
            }
        };

        std::set<eFieldType, signedLess> mTypes;
    };

    // ---- semantic

    // The root field's semantic, and this field's own attributes of it.
    eFieldSemantics semantic() const noexcept;
    genericSet const& semanticAttribs() const noexcept;

    // Gives the field a meaning, and tells its class.
    //   eSemPrimkey          makes the field mandatory and unique, and one of its class's identifying fields
    //   eSemDate, eSemTime   need that type or a timestamp, which becomes a date or a time
    //   eSemTimestamp        needs a timestamp
    //   eSemEnum             needs a number, bool or string type, and L"enumItems" in `attribs`
    //   eSemBits             needs a short, int or long type, and L"enumItems" in `attribs`
    //   eSemCustom           needs a name: `semStr`, or the string under L"custom_semantic" in `attribs`
    // A need that is not met is reported as a failed assertion, but nothing is thrown: semantic, flags and type
    // are as before then and the custom semantic text is empty. The same holds when memory is gone, or telling
    // the class fails; in that last case the new attributes stay.
    // Threads: safe beside readers and beside other calls for fields of the same class.
    void setSemantic(eFieldSemantics sem, genericSet const& attribs, string const& semStr);

    std::uint32_t refCount() const override;
    std::uint32_t addRef() override;
    std::uint32_t release() override;

private:
    friend class metamodel::classInfo;
    friend struct testAccess;

    // A defining field, and an inheriting one.
    fieldInfo(refPtr<metamodel::classInfo> owner, string const& name, eFieldType type, genericSet const& typeAttribs,
              string const& customTypeString);
    fieldInfo(refPtr<metamodel::classInfo> owner, refPtr<fieldInfo> baseField);
    ~fieldInfo() override;
    void destroy() override;

    // A defining field of `owner` under the given name that carries what this one says of itself.
    refPtr<fieldInfo> copyFor(refPtr<metamodel::classInfo> owner, string const& name) const;

    fieldInfo const& root() const noexcept;
    int flags() const noexcept;
    void clearOwner() noexcept;
    void releaseInfo();

    std::unique_ptr<fieldData> mData;
};

} // namespace zov::metamodel
