// The lines by which objects tell the log that they come and go.
#pragma once

#include "zovLog.h"
#include "zovString.h"

namespace zov::metamodel {

// A place in the source that writes life lines: the logger has the name of the function.
struct lifeLineSite {
    zovlog::eLogLevel level;
    char const* function;
    char const* file;
    long line;
};

// Writes one line: `format` with the names for its %s, as far as it has any. Nothing is formatted while the level is
// off. Fails "m_p != NULL" when there is no logger.
void writeLifeLine(lifeLineSite const& site, wchar_t const* format, string const& name = {},
                   string const& otherName = {});

} // namespace zov::metamodel
