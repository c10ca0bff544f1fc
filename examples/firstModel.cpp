// A model in twenty lines: build it, ask it, let it go.
#include <iostream>

#include "zovMetamodel.h"

using zov::genericSet;
using zov::refPtr;
using zov::metamodel::classInfo;
using zov::metamodel::eDouble;
using zov::metamodel::modelInfo;

int main() {
    auto const model = modelInfo::createModelInfo(false); // letter case does not matter
    model->createClassInfo(L"Part", [](refPtr<classInfo> part) {
        auto const width = part->createFieldInfo(L"width", eDouble, genericSet(), L"");
        width->setLabel(L"Width over everything");
        return true; // accepted: from now on everybody sees the class
    });

    if (auto const width = model->fieldInfo(L"PART.Width", false)) {
        std::cout << width->qualifiedName().toUtf8() << " is a " << width->typeString().string().toUtf8() << '\n'
                  << "label: " << width->label().toUtf8() << '\n';
    }
    if (!model->fieldInfo(L"Part.colour", false)) std::cout << "Part.colour is unknown\n";

    model->tearDown(); // classes and fields hold each other
}
