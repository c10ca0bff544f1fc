// A host that knows nothing but the installed package.
#include <iostream>

#include <zovMdlFieldInfo.h>
#include <zovMdlModelInfo.h>

using zov::genericSet;
using zov::metamodel::eDouble;
using zov::metamodel::modelInfo;

int main() {
    auto const model = modelInfo::createModelInfo(false);
    model->createClassInfo(L"Part")->createFieldInfo(L"width", eDouble, genericSet(), L"");
    auto const width = model->fieldInfo(L"PART.WIDTH", false);
    std::cout << width->qualifiedName().toUtf8() << " is a " << width->typeString().string().toUtf8()
              << " of zovMetamodel\n";
    model->tearDown();
}
