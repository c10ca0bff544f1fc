// The copy-on-write slot: every container that readers walk lives in one.
//
// A published container is never changed, not even while nobody else holds it; a writer publishes a new one.
// Readers take a snapshot, which keeps its container alive and unchanged for as long as they hold it. Writers
// prove with the owner's held mutex that they are alone. The old container ends after the exchange, outside of
// the pointer locker: its end may end objects, which log.
#pragma once

#include <memory>
#include <mutex>

#include "zovSharedPtr.h"

namespace zov::metamodel {

// A model's or a class's mutex, held. Functions that need it held take it as an argument.
using heldMutex = std::unique_lock<std::recursive_mutex>;

template <class Container>
class cowSlot {
public:
    // Empty stands for the empty container.
    using snapshotPtr = sharedPtr<Container const>;

    // What is published at this moment.
    snapshotPtr snapshot() const noexcept {
        sharedPtrLocker guard;
        return mPublished;
    }

    // Publishes a copy to which `change` has been applied. When anything throws, nothing has changed.
    template <class Change>
    void publish(heldMutex const& held, Change const& change) {
        snapshotPtr next = prepare(held, change);
        publishPrepared(held, next);
    }

    // The two halves of publish, for changes of several slots of which all or none may happen: what can fail, and what
    // cannot. The former container is left in `next`.
    template <class Change>
    snapshotPtr prepare(heldMutex const&, Change const& change) const {
        snapshotPtr const current = snapshot();
        auto next = current ? std::make_unique<Container>(*current) : std::make_unique<Container>();
        change(*next);
        return snapshotPtr(next.release());
    }
    void publishPrepared(heldMutex const&, snapshotPtr& next) noexcept { mPublished.exchange(next); }

    // Publishes the empty container and answers what was there, for the caller to end.
    snapshotPtr clear(heldMutex const&) noexcept {
        snapshotPtr former;
        mPublished.exchange(former);
        return former;
    }

private:
    snapshotPtr mPublished;
};

// Walks a snapshot: `visit` gets each element. Answers false when a visit answered false and stopOnFalse is set,
// which ends the walk; else true.
template <class Container, class Visit>
bool walk(sharedPtr<Container const> const& snapshot, bool stopOnFalse, Visit const& visit) {
    if (!snapshot) return true;
    for (auto const& element : *snapshot) {
        if (!visit(element) && stopOnFalse) return false;
    }
    return true;
}

} // namespace zov::metamodel
