// How readers look at published objects without counting them, and how writers free nothing under their eyes.
//
//     readSection const reading;                 // reader: what is published now stays alive until the scope ends
//     body const* now = published.load();        // with memory_order_seq_cst
//
//     body* former = published.exchange(next);   // writer, likewise seq_cst: no new reader finds `former`
//     waitForReaders();                          // nobody who found it before is still looking
//     delete former;
//
// A section costs one atomic addition and one store on a cache line that is the thread's own (only threads beyond the
// first 48 of the process share lines). It never waits, allocates nothing, and may lie within another one.
//
// Within a section nothing may be called that waits, locks, ends objects or belongs to the host: writers wait for its
// end. (The one exception: a search through more than 768 bases asks the allocator for memory.) Whoever needs an object
// beyond that counts it before the section ends.
#pragma once

#include <atomic>
#include <cstdint>

namespace zov::metamodel {

class readSection {
public:
    readSection() noexcept : mCount(enter()) {}
    ~readSection() {
        if (mCount.isShared) {
            mCount.open.fetch_sub(1, std::memory_order_release);
        } else {
            mCount.open.store(mCount.open.load(std::memory_order_relaxed) - 1, std::memory_order_release);
        }
    }

    readSection(readSection const&) = delete;
    readSection& operator=(readSection const&) = delete;

private:
    // Where the open sections of this thread, or of those that share with it, are counted.
    struct counter {
        std::atomic<std::uint32_t>& open;
        bool isShared;
    };

    static counter enter() noexcept;

    counter const mCount;
};

// Returns when every section that was open at the call has ended; later ones are not waited for. Not to be called
// within a section.
void waitForReaders() noexcept;

} // namespace zov::metamodel
