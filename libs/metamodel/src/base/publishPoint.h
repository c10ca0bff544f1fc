// Where a writer has changed what readers see, or is about to: builds that hunt for races give other threads their turn
// here (CMake's ZOV_YIELD_AT_PUBLISH).
#pragma once

#if defined(ZOV_YIELD_AT_PUBLISH)
#    include <thread>
#endif

namespace zov::metamodel {

inline void publishPoint() noexcept {
#if defined(ZOV_YIELD_AT_PUBLISH)
    std::this_thread::yield();
#endif
}

} // namespace zov::metamodel
