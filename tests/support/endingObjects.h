// Counted objects whose end a test can watch, and what helps to watch it.
//
//     std::vector<int> ended;
//     refPtr<node> parent(new node(1, ended));
//     parent->add(new node(2, ended));
//     parent.reset();                           // ended is {1, 2}
#pragma once

#include <pthread.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <exception>
#include <functional>
#include <future>
#include <memory>
#include <random>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "zovLog.h"
#include "zovRefPtr.h"

namespace zov::tests {

// How many objects of the types below there are.
inline std::atomic<long> objectsAlive{0};

// Writes its number down when it ends, and then gives its children up in the order in which it got them. It
// allocates nothing while it ends if `ended` has room.
class node : public refObj {
public:
    node(int number, std::vector<int>& ended) noexcept : mNumber(number), mEnded(ended) { ++objectsAlive; }
    ~node() override {
        mEnded.push_back(mNumber);
        for (auto& child : mChildren)
            child = nullptr;
        --objectsAlive;
    }

    void add(refPtr<node> child) { mChildren.push_back(std::move(child)); }

    using refObj::currentCount;

private:
    void destroy() override { delete this; }

    int mNumber;
    std::vector<int>& mEnded;
    std::vector<refPtr<node>> mChildren;
};

// A chain of `length` nodes, numbered from 0.
inline refPtr<node> chainOf(int length, std::vector<int>& ended) {
    refPtr<node> first;
    for (int number = length; number-- > 0;) {
        refPtr<node> next(new node(number, ended));
        if (first) next->add(std::move(first));
        first = std::move(next);
    }
    return first;
}

// What nested destruction would do: a graph of counts, and a destructor that calls itself.
struct nestedModel {
    std::vector<std::vector<int>> children;
    std::vector<int> counts;
    std::vector<int> ended;

    void release(int at) {
        auto const index = static_cast<std::size_t>(at);
        if (--counts[index] != 0) return;
        ended.push_back(at);
        for (int child : children[index])
            release(child);
    }
};

// A graph without cycles, in which an object may hold another one several times.
inline nestedModel randomGraph(std::mt19937& random, int size, int edgesPerNode) {
    nestedModel graph;
    graph.children.resize(static_cast<std::size_t>(size));
    graph.counts.assign(static_cast<std::size_t>(size), 0);
    for (int from = 0; from + 1 < size; ++from) {
        int const edges = std::uniform_int_distribution(0, edgesPerNode)(random);
        for (int edge = 0; edge < edges; ++edge) {
            int const to = std::uniform_int_distribution(from + 1, size - 1)(random);
            graph.children[static_cast<std::size_t>(from)].push_back(to);
            ++graph.counts[static_cast<std::size_t>(to)];
        }
    }
    return graph;
}

// The same graph of real objects. In both, each object is held once besides, by the result.
inline std::vector<refPtr<node>> realGraph(nestedModel& graph, std::vector<int>& ended) {
    std::vector<refPtr<node>> nodes;
    for (std::size_t at = 0; at < graph.children.size(); ++at) {
        nodes.emplace_back(new node(static_cast<int>(at), ended));
        ++graph.counts[at];
    }
    for (std::size_t at = 0; at < graph.children.size(); ++at)
        for (int child : graph.children[at])
            nodes[at]->add(nodes[static_cast<std::size_t>(child)]);
    return nodes;
}

// While it lives, every logger that is asked for is missing.
class noLoggers {
public:
    noLoggers() {
        zovlog::logManager::setProvider([](char const*) { return refPtr<zovlog::logger>(); });
    }
    ~noLoggers() { zovlog::logManager::setProvider({}); }
    noLoggers(noLoggers const&) = delete;
    noLoggers& operator=(noLoggers const&) = delete;
};

// Runs `action` on a thread with a stack of 256 KiB and waits for it.
inline void runOnSmallStack(std::function<void()> action) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, std::size_t{256} * 1024);
    pthread_t thread;
    auto const body = [](void* what) -> void* {
        (*static_cast<std::function<void()>*>(what))();
        return nullptr;
    };
    int const refused = pthread_create(&thread, &attributes, body, &action);
    pthread_attr_destroy(&attributes);
    if (refused) throw std::runtime_error("no thread with a small stack");
    pthread_join(thread, nullptr);
}

// Whether another thread that does `action` now gets it done; it is given five seconds.
inline bool anotherThreadGetsThrough(std::function<void()> action) {
    auto const done = std::make_shared<std::promise<void>>();
    std::thread other([done, action = std::move(action)] {
        action();
        done->set_value();
    });
    bool const through = done->get_future().wait_for(std::chrono::seconds(5)) == std::future_status::ready;
    through ? other.join() : other.detach();
    return through;
}

} // namespace zov::tests
