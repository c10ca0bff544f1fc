// What SQLite itself says about a database, put in the same words as the tool's answer, so that the two can be
// compared whole.
#pragma once

#include <string>
#include <vector>

#include "toolRun.h"

// One line for each table, view and column: spelling, kind, key and flags. Sorted.
std::vector<std::string> seenBySqlite(std::string const& path);
std::vector<std::string> seenByTool(jsonList const& answer);

// The affinity that SQLite gives a column of this declared type: INT, TEXT, REAL, NUM, or the empty text for none.
std::string affinityOf(std::string const& declared);

// The columns whose field has a type that does not take what SQLite stores there: a line for each.
std::vector<std::string> unfitTypes(std::string const& path, jsonList const& answer);

// One line for each column that has a DEFAULT or is generated: the expression of the one, and that it is the other.
std::vector<std::string> definitionsBySqlite(std::string const& path);
std::vector<std::string> definitionsByTool(jsonList const& answer);

// The columns whose explicit default is not what SQLite stores there by default: a line for each, sorted.
std::vector<std::string> unfitDefaults(std::string const& path, jsonList const& answer);

// One line for each foreign key or relation: its kind, and its pairs of columns in the tables' spelling. Sorted.
std::vector<std::string> relationsBySqlite(std::string const& path);
std::vector<std::string> relationsByTool(jsonList const& answer);
