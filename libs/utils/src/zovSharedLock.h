// The lock of the sharedPtrLocker, for who waits for it only when it is held.
#pragma once

#include "zovSpinLock.h"

namespace zov {

extern constinit spinLockerRecursive sharedLock;

} // namespace zov
