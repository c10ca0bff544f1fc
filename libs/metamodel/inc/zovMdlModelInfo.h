// The model: the registry of classes by name, and the door through which hosts ask.
//
//     refPtr<modelInfo> model = modelInfo::createModelInfo(false);         // letter case does not matter
//     model->createClassInfo(L"Part", [](refPtr<classInfo> part) {
//         part->createFieldInfo(L"width", eDouble, genericSet(), L"");
//         return true;                                                     // accepted: now everybody sees it
//     });
//     refPtr<fieldInfo> width = model->fieldInfo(L"Part.width", false);
//     model->tearDown();                                                   // classes and fields hold each other
//
// Ownership: the model holds its classes, and they hold each other and their fields in cycles. The end of the model
// alone frees none of what hangs together so; tearDown() does.
//
// Threads: any thread may call anything. Registration takes the model's mutex; lookups and walks take no mutex,
// wait for nobody, and see what was published when they began.
//
// Fails: a refused registration throws false, and the model is as before.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

#include "zovGenericSet.h"
#include "zovMdlClassInfo.h"
#include "zovMetamodelApi.h"
#include "zovRefPtr.h"
#include "zovScString.h"
#include "zovSharedPtr.h"
#include "zovString.h"

namespace zov::metamodel {

class fieldInfo;
struct modelRegistry;

class ZOV_METAMODEL_API modelInfo final : public iRefObj, public refObj {
public:
    // Fills or refuses a class before anybody else can see it.
    using acceptFunction = std::function<bool(refPtr<metamodel::classInfo>)>;

    // A new, empty model. With caseSensitiveNames, lookups take names as they are written; classes are kept under
    // lower-case names all the same, so that such a model finds no class by a name with capitals.
    // Null when memory is gone.
    static refPtr<modelInfo> createModelInfo(bool caseSensitiveNames);

    // ---- classes

    // The class of this name, else, with searchAliases, one that has it as an alias; null when there is none.
    refPtr<metamodel::classInfo> classInfo(string const& name, bool searchAliases);
    const_refPtr<metamodel::classInfo> classInfo(string const& name, bool searchAliases) const;

    // Registers a new class and returns it. `accept` is called with it first, under the model's mutex; when it
    // answers false nothing is registered and null is returned. A class that is not registered is torn down.
    // Throws false when the name is taken (aliases do not count) or memory is gone, and whatever accept throws.
    refPtr<metamodel::classInfo> createClassInfo(string const& name, acceptFunction const& accept = {});

    // The registered class of this name, without calling accept; else as createClassInfo.
    refPtr<metamodel::classInfo> getOrCreateClassInfo(string const& name, acceptFunction const& accept = {});

    // Calls `visit` for each class that was registered when the walk began, in the order of name handles, which is
    // not alphabetical. Answers false when a visit answered false and stopOnFalse is set (which ends the walk), else
    // true. An empty function throws std::bad_function_call at the first class.
    bool forEachClassInfo(std::function<bool(metamodel::classInfo::entry const&)> const& visit, bool stopOnFalse) const;

    // The number of registered classes.
    std::size_t countClasses() const;

    // ---- fields

    // The field of a class; null when there is no such class or field. The flag stands for two things: the class
    // may be named by an alias, and the field may be one of a direct base. Aliases of fields are not searched.
    refPtr<metamodel::fieldInfo> fieldInfo(string const& className, string const& fieldName, bool searchAliases);
    const_refPtr<metamodel::fieldInfo> fieldInfo(string const& className, string const& fieldName,
                                                 bool searchAliases) const;

    // The same for a qualified name such as L"Part.width", split at the first full stop; null when there is none.
    refPtr<metamodel::fieldInfo> fieldInfo(string const& qualifiedName, bool searchAliases);
    const_refPtr<metamodel::fieldInfo> fieldInfo(string const& qualifiedName, bool searchAliases) const;

    // A text is not a flag.
    template <class T>
    void classInfo(string const&, T const*) = delete;
    template <class T>
    void classInfo(string const&, T const*) const = delete;
    template <class T>
    void fieldInfo(string const&, T const*) = delete;
    template <class T>
    void fieldInfo(string const&, T const*) const = delete;
    template <class T>
    void fieldInfo(string const&, string const&, T const*) = delete;
    template <class T>
    void fieldInfo(string const&, string const&, T const*) const = delete;

    // ---- properties

    // Stores a text under the key. L"caseSensitiveNames" is not protected: its text is read as a bool from then on
    // by every lookup and registration, and counts as false when it is none.
    void setAddProp(string const& key, string const& value);

    // Reads a property as text into `out`; false, with `out` as it was, when there is none.
    bool addProp(string const& key, string& out) const;

    // Calls `visit` for each property, in some order; answers as forEachClassInfo does.
    bool forEachAddProp(std::function<bool(scString const&, genericValue const&)> const& visit, bool stopOnFalse) const;

    // ---- the end

    // Lets go of all classes and tears them down, so that everything that no host holds is freed. What a host
    // still holds keeps its own data; its links to other objects are empty afterwards. The model itself stays
    // usable. Allocates nothing, cannot fail, and may be called twice, by any thread, inside accept, in the middle
    // of a walk and beside readers.
    void tearDown() noexcept;

    std::uint32_t refCount() const override { return currentCount(); }
    std::uint32_t addRef() override { return refObj::addRef(); }
    std::uint32_t release() override { return refObj::release(); }

private:
    friend struct testAccess;

    explicit modelInfo(bool caseSensitiveNames);
    ~modelInfo() override;
    void destroy() override;

    refPtr<metamodel::classInfo> findClass(std::wstring_view name, bool searchAliases) const;
    refPtr<metamodel::fieldInfo> findField(std::wstring_view className, std::wstring_view fieldName,
                                           bool searchAliases) const;
    refPtr<metamodel::fieldInfo> findQualifiedField(std::wstring_view qualifiedName, bool searchAliases) const;
    refPtr<metamodel::classInfo> createAndPublish(string const& name, acceptFunction const& accept);

    sharedPtr<modelRegistry> mRegistry;
    genericSet mProperties;
};

} // namespace zov::metamodel
