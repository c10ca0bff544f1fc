// The pools behind counters, locks and small values, which hosts do not see.
#include "zovCellPool.h"
#include "zovFreshCells.h"
#include "zovThreadStripe.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace zov::tests {
namespace {

// Pools live as long as the process.
constinit cellPool poolOf8(8);
constinit cellPool poolOf16(16);
constinit cellPool poolOf32(32);
constinit cellPool poolForThreads(16);
constinit cellPool poolForManyThreads(16);

// The cells that a pool may hold in reserve, by a wide margin: a few blocks and what stripes keep.
constexpr std::size_t reserve = 2000;

void takesDistinctCells(cellPool& pool, std::size_t size, std::size_t alignment) {
    std::vector<unsigned char*> cells;
    for (int number = 0; number < 3000; ++number) {
        auto* const cell = static_cast<unsigned char*>(pool.take());
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(cell) % alignment, 0U);
        std::memset(cell, number % 251, size);
        cells.push_back(cell);
    }
    for (int number = 0; number < 3000; ++number)
        for (std::size_t at = 0; at < size; ++at)
            ASSERT_EQ(cells[static_cast<std::size_t>(number)][at], number % 251);
    for (unsigned char* const cell : cells)
        pool.give(cell);
}

constinit freshCells someFresh;

TEST(freshCells, lieSideBySideWhateverTheirSizes) {
    threadStripe::prepare();
    auto const take = [](std::size_t size) { return static_cast<std::byte*>(someFresh.take(size)); };
    std::byte* const first = take(16);
    EXPECT_EQ(take(8), first + 16);
    EXPECT_EQ(take(32), first + 32);
    EXPECT_EQ(take(8), first + 24);
    EXPECT_EQ(take(8), first + 64);
    EXPECT_EQ(take(16), first + 80);
    EXPECT_EQ(take(8), first + 72);
    EXPECT_EQ(take(16), first + 96);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first) % 32, 0U);
}

TEST(cellPool, givesEachCellToOne) {
    takesDistinctCells(poolOf8, 8, 8);
    takesDistinctCells(poolOf16, 16, 16);
    takesDistinctCells(poolOf32, 32, 32);
}

TEST(cellPool, givesCellsAgain) {
    std::set<void*> seen;
    for (int round = 0; round < 100; ++round) {
        std::vector<void*> cells;
        for (int number = 0; number < 1000; ++number)
            cells.push_back(poolOf8.take());
        seen.insert(cells.begin(), cells.end());
        for (void* const cell : cells)
            poolOf8.give(cell);
    }
    EXPECT_LE(seen.size(), 3000 + reserve);
}

// Cells that one thread takes and another one gives back. All addresses that were ever seen are counted.
class handedOver {
public:
    explicit handedOver(cellPool& pool) : mPool(pool) {}

    void put() {
        std::uintptr_t* const cell = static_cast<std::uintptr_t*>(mPool.take());
        *cell = reinterpret_cast<std::uintptr_t>(cell);
        std::lock_guard const held(mGuard);
        mSeen.insert(cell);
        mCells.push_back(cell);
    }

    bool get() {
        std::uintptr_t* cell = nullptr;
        {
            std::lock_guard const held(mGuard);
            if (mCells.empty()) return false;
            cell = mCells.back();
            mCells.pop_back();
        }
        if (*cell != reinterpret_cast<std::uintptr_t>(cell)) ++broken;
        mPool.give(cell);
        return true;
    }

    std::size_t waiting() {
        std::lock_guard const held(mGuard);
        return mCells.size();
    }
    std::size_t seen() const { return mSeen.size(); }

    std::atomic<int> broken{0};

private:
    cellPool& mPool;
    std::mutex mGuard;
    std::vector<std::uintptr_t*> mCells;
    std::set<void*> mSeen;
};

TEST(cellPoolOnThreads, doesNotGrowWhenOneTakesAndAnotherGives) {
    int const times = 100'000;
    handedOver cells(poolForThreads);
    std::thread taking([&] {
        for (int number = 0; number < times; ++number) {
            while (cells.waiting() > 100)
                std::this_thread::yield();
            cells.put();
        }
    });
    std::thread giving([&] {
        for (int given = 0; given < times;)
            cells.get() ? static_cast<void>(++given) : std::this_thread::yield();
    });
    taking.join();
    giving.join();
    EXPECT_EQ(cells.broken, 0);
    EXPECT_LE(cells.seen(), 101 + reserve);
}

// More threads than have a stripe of their own, several times over.
TEST(cellPoolOnThreads, servesAnyNumberOfThreads) {
    constexpr int threadCount = 80;
    handedOver cells(poolForManyThreads);
    for (int round = 0; round < 3; ++round) {
        std::barrier startLine(threadCount);
        std::vector<std::thread> threads;
        for (int number = 0; number < threadCount; ++number) {
            threads.emplace_back([&, number] {
                startLine.arrive_and_wait();
                for (int at = 0; at < 400; ++at) {
                    cells.put();
                    if (at % 3 != number % 3) cells.get();
                }
            });
        }
        for (auto& thread : threads)
            thread.join();
        while (cells.get()) {
        }
    }
    EXPECT_EQ(cells.broken, 0);
}

} // namespace
} // namespace zov::tests
