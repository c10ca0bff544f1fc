// How thread tests run: from one start line, with checks that are counted while threads run and reported once after.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <exception>
#include <functional>
#include <latch>
#include <thread>
#include <vector>

namespace zov::tests {

// Runs the jobs, a thread each, from one start line; what one throws fails the test.
inline void runTogether(std::vector<std::function<void()>> const& jobs) {
    std::latch startLine(static_cast<std::ptrdiff_t>(jobs.size()));
    std::vector<std::thread> threads;
    for (auto const& job : jobs) {
        threads.emplace_back([&startLine, &job] {
            startLine.arrive_and_wait();
            try {
                job();
            } catch (bool) {
                ADD_FAILURE() << "a thread threw a bool";
            } catch (std::exception const& failure) {
                ADD_FAILURE() << "a thread threw: " << failure.what();
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
}

// A failure of a check inside a loop: counted, and reported once after the threads have ended.
class violations {
public:
    void check(bool holds) noexcept {
        if (!holds) ++mCount;
    }
    ~violations() { EXPECT_EQ(mCount.load(), 0); }
    violations() = default;
    violations(violations const&) = delete;
    violations& operator=(violations const&) = delete;

private:
    std::atomic<int> mCount{0};
};

} // namespace zov::tests
