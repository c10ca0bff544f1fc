// A counted pointer to a published body: what a snapshot holds, and what a writer has unlinked and has yet to end.
//
// A body counts its holders in `holders`, beginning with 1, and ends itself by its static end(body*). Unlike a
// sharedPtr it is one word, so that a slot can publish it atomically.
#pragma once

#include <atomic>
#include <utility>

namespace zov::metamodel {

template <class Body>
class heldBody {
public:
    heldBody() noexcept = default;

    // Takes over a holder that is already counted.
    explicit heldBody(Body* counted) noexcept : mBody(counted) {}

    // Counts a further one.
    static heldBody share(Body* body) noexcept {
        if (body) body->holders.fetch_add(1, std::memory_order_relaxed);
        return heldBody(body);
    }

    heldBody(heldBody&& other) noexcept : mBody(other.detach()) {}
    heldBody& operator=(heldBody&& other) noexcept {
        heldBody former(std::exchange(mBody, other.detach()));
        return *this;
    }
    ~heldBody() {
        if (mBody && mBody->holders.fetch_sub(1, std::memory_order_acq_rel) == 1) Body::end(mBody);
    }

    Body* get() const noexcept { return mBody; }
    Body* detach() noexcept { return std::exchange(mBody, nullptr); }
    explicit operator bool() const noexcept { return mBody != nullptr; }

private:
    Body* mBody = nullptr;
};

} // namespace zov::metamodel
