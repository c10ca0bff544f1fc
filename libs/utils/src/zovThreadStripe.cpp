#include "zovThreadStripe.h"

#include <atomic>

namespace zov {

namespace {

constinit std::atomic<std::uint64_t> threads{0};

} // namespace

constinit thread_local std::uint64_t threadStripe::number = 0;

void threadStripe::prepare() noexcept {
    if (number == 0) number = threads.fetch_add(1, std::memory_order_relaxed) + 1;
}

} // namespace zov
