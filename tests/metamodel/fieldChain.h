// Three classes, each derived from the one before, with a field that defines itself at the top, one that stands for it
// in the middle, and one below that stands for the one in the middle.
#pragma once

#include "modelFixture.h"

namespace zov::metamodel::tests {

struct fieldChain {
    ownClass base{L"base"};
    ownClass part{L"part"};
    ownClass bottom{L"bottom"};
    refPtr<fieldInfo> root;
    refPtr<fieldInfo> middle;
    refPtr<fieldInfo> field;

    explicit fieldChain(eFieldType type = eInt) : root(addField(base, L"width", type)) {
        part->addBaseClass(base);
        bottom->addBaseClass(part);
        middle = part->createFieldInfo(base.pointer(), L"width");
        field = bottom->createFieldInfo(part.pointer(), L"width");
    }
};

// A value of this type behind a chain of which only the root is a date: the others were made as timestamps.
struct datedChain : fieldChain {
    datedChain() : fieldChain(eTimestamp) { root->setSemantic(eSemDate, genericSet(), L""); }
};

} // namespace zov::metamodel::tests
