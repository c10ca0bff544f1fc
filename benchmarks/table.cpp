#include "table.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <sstream>

#include "contender.h"

namespace zov::benchmarks {

namespace {

constexpr int labelWidth = 60;
constexpr int columnWidth = 15;

// This library and the two baselines come before the peers.
constexpr std::size_t firstPeer = 3;

// Two digits behind the point for small numbers, none for large ones.
std::string numberText(double value) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(value < 10 ? 2 : value < 1'000 ? 1 : 0) << value;
    return text.str();
}

std::string textOf(table::cells const& numbers, std::string const& contender) {
    auto const at = numbers.find(contender);
    return at == numbers.end() ? "-" : numberText(at->second);
}

// The least number of some contenders, and this library's as so many times that.
std::string ratioText(table::cells const& numbers, std::size_t firstKind, std::size_t lastKind) {
    auto const& kinds = contenderKinds();
    auto const ours = numbers.find(kinds.front().mName);
    if (ours == numbers.end()) return "-";
    double best = 0;
    for (std::size_t kind = firstKind; kind < lastKind; ++kind) {
        auto const other = numbers.find(kinds[kind].mName);
        if (other != numbers.end() && (best == 0 || other->second < best)) best = other->second;
    }
    return best == 0 ? "-" : numberText(ours->second / best);
}

} // namespace

void table::addRow(std::string const& row) {
    if (std::ranges::find(mRows, row) == mRows.end()) mRows.push_back(row);
}

void table::addQuotient(std::string const& row, source const& over, source const& under) {
    addRow(row);
    mQuotients[row] = {over, under};
}

void table::setCell(std::string const& row, std::string const& counter, std::string const& contender, double value) {
    mCells[row][counter][contender] = value;
}

void table::print(std::ostream& out) const {
    printHeading(out);
    for (auto const& row : mRows)
        printRow(out, row);
    for (auto const& note : mNotes)
        out << note << '\n';
    for (auto const& missing : missingPeers())
        out << "not built, as its library was not found: " << missing << '\n';
}

void table::printRow(std::ostream& out, std::string const& row) const {
    if (auto const wanted = mQuotients.find(row); wanted != mQuotients.end())
        return printLine(out, row, quotientCells(wanted->second), false);
    printLine(out, row, cellsOf({row, "ns"}), true);
    auto const counters = mCells.find(row);
    if (counters == mCells.end()) return;
    for (auto const& [counter, numbers] : counters->second)
        if (counter != "ns") printLine(out, row + ", " + counter, numbers, true);
}

table::cells table::cellsOf(source const& wanted) const {
    auto const counters = mCells.find(wanted.mRow);
    if (counters == mCells.end()) return {};
    auto const numbers = counters->second.find(wanted.mCounter);
    return numbers == counters->second.end() ? cells() : numbers->second;
}

table::cells table::quotientCells(quotient const& wanted) const {
    auto const divisors = cellsOf(wanted.mUnder);
    cells made;
    for (auto const& [contender, value] : cellsOf(wanted.mOver))
        if (auto const divisor = divisors.find(contender); divisor != divisors.end())
            made[contender] = value / divisor->second;
    return made;
}

void table::printHeading(std::ostream& out) {
    out << std::left << std::setw(labelWidth) << "medians; ns unless it says otherwise" << std::right;
    for (auto const& kind : contenderKinds())
        out << std::setw(columnWidth) << kind.mName;
    out << std::setw(columnWidth) << "ours/flat" << std::setw(columnWidth) << "ours/best peer" << '\n';
}

void table::printLine(std::ostream& out, std::string const& label, cells const& numbers, bool isCost) {
    if (numbers.empty()) return;
    out << std::left << std::setw(labelWidth) << label << std::right;
    for (auto const& kind : contenderKinds())
        out << std::setw(columnWidth) << textOf(numbers, kind.mName);
    out << std::setw(columnWidth) << (isCost ? ratioText(numbers, 1, 2) : "-");
    out << std::setw(columnWidth) << (isCost ? ratioText(numbers, firstPeer, contenderKinds().size()) : "-") << '\n';
}

} // namespace zov::benchmarks
