#include "sqliteView.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>

#include "testDatabase.h"

namespace {

// The columns that a unique index without condition covers alone, or that are the whole primary key.
std::set<std::string> uniqueColumns(connection const& source, std::string const& table) {
    std::set<std::string> unique;
    for (auto const& index : source.rows("PRAGMA index_list(" + sqlName(table) + ")")) {
        if (index.at(2) != "1" || index.at(4) != "0") continue;
        std::set<std::string> columns; // one column may be named twice
        for (auto const& column : source.rows("PRAGMA index_info(" + sqlName(index.at(1)) + ")")) {
            columns.insert(column.at(2));
        }
        if (columns.size() == 1 && *columns.begin() != "NULL") unique.insert(*columns.begin());
    }
    std::vector<std::string> key;
    for (auto const& column : source.rows("PRAGMA table_xinfo(" + sqlName(table) + ")")) {
        if (column.at(5) != "0") key.push_back(column.at(1));
    }
    if (key.size() == 1) unique.insert(key.front());
    return unique;
}

std::string columnLine(std::string const& table, std::string const& column, bool mandatory, bool unique, bool key) {
    return table + " / " + column + (mandatory ? " mandatory" : "") + (unique ? " unique" : "") + (key ? " key" : "");
}

std::string sqlText(std::string const& text) {
    std::string quoted = "'";
    for (char const unit : text)
        quoted += unit == '\'' ? "''" : std::string(1, unit);
    return quoted + "'";
}

std::string definitionLine(std::string const& table, std::string const& column, std::string const& expression,
                           bool isGenerated) {
    return table + " / " + column + (expression.empty() ? "" : " default " + expression) +
           (isGenerated ? " generated" : "");
}

std::string relationLine(bool isCascading, std::vector<std::string> pairs) {
    std::sort(pairs.begin(), pairs.end());
    std::string line = isCascading ? "agg" : "ref";
    for (std::string const& pair : pairs)
        line += " / " + pair;
    return line;
}

// The name of a table, or of a column of one, that SQLite takes for this name; empty when there is none.
std::optional<std::string> spelling(connection const& source, std::string const& from, std::string const& name) {
    auto const rows =
        source.rows("SELECT name FROM " + from + " WHERE name = " + sqlText(name) + " COLLATE NOCASE LIMIT 1");
    return rows.empty() ? std::nullopt : std::optional(rows.front().front());
}

// The pairs of one foreign key, given by its rows; none when it leads nowhere.
std::vector<std::string> pairsOf(connection const& source, std::string const& table,
                                 std::vector<std::vector<std::string>> const& rows) {
    auto const target = spelling(source, "pragma_table_list", rows.front().at(0));
    if (!target) return {};
    std::string const columns = "pragma_table_xinfo(" + sqlText(*target) + ")";
    auto const key = source.rows("SELECT name FROM " + columns + " WHERE pk > 0 ORDER BY pk");
    std::vector<std::string> pairs;
    for (std::size_t at = 0; at < rows.size(); ++at) {
        bool const isImplicit = rows[at].at(2) == "NULL";
        if (isImplicit && key.size() != rows.size()) return {};
        auto const column = spelling(source, columns, isImplicit ? key[at].front() : rows[at].at(2));
        if (!column) return {};
        pairs.push_back(table + "." + rows[at].at(1) + " = " + *target + "." + *column);
    }
    return pairs;
}

// Makes a table with what SQLite stores by default in a column of this declared type.
void storeDefault(connection const& scratch, std::string const& type, std::string const& expression) {
    std::string const begin = "CREATE TABLE stored (d, c " + (type.empty() ? "" : sqlName(type)) + " DEFAULT ";
    try {
        scratch.run(begin + expression + "\n)");
    } catch (std::runtime_error const&) { // more than a literal needs parentheses, a quoted name must not have them
        scratch.run(begin + "(" + expression + "\n))");
    }
    scratch.run("INSERT INTO stored (d) VALUES (1)");
}

// Whether the tool's default is what SQLite stores, which is asked to compare.
bool isStored(connection const& source, nlohmann::ordered_json const& field) {
    auto const& value = field.at("default");
    std::string comparison = "c = " + value.dump();
    if (value.is_null()) comparison = "c IS NULL";
    if (value.is_boolean()) comparison = value ? "c IN (1, 'true')" : "c IN (0, 'false')";
    if (value.is_string()) {
        comparison =
            field.at("type") == "binary" ? "lower(hex(c)) = " + sqlText(value) : "CAST(c AS TEXT) = " + sqlText(value);
    }
    return source.rows("SELECT count(*) FROM stored WHERE " + comparison).at(0).at(0) == "1";
}

// Whether a field of this type takes what SQLite stores in a column of this affinity.
bool fits(std::string const& type, std::string const& affinity) {
    static std::map<std::string, std::string> const types{
        {"INT", "long"}, {"TEXT", "string"}, {"REAL", "double"}, {"", "binary"}};
    auto const exact = types.find(affinity);
    return exact == types.end() ? type != "long" : type == exact->second;
}

} // namespace

std::string affinityOf(std::string const& declared) {
    // A table made from a query has the affinity of each column for its declared type.
    connection const scratch(":memory:");
    std::string const type = declared.empty() ? "" : sqlName(declared);
    scratch.run("CREATE TABLE declared (c " + type + "); CREATE TABLE shown AS SELECT c FROM declared");
    return scratch.rows("PRAGMA table_info(shown)").at(0).at(2);
}

