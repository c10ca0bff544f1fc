// A part of an object that few objects need: one pointer, null until the part is made.
//
// Threads: several may make it at once; all of them get the same one.
#pragma once

#include <atomic>
#include <memory>

namespace zov::metamodel {

template <class Part>
class madeWhenNeeded {
public:
    madeWhenNeeded() noexcept = default;
    madeWhenNeeded(madeWhenNeeded const&) = delete;
    madeWhenNeeded& operator=(madeWhenNeeded const&) = delete;
    ~madeWhenNeeded() { delete mPart.load(std::memory_order_relaxed); }

    // Whether the part has been made, and, where it has, the part.
    explicit operator bool() const noexcept { return mPart.load(std::memory_order_acquire) != nullptr; }
    Part& operator*() noexcept { return *mPart.load(std::memory_order_acquire); }
    Part const& operator*() const noexcept { return *mPart.load(std::memory_order_acquire); }

    // The part, made now if it has not been. Throws std::bad_alloc.
    Part& made() {
        if (Part* const known = mPart.load(std::memory_order_acquire)) return *known;
        auto mine = std::make_unique<Part>();
        Part* other = nullptr;
        if (mPart.compare_exchange_strong(other, mine.get(), std::memory_order_acq_rel)) return *mine.release();
        return *other;
    }

private:
    std::atomic<Part*> mPart{nullptr};
};

} // namespace zov::metamodel
