// The way every walk goes.
#pragma once

namespace zov::metamodel {

// Calls `visit` for each element. Answers false when a visit answered false and stopOnFalse is set, which ends the
// walk; else true.
template <class Range, class Visit>
bool walk(Range const& range, bool stopOnFalse, Visit const& visit) {
    for (auto const& element : range) {
        if (!visit(element) && stopOnFalse) return false;
    }
    return true;
}

} // namespace zov::metamodel
