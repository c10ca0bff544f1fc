// The base or derived classes of a class, published for readers.
#pragma once

#include <atomic>

#include "base/cowSlot.h"
#include "base/scopeExit.h"
#include "data/classTable.h"

namespace zov::metamodel {

class relatedClasses {
public:
    using snapshotPtr = cowSlot<classTable>::snapshotPtr;

    // What is published at this moment: kept alive, or valid until the end of the section. Nothing stands for no class.
    snapshotPtr snapshot() const noexcept { return mTable.snapshot(); }
    classTable const* peek(readSection const& reading) const noexcept { return mTable.peek(reading); }

    // The class when there is just one, found without the table; else null. Valid until the end of the section.
    classData const* only(readSection const&) const noexcept { return mOnly.load(std::memory_order_seq_cst); }

    // Adds a class, unless one of that name is there. Throws std::bad_alloc, and nothing has changed.
    void add(heldMutex const& held, scString name, refPtr<classInfo> const& added) {
        // Whoever does not find the shorter way takes the longer one, so that nobody sees what was before after what
        // is.
        mOnly.store(nullptr, std::memory_order_seq_cst);
        scopeExit const shortened([this] { findOnly(); });
        mTable.publish(held, [&](classTable& classes) { classes.emplace(name, added); });
    }

    // Publishes no class and answers what was there, for the caller to end after waitForReaders().
    snapshotPtr clear(heldMutex const& held) noexcept {
        mOnly.store(nullptr, std::memory_order_seq_cst);
        return mTable.clear(held);
    }

private:
    void findOnly() noexcept {
        readSection const reading;
        classTable const* const classes = peek(reading);
        if (classes && classes->size() == 1) mOnly.store(classes->begin()->data, std::memory_order_seq_cst);
    }

    std::atomic<classData const*> mOnly{nullptr};
    cowSlot<classTable> mTable;
};

} // namespace zov::metamodel
