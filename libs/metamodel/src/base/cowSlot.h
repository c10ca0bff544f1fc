// The copy-on-write slot: for small containers that readers walk and that seldom change.
//
// A published container is never changed, not even while nobody else holds it; a writer publishes a new one.
// Readers look at it within a section, or take a snapshot, which keeps it alive and unchanged for as long as they hold
// it. Writers prove with the owner's held mutex that they are alone.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

#include "base/publishedSlot.h"

namespace zov::metamodel {

template <class Container>
class cowSlot {
    struct body {
        explicit body(Container copied) : content(std::move(copied)) {}

        static void end(body* last) noexcept { delete last; }

        std::atomic<std::uint32_t> holders{1};
        Container content;
    };

public:
    // A container, or nothing, which stands for the empty one.
    class snapshotPtr {
    public:
        snapshotPtr() noexcept = default;
        explicit operator bool() const noexcept { return bool(mBody); }
        Container const& operator*() const noexcept { return mBody.get()->content; }
        Container const* operator->() const noexcept { return &mBody.get()->content; }

    private:
        friend class cowSlot;
        explicit snapshotPtr(heldBody<body> held) noexcept : mBody(std::move(held)) {}

        heldBody<body> mBody;
    };

    // What is published at this moment.
    snapshotPtr snapshot() const noexcept { return snapshotPtr(mSlot.share()); }

    // The same, not counted: valid until the end of the section. Null stands for the empty container.
    Container const* peek(readSection const& reading) const noexcept {
        body const* const now = mSlot.peek(reading);
        return now ? &now->content : nullptr;
    }

    // Publishes a copy to which `change` has been applied. When anything throws, nothing has changed.
    template <class Change>
    void publish(heldMutex const& held, Change const& change) {
        body const* const current = mSlot.current(held);
        auto next = std::make_unique<body>(current ? Container(current->content) : Container());
        change(next->content);
        auto const former = mSlot.exchange(held, heldBody<body>(next.release()));
        if (former) waitForReaders();
    }

    // Publishes the empty container and answers what was there, for the caller to end after waitForReaders().
    snapshotPtr clear(heldMutex const& held) noexcept { return snapshotPtr(mSlot.exchange(held, {})); }

private:
    publishedSlot<body> mSlot;
};

} // namespace zov::metamodel
