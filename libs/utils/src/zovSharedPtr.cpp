#include "zovSharedPtr.h"

#include "zovAssert.h"
#include "zovCellPool.h"
#include "zovSharedLock.h"

namespace zov {

constinit spinLockerRecursive sharedLock;

std::uint32_t volatile* shptr::allocCounter() {
    return static_cast<std::uint32_t*>(cellsOf8.take());
}

void shptr::releaseCounter(std::uint32_t volatile* counter) noexcept {
    if (counter) cellsOf8.give(const_cast<std::uint32_t*>(counter));
}

sharedPtrLocker::sharedPtrLocker() noexcept {
    sharedLock.lock();
}
sharedPtrLocker::~sharedPtrLocker() {
    sharedLock.unlock();
}

namespace detail {

void failEmptySharedPtr(int line) {
    assertionFailed(L"m_p != nullptr", "libs/utils/inc/zovSharedPtr.h", line);
}

} // namespace detail

} // namespace zov
