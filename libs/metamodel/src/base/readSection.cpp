#include "base/readSection.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <thread>

#include "base/publishPoint.h"

namespace zov::metamodel {

namespace {

// Each of the first threads of the process has a stripe of its own, and keeps it; all later ones share the others.
constexpr unsigned ownStripes = 48;
constexpr unsigned sharedStripes = 16;
constexpr unsigned stripeCount = ownStripes + sharedStripes;
constexpr std::size_t apart = 128; // two lines, since processors fetch them in pairs

// The sections that are open now, counted apart by the phase in which they began.
struct alignas(apart) stripe {
    std::atomic<std::uint32_t> open[2];
};

constinit stripe stripes[stripeCount];

// 0 or 1: where sections that begin now are counted. A writer turns it, so that the count it waits for only falls.
alignas(apart) constinit std::atomic<unsigned> phase{0};

alignas(apart) constinit std::atomic<std::uint64_t> threadsSeen{0};

constexpr unsigned noStripe = stripeCount;

// Found without a call where the C library keeps room for such variables of libraries that are loaded at run time.
#if defined(__GLIBC__)
[[gnu::tls_model("initial-exec")]]
#endif
constinit thread_local unsigned ownStripe = noStripe;

[[gnu::noinline]] unsigned takeStripe() noexcept {
    std::uint64_t const number = threadsSeen.fetch_add(1);
    return ownStripe = static_cast<unsigned>(number < ownStripes ? number : ownStripes + number % sharedStripes);
}

// Whether no section is open on the stripes in use: each stripe was seen without one at some moment.
template <class IsQuiet>
bool allStripes(IsQuiet const& isQuiet) noexcept {
    std::uint64_t const seen = threadsSeen.load();
    std::uint64_t const used = seen < ownStripes ? seen : stripeCount;
    return std::all_of(stripes, stripes + used, isQuiet);
}

// Most sections are some hundred instructions long. One that takes longer belongs to a thread that does not run, or
// searches many bases or relations.
void pause(int round) noexcept {
    constexpr int spins = 64;
    constexpr int yields = 32;
    if (round < spins) return;
    if (round < spins + yields) return std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::microseconds(50));
}

// Held by the one writer that turns the phase. Not a std::mutex, which not every C++ library has ready before main.
class turn {
public:
    turn() noexcept {
        for (int round = 0; isHeld.exchange(true, std::memory_order_acquire); ++round)
            pause(round);
    }
    ~turn() { isHeld.store(false, std::memory_order_release); }
    turn(turn const&) = delete;
    turn& operator=(turn const&) = delete;

private:
    static constinit std::atomic<bool> isHeld;
};
constinit std::atomic<bool> turn::isHeld{false};

void waitUntilEnded(unsigned inPhase) noexcept {
    auto const isQuiet = [inPhase](stripe const& own) { return own.open[inPhase].load() == 0; };
    for (int round = 0; !allStripes(isQuiet); ++round)
        pause(round);
}

} // namespace

readSection::counter readSection::enter() noexcept {
    unsigned const number = ownStripe != noStripe ? ownStripe : takeStripe();
    auto& open = stripes[number].open[phase.load(std::memory_order_relaxed)];
    open.fetch_add(1);
    return {open, number >= ownStripes};
}

// Both counts have been 0 after the call began, so that no section from before it is left. New sections are counted
// where nobody waits, so that both counts do come to 0.
void waitForReaders() noexcept {
    publishPoint();
    if (allStripes([](stripe const& own) { return own.open[0].load() + own.open[1].load() == 0; })) return;
    turn const mine;
    unsigned const now = phase.load();
    waitUntilEnded(1 - now);
    phase.store(1 - now);
    waitUntilEnded(now);
}

} // namespace zov::metamodel
