#include "inheritance.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "schemaReader.h"
#include "sqlTokens.h"

namespace zovModel {

namespace {

// Names of one set of columns, as SQLite compares them.
using nameSet = std::set<std::string>;

nameSet namesOf(std::vector<std::string> const& names) {
    nameSet result;
    for (std::string const& name : names)
        result.insert(foldedName(name));
    return result;
}

nameSet keyOf(table const& owner) {
    nameSet result;
    for (column const& part : owner.mColumns) {
        if (part.mKeyPosition > 0) result.insert(foldedName(part.mName));
    }
    return result;
}

// Whether the reference leads from the one whole key to the other.
bool joinsKeys(foreignKey const& reference, nameSet const& derivedKey, nameSet const& baseKey) {
    if (derivedKey.empty() || derivedKey.size() != baseKey.size()) return false;
    if (reference.mFrom.size() != derivedKey.size() || namesOf(reference.mFrom) != derivedKey) return false;
    return reference.mTo.empty() || namesOf(reference.mTo) == baseKey;
}

using links = std::vector<std::vector<std::size_t>>;

links findLinks(std::vector<table> const& tables) {
    std::map<std::string, std::size_t> places;
    std::vector<nameSet> keys;
    for (table const& each : tables) {
        places.emplace(foldedName(each.mName), keys.size());
        keys.push_back(keyOf(each));
    }
    links found(tables.size());
    for (std::size_t derived = 0; derived < tables.size(); ++derived) {
        for (foreignKey const& reference : tables[derived].mForeignKeys) {
            auto const base = places.find(foldedName(reference.mTable));
            if (base == places.end() || base->second == derived) continue;
            if (!joinsKeys(reference, keys[derived], keys[base->second])) continue;
            std::vector<std::size_t>& bases = found[derived];
            if (std::find(bases.begin(), bases.end(), base->second) == bases.end()) bases.push_back(base->second);
        }
    }
    return found;
}

// The tables that have a circle among their bases, however far up. They are what is left when those without bases are
// taken away, again and again.
std::vector<bool> findUnrooted(links const& all) {
    links derivedOf(all.size());
    std::vector<std::size_t> baseCounts;
    std::vector<std::size_t> rooted;
    for (std::size_t place = 0; place < all.size(); ++place) {
        for (std::size_t const base : all[place])
            derivedOf[base].push_back(place);
        baseCounts.push_back(all[place].size());
        if (all[place].empty()) rooted.push_back(place);
    }
    std::vector<bool> unrooted(all.size(), true);
    while (!rooted.empty()) {
        std::size_t const place = rooted.back();
        rooted.pop_back();
        unrooted[place] = false;
        for (std::size_t const derived : derivedOf[place]) {
            if (--baseCounts[derived] == 0) rooted.push_back(derived);
        }
    }
    return unrooted;
}

bool leadsTo(links const& all, std::size_t from, std::size_t to) {
    std::vector<bool> seen(all.size());
    std::vector<std::size_t> open{from};
    while (!open.empty()) {
        std::size_t const place = open.back();
        open.pop_back();
        if (place == to) return true;
        if (seen[place]) continue;
        seen[place] = true;
        open.insert(open.end(), all[place].begin(), all[place].end());
    }
    return false;
}

} // namespace

inheritance findInheritance(std::vector<table> const& tables) {
    links const all = findLinks(tables);
    std::vector<bool> const unrooted = findUnrooted(all);
    inheritance result{links(tables.size()), {}};
    for (std::size_t derived = 0; derived < all.size(); ++derived) {
        for (std::size_t const base : all[derived]) {
            if (unrooted[base] && leadsTo(all, base, derived)) {
                result.mCircular.emplace_back(derived, base);
            } else {
                result.mBases[derived].push_back(base);
            }
        }
    }
    return result;
}

} // namespace zovModel
