#include "parts/enumItems.h"

#include <utility>
#include <vector>

#include "parts/fieldTypes.h"

namespace zov::metamodel {

namespace {

constexpr wchar_t const* blanks = L" \t";

// The name from the pieces behind the first one.
// KEEP EI-05: the commas between them are gone, while the blanks behind the commas stay.
string joinedName(std::vector<string>& pieces) {
    pieces[1].deleteLeading(blanks);
    pieces.back().deleteTrailing(blanks);
    string name;
    for (std::size_t piece = 1; piece < pieces.size(); ++piece)
        name += pieces[piece];
    return name;
}

} // namespace

bool parseItemText(string const& text, eFieldType type, enumItem& item) {
    std::vector<string> pieces;
    text.splitAt(L",", pieces, false);
    if (pieces.size() < 2) return false;
    auto const makeDefault = rowOf(type).makeDefault;
    genericValue value = makeDefault ? makeDefault() : genericValue();
    if (!value.assignText(pieces.front().deleteAll(blanks))) return false;
    item.mName = joinedName(pieces);
    item.mValue = std::move(value);
    return true;
}

} // namespace zov::metamodel
