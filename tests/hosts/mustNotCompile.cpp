// What a host must not be able to write. CTest compiles this file once as it is, which must succeed, and once for each
// case, which must be refused with the expected message: see CMakeLists.txt beside it.
#include <vector>

#include "zovMetamodel.h"

using zov::const_refPtr;
using zov::genericSet;
using zov::genericValue;
using zov::refObj;
using zov::refPtr;
using zov::scString;
using zov::sharedPtr;
using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::eInt;
using zov::metamodel::fieldInfo;
using zov::metamodel::idInfo;
using zov::metamodel::modelInfo;

// Each case has its like here that compiles, so that a slip in this file cannot pass for a refusal.
void whatHostsMayWrite(refPtr<modelInfo> const& model, refPtr<classInfo> const& part, refPtr<fieldInfo> const& width) {
    model->fieldInfo(L"Part.width", false);
    model->fieldInfo(L"Part", L"width", false);
    model->classInfo(L"Part", false);
    part->fieldInfo(L"width", false, true);
    const_refPtr<fieldInfo> const readOnly = width;
    refPtr<refObj> const object = width;
    refPtr<fieldInfo> const back = zov::refPtrCast<fieldInfo>(object);
    genericValue const value(42);
    scString const name = scString::createFrom(L"width");
    refPtr<modelInfo> const made = modelInfo::createModelInfo(false);
    const_refPtr<modelInfo> const seen = model;
    const_refPtr<classInfo> const found = seen->classInfo(L"Part", false);
    part->createFieldInfo(L"height", eInt, genericSet(), L"");
}

void whatHostsMustNotWrite([[maybe_unused]] refPtr<modelInfo> const& model,
                           [[maybe_unused]] refPtr<classInfo> const& part,
                           [[maybe_unused]] refPtr<fieldInfo> const& width) {
#if defined(CASE_fieldNamedByTwoTexts)
    model->fieldInfo(L"Part", L"width");
#elif defined(CASE_classAskedWithATextForAFlag)
    model->classInfo(L"Part", L"component");
#elif defined(CASE_fieldNamedByThreeTexts)
    model->fieldInfo(L"Part", L"width", L"height");
#elif defined(CASE_basesAskedWithATextForAFlag)
    part->fieldInfo(L"width", L"bases", false);
#elif defined(CASE_aliasesAskedWithATextForAFlag)
    part->fieldInfo(L"width", false, L"aliases");
#elif defined(CASE_constIsCastAway)
    const_refPtr<fieldInfo> const readOnly = width;
    refPtr<fieldInfo> const writable = readOnly;
#elif defined(CASE_constIsAssignedAway)
    const_refPtr<fieldInfo> const readOnly = width;
    refPtr<fieldInfo> writable;
    writable = readOnly;
#elif defined(CASE_downCastWithoutACheck)
    refPtr<refObj> const object = width;
    refPtr<fieldInfo> const field = object;
#elif defined(CASE_pointerToAnotherClass)
    refPtr<classInfo> const other = width;
#elif defined(CASE_writeThroughAReadOnlyPointer)
    const_refPtr<fieldInfo> const readOnly = width;
    readOnly->setLabel(L"Width");
#elif defined(CASE_writeThroughAFoundReadOnlyClass)
    const_refPtr<modelInfo> const seen = model;
    seen->classInfo(L"Part", false)->setLabel(L"Part");
#elif defined(CASE_writableClassFromAReadOnlyModel)
    const_refPtr<modelInfo> const seen = model;
    refPtr<classInfo> const found = seen->classInfo(L"Part", false);
#elif defined(CASE_modelIsCopied)
    modelInfo copy(*model);
#elif defined(CASE_classIsCopied)
    classInfo copy(*part);
#elif defined(CASE_fieldIsAssigned)
    *width = *width;
#elif defined(CASE_modelIsConstructed)
    refPtr<modelInfo> const made(new modelInfo(false));
#elif defined(CASE_classIsConstructed)
    refPtr<classInfo> const made(new classInfo(L"Part", false));
#elif defined(CASE_fieldIsConstructed)
    refPtr<fieldInfo> const made(new fieldInfo(part.get(), zov::scString(), eInt, genericSet(), L""));
#elif defined(CASE_idSetIsConstructed)
    refPtr<idInfo> const made(new idInfo(std::vector<refPtr<fieldInfo>>{width}));
#elif defined(CASE_modelIsDeleted)
    delete model.get();
#elif defined(CASE_classIsDeleted)
    delete part.get();
#elif defined(CASE_fieldIsDeleted)
    delete width.get();
#elif defined(CASE_objectIsDeletedThroughItsInterface)
    zov::iRefObj* const object = part.get();
    delete object;
#elif defined(CASE_classIsDerivedFrom)
    struct derived : classInfo {};
#elif defined(CASE_valueFromANumberUnasked)
    genericValue const value = 42;
#elif defined(CASE_valueAssignedFromANumber)
    genericValue value;
    value = 42;
#elif defined(CASE_nameFromATextUnasked)
    scString const name = L"width";
#elif defined(CASE_nullForAText)
    part->setLabel(nullptr);
#elif defined(CASE_releaseStepOfAClass)
    part->releaseInfo();
#elif defined(CASE_releaseStepOfAField)
    width->releaseInfo();
#elif defined(CASE_flagWordOfAField)
    width->flags();
#elif defined(CASE_rawPointerBecomesShared)
    sharedPtr<string> const text = new string;
#elif defined(CASE_pointersAsNumbers)
    int const count = part;
#endif
}
