#include "zovRefPtr.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <memory>
#include <new>

#include "zovAssert.h"
#include "zovSpinLock.h"
#include "zovThreads.h"

namespace zov {

namespace {

constinit spinLockerRecursive referenceLock;

} // namespace

std::int32_t interlockedIncrement(unsigned long volatile* counter) noexcept {
    return detail::increment(counter);
}
std::int32_t interlockedIncrement(std::uint32_t volatile* counter) noexcept {
    return detail::increment(counter);
}
std::int32_t interlockedDecrement(unsigned long volatile* counter) noexcept {
    return detail::decrement(counter);
}
std::int32_t interlockedDecrement(std::uint32_t volatile* counter) noexcept {
    return detail::decrement(counter);
}

// Objects whose count has come to 0, in the order in which they end. The links lie in the objects themselves.
class waitingObjects {
public:
    bool isEmpty() const noexcept { return !mFirst; }

    void append(refObj* object) noexcept;
    refObj* takeFirst() noexcept;

    // Puts `before`, which is left empty, in front.
    void prepend(waitingObjects& before) noexcept;

private:
    refObj* mFirst = nullptr;
    refObj* mLast = nullptr;
};

// The releases that a thread has put off while it ends objects. Lives on the stack of the outermost release().
//
// Entries form a stack: those that the object ending just now made lie above mFirstOwn, in the order in which it
// made them; once it is gone they are turned round, so that the first one made is the first one taken.
//
// When memory for entries is gone, releases are no longer put off but counted at once, and the objects that this
// leaves without a reference wait in a list, whose links need no memory. The list stands above the stack: what is in
// it comes first.
class refObjEnding {
public:
    // The queue of this thread, null while it ends nothing.
    static refObjEnding* current() noexcept;

    // Ends `object`, whose count has come to 0, and all that goes with it. Answers whether every hook succeeded.
    static bool run(refObj* object) noexcept;

    // Takes a release of `object` to be carried out after the object that is ending now.
    void putOff(refObj* object) noexcept {
        bool const isOnTop = mWaiting.isEmpty() && mOwnWaiting.isEmpty();
        if (isOnTop && (mSize < mCapacity || grow())) {
            mEntries[mSize++] = object;
            return;
        }
        std::for_each(mEntries + mFirstOwn, mEntries + mSize, [this](refObj* earlier) { countAtOnce(earlier); });
        mSize = mFirstOwn;
        countAtOnce(object);
    }

    // The link of an object that waits.
    static refObj* next(refObj const* object) noexcept {
        refObj* linked;
        std::memcpy(&linked, object->mWords, sizeof(void*));
        return linked;
    }
    static void setNext(refObj* object, refObj* linked) noexcept {
        std::memcpy(object->mWords, &linked, sizeof(void*));
    }

private:
    void end(refObj* object) noexcept {
        std::size_t const outerFirst = std::exchange(mFirstOwn, mSize);
        try {
            object->destroy();
        } catch (std::bad_alloc const&) { // a lost log line; the object is gone
        } catch (...) {
            mFailed = true;
        }
        std::reverse(mEntries + mFirstOwn, mEntries + mSize);
        mFirstOwn = outerFirst;
        mWaiting.prepend(mOwnWaiting);
    }

    void carryOutAll() noexcept {
        while (!mWaiting.isEmpty() || mSize > 0) {
            if (!mWaiting.isEmpty()) {
                end(mWaiting.takeFirst());
            } else if (refObj* const object = mEntries[--mSize]; detail::decrement(object->mWords) == 0) {
                end(object);
            }
        }
    }

    void countAtOnce(refObj* object) noexcept {
        if (detail::decrement(object->mWords) == 0) mOwnWaiting.append(object);
    }

    bool grow() noexcept {
        std::unique_ptr<refObj*[]> larger(new (std::nothrow) refObj*[mCapacity * 2]);
        if (!larger) return false;
        std::copy_n(mEntries, mSize, larger.get());
        mSpill = std::move(larger);
        mEntries = mSpill.get();
        mCapacity *= 2;
        return true;
    }

    static constexpr std::size_t inlineCapacity = 256;

    refObj* mInline[inlineCapacity];
    std::unique_ptr<refObj*[]> mSpill;
    refObj** mEntries = mInline;
    std::size_t mCapacity = inlineCapacity;
    std::size_t mSize = 0;
    std::size_t mFirstOwn = 0;
    waitingObjects mWaiting;
    waitingObjects mOwnWaiting; // of the object that is ending now
    bool mFailed = false;
};

namespace {

ZOV_NEAR_THREAD constinit thread_local refObjEnding* currentEnding = nullptr;

// Kept apart from release(), which seldom comes here.
[[gnu::noinline]] std::uint32_t putOffRelease(refObj* object, std::uint32_t left) noexcept {
    currentEnding->putOff(object);
    return left;
}

[[gnu::noinline]] std::uint32_t endUnreferenced(refObj* object) {
    if (!refObjEnding::run(object) && std::uncaught_exceptions() == 0) throw false;
    return 0;
}

} // namespace

refObjEnding* refObjEnding::current() noexcept {
    return currentEnding;
}

bool refObjEnding::run(refObj* object) noexcept {
    refObjEnding ending;
    currentEnding = &ending;
    ending.end(object);
    ending.carryOutAll();
    currentEnding = nullptr;
    return !ending.mFailed;
}

void waitingObjects::append(refObj* object) noexcept {
    refObjEnding::setNext(object, nullptr);
    if (mLast) refObjEnding::setNext(mLast, object);
    if (!mFirst) mFirst = object;
    mLast = object;
}

refObj* waitingObjects::takeFirst() noexcept {
    refObj* const taken = mFirst;
    mFirst = refObjEnding::next(taken);
    if (!mFirst) mLast = nullptr;
    refObjEnding::setNext(taken, nullptr); // a count of 0 again
    return taken;
}

void waitingObjects::prepend(waitingObjects& before) noexcept {
    if (before.isEmpty()) return;
    refObjEnding::setNext(before.mLast, mFirst);
    if (!mLast) mLast = before.mLast;
    mFirst = before.mFirst;
    before = waitingObjects();
}

refObj::~refObj() = default;

std::uint32_t refObj::release() {
    if (refObjEnding::current()) [[unlikely]]
        return putOffRelease(this, currentCount() - 1);
    auto const left = static_cast<std::uint32_t>(detail::decrement(mWords));
    return left == 0 ? endUnreferenced(this) : left;
}

std::uint32_t refObj::currentCount() const noexcept {
    return detail::counterValue(mWords);
}

referencePtrLocker::referencePtrLocker() noexcept {
    referenceLock.lock();
}
referencePtrLocker::~referencePtrLocker() {
    referenceLock.unlock();
}

namespace detail {

void failEmptyRefPtr() {
    assertionFailed(L"m_p != NULL", "libs/utils/inc/zovRefPtr.h", 156);
}
void failEmptyConstRefPtr() {
    assertionFailed(L"m_p != NULL", "libs/utils/inc/zovRefPtr.h", 348);
}

} // namespace detail

} // namespace zov
