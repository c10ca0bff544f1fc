// Texts as they are shown on a terminal: one line each, whatever they hold.
#pragma once

#include <cstddef>
#include <vector>

#include <zovString.h>

namespace zovModel {

// The text with its control characters spelled out (\n, \u{7f}).
zov::string printable(zov::string const& text);

// The same between double quotes; quotes and backslashes inside get a backslash.
zov::string quoted(zov::string const& text);

// The texts in printable form with ", " between them.
zov::string joined(std::vector<zov::string> const& texts);

// The rows below each other, indented, their columns aligned; a column that is empty in all rows takes no room.
zov::string alignedRows(std::vector<std::vector<zov::string>> const& rows);

// The number of terminal cells that the text takes: two for East Asian wide characters, none for combining marks.
std::size_t displayWidth(zov::string const& text);

} // namespace zovModel