std::vector<std::string> seenBySqlite(std::string const& path) {
    connection const source(path);
    std::vector<std::string> lines;
    for (auto const& table : source.rows("PRAGMA main.table_list")) {
        std::string const& name = table.at(1);
        if (name.starts_with("sqlite_")) continue;
        lines.push_back(name + (table.at(2) == "view" ? " is a view" : " is a table"));
        std::set<std::string> const unique = uniqueColumns(source, name);
        for (auto const& column : source.rows("PRAGMA table_xinfo(" + sqlName(name) + ")")) {
            std::string const& label = column.at(1);
            lines.push_back(columnLine(name, label, column.at(3) != "0", unique.contains(label), column.at(5) != "0"));
        }
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::vector<std::string> seenByTool(jsonList const& answer) {
    std::vector<std::string> lines;
    for (auto const& each : answer.mClasses) {
        std::string const name = each.at("label");
        lines.push_back(name + (each.at("abstract") ? " is a view" : " is a table"));
        std::set<std::string> const key = each.at("idFields");
        for (auto const& field : each.at("fields")) {
            std::string const label = field.at("label");
            lines.push_back(columnLine(name, label, field.at("mandatory"), field.at("unique"),
                                       key.contains(field.at("name").get<std::string>())));
        }
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::vector<std::string> unfitTypes(std::string const& path, jsonList const& answer) {
    connection const source(path);
    std::vector<std::string> lines;
    for (std::string const& table : answer.labels()) {
        for (auto const& column : source.rows("PRAGMA table_xinfo(" + sqlName(table) + ")")) {
            std::string const type = answer.fieldOf(table, column.at(1)).at("type");
            if (fits(type, affinityOf(column.at(2)))) continue;
            lines.push_back(table + " / " + column.at(1) + ": " + column.at(2) + " as " + type);
        }
    }
    return lines;
}

std::vector<std::string> definitionsBySqlite(std::string const& path) {
    connection const source(path);
    std::vector<std::string> lines;
    for (auto const& column : source.rows("SELECT tables.name, columns.name, ifnull(dflt_value, ''), hidden IN (2, 3) "
                                          "FROM sqlite_master AS tables, pragma_table_xinfo(tables.name) AS columns "
                                          "WHERE tables.type = 'table' AND (dflt_value IS NOT NULL OR hidden > 1)")) {
        lines.push_back(definitionLine(column.at(0), column.at(1), column.at(2), column.at(3) == "1"));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::vector<std::string> definitionsByTool(jsonList const& answer) {
    std::vector<std::string> lines;
    for (auto const& each : answer.mClasses) {
        for (auto const& field : each.at("fields")) {
            std::string const expression = field.at("defaultExpression");
            bool const isGenerated = field.at("autoExpression") != "";
            if (expression.empty() && !isGenerated) continue;
            lines.push_back(definitionLine(each.at("label"), field.at("label"), expression, isGenerated));
        }
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::vector<std::string> unfitDefaults(std::string const& path, jsonList const& answer) {
    connection const source(path);
    std::vector<std::string> lines;
    for (auto const& column : source.rows("SELECT tables.name, columns.name, columns.type, dflt_value "
                                          "FROM sqlite_master AS tables, pragma_table_xinfo(tables.name) AS columns "
                                          "WHERE tables.type = 'table' AND dflt_value IS NOT NULL")) {
        connection const scratch(":memory:");
        storeDefault(scratch, column.at(2), column.at(3));
        auto const field = answer.fieldOf(column.at(0), column.at(1));
        if (isStored(scratch, field)) continue;
        bool const isMoment = column.at(3).starts_with("CURRENT_");
        lines.push_back(column.at(0) + " / " + column.at(1) + ": " +
                        (field.at("default").is_null() ? "none" : field.at("default").dump()) + " for " +
                        (isMoment ? column.at(3) : scratch.rows("SELECT c FROM stored").at(0).at(0)));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::vector<std::string> relationsBySqlite(std::string const& path) {
    connection const source(path);
    std::vector<std::string> lines;
    for (auto const& key : source.rows("SELECT DISTINCT tables.name, keys.id, on_delete FROM sqlite_master AS tables, "
                                       "pragma_foreign_key_list(tables.name) AS keys WHERE tables.type = 'table'")) {
        auto const rows = source.rows("SELECT \"table\", \"from\", \"to\" FROM pragma_foreign_key_list(" +
                                      sqlText(key.at(0)) + ") WHERE id = " + key.at(1) + " ORDER BY seq");
        std::vector<std::string> const pairs = pairsOf(source, key.at(0), rows);
        if (!pairs.empty()) lines.push_back(relationLine(key.at(2) == "CASCADE", pairs));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

std::vector<std::string> relationsByTool(jsonList const& answer) {
    std::vector<std::string> lines;
    for (auto const& relation : answer.mRelations) {
        std::vector<std::string> pairs;
        for (auto const& pair : relation.at("pairs"))
            pairs.push_back(pair.at(0).get<std::string>() + " = " + pair.at(1).get<std::string>());
        lines.push_back(relationLine(relation.at("type") == "agg", pairs));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}
