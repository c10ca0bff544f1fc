// The value types of fields: one row a type, which parsing, texts, defaults, null values and comparison all read.
// A further type is a further row.
#pragma once

#include <string_view>

#include "zovGenericValue.h"
#include "zovMdlFieldType.h"
#include "zovScString.h"
#include "zovString.h"

namespace zov::metamodel {

struct fieldTypeRow {
    eFieldType type;
    std::wstring_view text;              // empty: the type has none
    genericValue (*makeDefault)();       // null: the type has none
    genericValue (*makeNull)();          // the empty value for types without one
    bool (*isNull)(genericValue const&); // throws false for a value that cannot be read as the type
    valueEqFunction areEqual;            // null: the type has no comparison of its own; throws as isNull does
};

// The row of a type; a row without text, default and comparison for values that have none.
fieldTypeRow const& rowOf(eFieldType type) noexcept;

// As fieldInfo::parseType says.
bool parseTypeText(string const& text, eFieldType& type, unsigned long& length);

} // namespace zov::metamodel
