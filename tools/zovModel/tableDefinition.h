// What only the SQL of a table says, since SQLite describes it nowhere.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zovModel {

// For each column of a CREATE TABLE statement, in order, the expression from which it is generated, as it is written
// there, without comments before and behind it; empty for other columns. None for statements of another form.
std::vector<std::string> generatedExpressions(std::string_view createTable);

} // namespace zovModel
