// The value types of fields and their texts.
#pragma once

#include "zovMdlFieldType.h"
#include "zovScString.h"
#include "zovString.h"

namespace zov::metamodel {

// As fieldInfo::parseType and fieldInfo::typeStringFromType say.
bool parseTypeText(string const& text, eFieldType& type, unsigned long& length);
scString typeText(eFieldType type);

} // namespace zov::metamodel
