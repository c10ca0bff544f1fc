// A reference to one object that changes beside readers, such as a field's class.
#pragma once

#include <atomic>

#include "base/counting.h"
#include "base/publishPoint.h"
#include "base/readSection.h"
#include "zovRefPtr.h"

namespace zov::metamodel {

template <class T>
class linkSlot {
public:
    linkSlot() noexcept = default;
    explicit linkSlot(T* object) noexcept : mObject(object) { countIfAny(object); }
    linkSlot(linkSlot const&) = delete;
    linkSlot& operator=(linkSlot const&) = delete;
    ~linkSlot() { giveUpQuietly(mObject.load(std::memory_order_relaxed)); }

    // The object at this moment, counted, or null.
    refPtr<T> get() const noexcept {
        readSection const reading;
        return peek(reading);
    }

    // The same, not counted: valid until the end of the section.
    T* peek(readSection const&) const noexcept { return mObject.load(std::memory_order_seq_cst); }

    // Lets go of the object.
    void clear() noexcept {
        T* const former = detach();
        if (!former) return;
        waitForReaders();
        giveUpQuietly(former);
    }

    // Leaves the slot empty and its reference, still counted, to the caller, who gives it up after waitForReaders().
    T* detach() noexcept {
        publishPoint();
        referencePtrLocker const guard;
        return mObject.exchange(nullptr, std::memory_order_seq_cst);
    }

    // Puts `object` into the slot if that is empty; answers whether it was.
    bool setIfEmpty(refPtr<T> const& object) noexcept {
        T* none = nullptr;
        referencePtrLocker const guard;
        if (!mObject.compare_exchange_strong(none, object.get(), std::memory_order_seq_cst)) return false;
        object->addRef(); // the caller holds it meanwhile
        return true;
    }

private:
    std::atomic<T*> mObject{nullptr};
};

} // namespace zov::metamodel
