// One published pointer: what the two kinds of containers that readers walk have in common.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include "base/heldBody.h"
#include "base/publishPoint.h"
#include "base/readSection.h"
#include "zovSharedPtr.h"

namespace zov::metamodel {

// A model's, a class's or a relation's mutex, held. Functions that need it held take it as an argument.
using heldMutex = std::unique_lock<std::recursive_mutex>;

// A body, or null, with what the body notes for readers who would otherwise have to go there to learn it: a number
// below 16, which lies in the bits of the address that are always 0. A body without note() notes 0.
template <class Body>
class notedPtr {
public:
    notedPtr() noexcept = default;
    explicit notedPtr(Body* body) noexcept : mBits(reinterpret_cast<std::uintptr_t>(body)) {
        static_assert(noteBits < __STDCPP_DEFAULT_NEW_ALIGNMENT__);
        if constexpr (requires { body->note(); }) mBits |= body ? body->note() : 0;
    }

    Body* body() const noexcept { return reinterpret_cast<Body*>(mBits & ~noteBits); }
    unsigned note() const noexcept { return static_cast<unsigned>(mBits & noteBits); }

private:
    static constexpr std::uintptr_t noteBits = 15;

    std::uintptr_t mBits = 0;
};

template <class Body>
class publishedSlot {
public:
    publishedSlot() noexcept = default;
    publishedSlot(publishedSlot const&) = delete;
    publishedSlot& operator=(publishedSlot const&) = delete;

    // Whoever ends the owner has waited for the readers that came through what led to it.
    ~publishedSlot() { heldBody<Body> const last(mPublished.load(std::memory_order_relaxed).body()); }

    // What is published at this moment, or null; valid until the end of the section.
    notedPtr<Body> peekNoted(readSection const&) const noexcept { return mPublished.load(std::memory_order_seq_cst); }
    Body* peek(readSection const& reading) const noexcept { return peekNoted(reading).body(); }

    // The same, counted.
    heldBody<Body> share() const noexcept {
        readSection const reading;
        return heldBody<Body>::share(peek(reading));
    }

    // For writers, who alone replace it.
    notedPtr<Body> currentNoted(heldMutex const&) const noexcept { return mPublished.load(std::memory_order_relaxed); }
    Body* current(heldMutex const& held) const noexcept { return currentNoted(held).body(); }

    // Publishes `next` and answers what was there. Readers may still look at that: it is to be ended after
    // waitForReaders().
    heldBody<Body> exchange(heldMutex const&, heldBody<Body> next) noexcept {
        publishPoint();
        sharedPtrLocker const guard;
        notedPtr<Body> const noted(next.detach());
        return heldBody<Body>(mPublished.exchange(noted, std::memory_order_seq_cst).body());
    }

private:
    std::atomic<notedPtr<Body>> mPublished{};
};

} // namespace zov::metamodel
