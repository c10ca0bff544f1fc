// The texts of enum and bits items: a value, a comma, a name.
#pragma once

#include "zovMdlEnumItem.h"
#include "zovMdlFieldType.h"
#include "zovString.h"

namespace zov::metamodel {

// As fieldInfo::parseEnumItem says.
bool parseItemText(string const& text, eFieldType type, enumItem& item);

} // namespace zov::metamodel
