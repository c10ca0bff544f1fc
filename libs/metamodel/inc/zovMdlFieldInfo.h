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
// Fails: as each member says; a failed check reports and throws false (zovAssert.h). What needs memory throws
// std::bad_alloc, if nothing else is said, and nothing changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
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
class relationInfo;
struct enumItem;
struct fieldData;

class ZOV_METAMODEL_API fieldInfo final : public iRefObj, public refObj {
public:
    // ---- names

    // The root field's name: the key that lookups compare. The reference is good while the field lives, a copy of it,
    // and the text that it leads to, as long as the process.
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

    // ---- default and null values

    // The default value of a type: false, 0, the empty text, buffer or path; today's date, the present time or moment
    // for date, time and timestamp. Answers false, with `out` as it was, for ePtr, eCustom and values that are no type.
    static bool getDefaultFromType(eFieldType type, genericValue& out);

    // A copy of the field's explicit default value; else, with `inherit`, of the nearest base field's that has one;
    // else the default of the type. Answers false, with `out` as it was, when there is none of them.
    bool getDefaultValue(genericValue& out, bool inherit) const;

    // Gives the field an explicit default, of whatever type, in place of a former one. Answers true.
    bool setDefaultValue(genericValue const& value);

    // What stands for no value in a field of this type: false, 0, the empty text or buffer, 1900-01-01, midnight,
    // 1900-01-01 at midnight, an empty path; the empty genericValue for ePtr and eCustom.
    genericValue createNullValue() const;

    // Whether a value counts as no value. Numbers, texts, dates, times, timestamps and buffers are compared with the
    // null value, floating numbers with a tolerance of 1e-06 (not-a-number is not null); a value held as another type
    // is converted first. For all other types only the empty genericValue is null. Throws false when the value, or no
    // value, cannot be read as the field's type. The value is looked at where it is held: nobody may assign to it
    // meanwhile.
    bool isNullValue(genericValue const& value) const;

    // ---- items

    // Read one item of an enum or bits field from "value, name" into `item`. Blanks in the value and around the name do
    // not matter; further commas vanish from the name. The value is converted to the type; a type without a default
    // keeps it as text. Answer false, with `item` as it was, when there is no comma or the value does not convert. Both
    // read alike; bits are written as masks.
    static bool parseEnumItem(string const& text, eFieldType type, enumItem& item);
    static bool parseBitsItem(string const& text, eFieldType type, enumItem& item);

    // ---- semantic

    // Reads a semantics text, whatever its letter case; the first rule that fits counts, and what it stores in
    // `attribs` is in lower case:
    //   the empty text             eSemNone
    //   primkey...                 eSemPrimkey
    //   length area volume monetary time date timestamp enum bits, the whole text    that semantic
    //   ...custom(NAME)            eSemCustom, NAME under L"custom_semantic" as a string
    //   ...relation(xA,B)          eSemRelation, the names without their first character x, blanks and the trailing
    //                              parentheses under referencedClasses() as a std::vector<string>; eSemNone when none
    //                              is left
    // Answers false, with `sem` eSemNone, for any other text. Throws std::out_of_range when no earlier rule fits and
    // the text ends behind its first "relation(".
    static bool parseSemantics(string const& text, eFieldSemantics& sem, genericSet& attribs);

    // The text of a semantic; the empty text for eSemPrimkey, eSemCustom, and values that are none.
    static scString semanticStringFromType(eFieldSemantics sem);

    // The key of the names that a relation's text refers to.
    static wchar_t const* referencedClasses() noexcept;

    // For a custom or relation semantic the root field's custom semantic text; else the text of the root field's type.
    scString semanticString() const;

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

    // ---- expressions, condition, equality

    // Texts for the host to evaluate. The library keeps them; getters fall back to the base field where the field's own
    // text is empty. setDefaultExpression keeps an empty text, the other two erase their entry then.
    // A constant expression is returned by a field that carries the flag for it, which no setter sets.
    // Setters answer true.
    bool setDefaultExpression(string const& expression);
    bool setConstantExpression(string const& expression);
    bool setAutoExpression(string const& expression);
    string defaultExpression() const;
    string constantExpression() const;
    string autoExpression() const;

