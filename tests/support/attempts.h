// An action tried while memory runs out, and how it ended.
//
//     for (long passing = 0;; ++passing) {
//         attempt const made = attempted(passing, eAllAllocations, [&] { return act(); });
//         if (!made.allocationFailed) break;
//     }
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <ostream>
#include <string>

#include "failingAllocations.h"
#include "keptCells.h"

namespace zov::tests {

enum outcome { ePassed, eNull, eThrewFalse, eThrewBadAlloc, eThrewOther };

inline void PrintTo(outcome value, std::ostream* out) {
    static constexpr char const* names[] = {"passed", "null", "threw false", "threw bad_alloc", "threw something else"};
    *out << names[value];
}

struct attempt {
    outcome ended;
    bool allocationFailed;
};

// All ways for allocations to fail.
inline constexpr failureKind failureKinds[] = {eAllAllocations, eOneAllocation, eCellBlocks};

inline std::string nameOf(failureKind kind) {
    static constexpr char const* names[] = {"all allocations fail", "one allocation fails", "cells run out"};
    return names[kind];
}

// Runs the action with the allocation after `passing` ones failing, where no cell is free; or, for eCellBlocks, with
// eight bytes of cells for each `passing`. The action answers whether it yielded a result.
inline attempt attempted(long passing, failureKind kind, std::function<bool()> const& action) {
    bool const cellsRunOut = kind == eCellBlocks;
    keptCells::leave(cellsRunOut ? static_cast<std::size_t>(passing) * 8 : 0);
    failingAllocations const armed(cellsRunOut ? 0 : passing, kind);
    outcome ended = eThrewOther;
    try {
        ended = action() ? ePassed : eNull;
    } catch (bool thrown) {
        ended = thrown ? eThrewOther : eThrewFalse;
    } catch (std::bad_alloc const&) {
        ended = eThrewBadAlloc;
    }
    return {ended, hasFailed};
}

// One attempt at a world's act(). If it does not pass, an allocation failed, it ended in the one way that is `failing`,
// and the world's state() is as before. The world's own check() comes last.
template <class World>
attempt attemptedIn(World& world, long passing, failureKind kind, outcome failing) {
    auto const before = world.state();
    auto const made = attempted(passing, kind, [&] { return world.act(); });
    if (made.ended != ePassed) {
        EXPECT_TRUE(made.allocationFailed);
        EXPECT_EQ(made.ended, failing);
        EXPECT_EQ(world.state(), before);
    }
    world.check(made);
    return made;
}

// Whether a value cannot be made when it needs one more cell than there are: what makes eCellBlocks mean anything.
inline bool cellsRunOut() {
    auto const make = [] { return !genericValue(7).isEmpty(); };
    long needed = 0;
    while (attempted(needed, eCellBlocks, make).ended == eThrewBadAlloc)
        ++needed;
    return needed > 1 && attempted(needed, eCellBlocks, make).ended == ePassed;
}

} // namespace zov::tests
