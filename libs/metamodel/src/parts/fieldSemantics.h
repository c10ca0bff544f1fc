// What a semantic demands of a field, and what it does to it.
#pragma once

#include "data/fieldData.h"

namespace zov::metamodel {

// Checks the semantic against the field's type and attributes and applies it: flags, type, semantic, custom text.
// Fails with the stated assertions, and then part of it may be done: the caller puts back what it remembered.
void applySemantic(fieldData& field, eFieldSemantics sem, genericSet const& attribs, string const& semStr);

} // namespace zov::metamodel
