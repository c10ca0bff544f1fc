// The semantics of fields: their texts, what they demand of a field, and what they do to it.
#pragma once

#include "data/fieldData.h"

namespace zov::metamodel {

// Checks the semantic against the field's type and attributes and applies it: flags, type, semantic, custom text.
// Fails with the stated assertions, and then part of it may be done: the caller puts back what it remembered.
void applySemantic(fieldData& field, eFieldSemantics sem, genericSet const& attribs, string const& semStr);

// The key of the list of classes that a relation's text names.
inline constexpr wchar_t const* referencedClassesKey = L"referencedClasses";

// As fieldInfo::parseSemantics and fieldInfo::semanticStringFromType say.
bool parseSemanticsText(string const& text, eFieldSemantics& sem, genericSet& attribs);
scString semanticText(eFieldSemantics sem);

} // namespace zov::metamodel