    // A condition that values must satisfy. The field keeps a clone; null takes it away. Answers true.
    bool setValueCondition(conditions::condition const* condition);

    // The field's condition, else the base field's; null when there is none.
    // Stays valid while the condition is not replaced and the field lives.
    conditions::condition const* valueCondition() const;

    // A function that compares two values of the field, in place of the type's own; null is kept like any other.
    // Answers true.
    bool setValueEqFunc(valueEqFunction areEqual);

    // The field's function, else, with `inherit`, the base field's; else the type's own, which is null for binary,
    // search path, pointer and custom types. The type's own function throws false when it cannot read a value.
    valueEqFunction valueEqFunc(bool inherit) const;

    // ---- user properties

    // Store a value of the host's under the name, for the field alone or, when inheritable, also for fields that stand
    // for it. Each of the two keeps its own values, so that one name may have both. A value under the name is replaced.
    void setUserProperty(string const& name, string const& value, bool inheritable);
    void setUserProperty(string const& name, refPtr<refObj> const& value, bool inheritable);
    void setUserProperty(string const& name, genericValue const& value, bool inheritable);

    // Read a value into `value`: the field's own, else its inheritable one, else, with searchInherited, the first
    // inheritable one along its base fields. A value that cannot be read as the asked type counts as not found, and the
    // search goes on. Without searchInherited, only the object forms see the inheritable one. Answer whether there was
    // one; `value` is as before otherwise.
    bool getUserProperty(string const& name, string& value, bool searchInherited) const;
    bool getUserProperty(string const& name, refPtr<refObj>& value, bool searchInherited);
    bool getUserProperty(string const& name, const_refPtr<refObj>& value, bool searchInherited) const;
    bool getUserProperty(string const& name, genericValue& value, bool searchInherited) const;

    // Calls `visit` for each private or each inheritable property of the field's own, in some order. Answers false when
    // a visit answered false and stopOnFalse is set (which ends the walk), else true.
    bool forEachUserProperty(bool inheritable, std::function<bool(scString const&, genericValue const&)> const& visit,
                             bool stopOnFalse) const;

    std::uint32_t refCount() const override { return currentCount(); }
    std::uint32_t addRef() override { return refObj::addRef(); }
    std::uint32_t release() override { return refObj::release(); }

private:
    friend class metamodel::classInfo;
    friend class relationInfo;
    friend struct testAccess;

    // A defining field, and an inheriting one.
    fieldInfo(metamodel::classInfo* owner, scString name, eFieldType type, genericSet const& typeAttribs,
              string const& customTypeString);
    fieldInfo(metamodel::classInfo* owner, refPtr<fieldInfo> const& baseField);
    ~fieldInfo() override;
    void destroy() override;

    // A defining field of `owner` under the given name that carries what this one says of itself.
    refPtr<fieldInfo> copyFor(metamodel::classInfo* owner, string const& name) const;

    fieldInfo const& root() const noexcept;
    struct semanticState;
    semanticState semanticNow() const;
    void restoreSemantic(semanticState former) noexcept;

    template <class T>
    bool findInherited(scString key, T& out) const;
    string expressionUnder(wchar_t const* key, int neededFlag) const;
    int flags() const noexcept;
    void clearOwner() noexcept;
    metamodel::classInfo* detachOwner() noexcept;
    ZOV_METAMODEL_LOCAL void releaseInfo();

    // The record lies behind the field, in the same piece of memory.
    struct endRecord {
        void operator()(fieldData* record) const noexcept;
    };
    static void* operator new(std::size_t size);
    static void operator delete(void* storage) noexcept;
    template <class... Arguments>
    fieldData* makeRecord(Arguments&&... arguments);

    std::unique_ptr<fieldData, endRecord> const mData;
};

} // namespace zov::metamodel
