// Failed preconditions: how they are reported, and what the caller of the failing operation gets.
//
// A failed check formats one text, hands it to the assert handler, and throws the bool value false:
//
//     Assertion failed:
//     alias.length()
//
//     File: libs/metamodel/src/zovMdlClassInfo.cpp
//     Line: 97
//
// The text is cut at 1,023 characters and is never read as a format, whatever it contains. Formatting it
// allocates nothing, so that a check also reports when memory is gone.
//
// Threads: everything here may be called from any thread at any time.
#pragma once

#include <functional>

#include "zovString.h"
#include "zovUtilsApi.h"

namespace zov {

// Reports `text`, a finished text, and returns. Arguments after it are accepted and ignored: the text is
// shown as it stands. A null text is reported as the empty one.
// Fails: only with what the installed handler throws.
ZOV_UTILS_API void assertMsg(wchar_t const* text, ...);

// Replaces what assertMsg does with a text; the default writes it to standard error in UTF-8. An empty
// function restores the default. The handler runs on the thread whose check failed. It may read models,
// not change them. A thread that is just reporting may still call the handler that was replaced.
// Fails: std::bad_alloc, and the old handler stays.
ZOV_UTILS_API void setAssertHandler(std::function<void(string const&)> handler);

// Reports the failed `condition` of the given place in the source, then throws false; or, instead, what the installed
// handler throws.
[[noreturn]] ZOV_UTILS_API void assertionFailed(wchar_t const* condition, char const* file, int line);

// The precondition check: does nothing when `holds`, else reports and throws false. The place is stated by
// the caller, because hosts may match on it and `__LINE__` moves with every edit.
inline void assertThat(bool holds, wchar_t const* condition, char const* file, int line) {
    if (!holds) [[unlikely]]
        assertionFailed(condition, file, line);
}

} // namespace zov
