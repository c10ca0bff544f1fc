// What the tool says of a field, and the explicit default values that it gives and finds again.
#pragma once

#include <optional>
#include <vector>

#include <zovGenericValue.h>
#include <zovMdlFieldInfo.h>
#include <zovString.h>

namespace zovModel {

// "double", "string(80)", "custom \"MONEY\"".
zov::string typeForPeople(zov::metamodel::fieldInfo const& field);

// "mandatory, unique", or less.
zov::string flagsForPeople(zov::metamodel::fieldInfo const& field);

// The declared length of its texts, 0 for none.
unsigned long lengthOf(zov::metamodel::fieldInfo const& field);

// The library's text of the semantic, such as "date" and "relation", and "key" for that of a primary key.
zov::string semanticOf(zov::metamodel::fieldInfo const& field);

// Gives the field an explicit default value. A field answers some default in any case, today's date for one, and not
// where it comes from: a user property remembers that this one is explicit.
void giveDefault(zov::metamodel::fieldInfo& field, zov::genericValue const& value);

// The value that giveDefault gave, if it did.
std::optional<zov::genericValue> explicitDefault(zov::metamodel::fieldInfo const& field);

// Texts and paths between quotes, buffers as x'...', the empty value as NULL.
zov::string valueForPeople(zov::genericValue const& value);

// "default 5", "default expression CURRENT_DATE", "computed width * height", or nothing.
zov::string originForPeople(zov::metamodel::fieldInfo const& field);

// "null 0"; nothing where no value stands for none.
zov::string nullForPeople(zov::metamodel::fieldInfo const& field);

} // namespace zovModel
