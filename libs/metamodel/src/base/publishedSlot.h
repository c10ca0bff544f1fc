// One published pointer: what the two kinds of containers that readers walk have in common.
#pragma once

#include <atomic>
#include <mutex>

#include "base/heldBody.h"
#include "base/publishPoint.h"
#include "base/readSection.h"
#include "zovSharedPtr.h"

namespace zov::metamodel {

// A model's, a class's or a relation's mutex, held. Functions that need it held take it as an argument.
using heldMutex = std::unique_lock<std::recursive_mutex>;

template <class Body>
class publishedSlot {
public:
    publishedSlot() noexcept = default;
    publishedSlot(publishedSlot const&) = delete;
    publishedSlot& operator=(publishedSlot const&) = delete;

    // Whoever ends the owner has waited for the readers that came through what led to it.
    ~publishedSlot() { heldBody<Body> const last(mPublished.load(std::memory_order_relaxed)); }

    // What is published at this moment, or null; valid until the end of the section.
    Body* peek(readSection const&) const noexcept { return mPublished.load(std::memory_order_seq_cst); }

    // The same, counted.
    heldBody<Body> share() const noexcept {
        readSection const reading;
        return heldBody<Body>::share(peek(reading));
    }

    // For writers, who alone replace it.
    Body* current(heldMutex const&) const noexcept { return mPublished.load(std::memory_order_relaxed); }

    // Publishes `next` and answers what was there. Readers may still look at that: it is to be ended after
    // waitForReaders().
    heldBody<Body> exchange(heldMutex const&, heldBody<Body> next) noexcept {
        publishPoint();
        sharedPtrLocker const guard;
        return heldBody<Body>(mPublished.exchange(next.detach(), std::memory_order_seq_cst));
    }

private:
    std::atomic<Body*> mPublished{nullptr};
};

} // namespace zov::metamodel
