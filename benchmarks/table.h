// The results as one readable table: a row for each operation and size, a column for each contender, and how this
// library compares to the flat table and to the best peer.
//
// A row holds several counters. "ns" is printed under the row's name, the others under "row, counter".
#pragma once

#include <cstddef>
#include <iosfwd>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace zov::benchmarks {

class table {
public:
    // Numbers by contender.
    using cells = std::map<std::string, double>;

    // Rows are printed in the order in which they were added. Adding one again does nothing.
    void addRow(std::string const& row);

    // A counter of a row.
    struct source {
        std::string mRow;
        std::string mCounter;
    };

    // A row that says how many times the one counter is the other.
    void addQuotient(std::string const& row, source const& over, source const& under);

    void setCell(std::string const& row, std::string const& counter, std::string const& contender, double value);

    // A line below the table.
    void addNote(std::string const& note) { mNotes.insert(note); }

    // Prints the rows that have numbers.
    void print(std::ostream& out) const;

private:
    struct quotient {
        source mOver;
        source mUnder;
    };

    void printRow(std::ostream& out, std::string const& row) const;
    cells cellsOf(source const& wanted) const;
    cells quotientCells(quotient const& wanted) const;
    static void printHeading(std::ostream& out);
    static void printLine(std::ostream& out, std::string const& label, cells const& numbers, bool isCost);

    std::vector<std::string> mRows;
    std::map<std::string, std::map<std::string, cells>> mCells; // by row and counter
    std::map<std::string, quotient> mQuotients;                 // by row
    std::set<std::string> mNotes;
};

} // namespace zov::benchmarks
