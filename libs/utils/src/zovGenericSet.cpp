#include "zovGenericSet.h"

#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "zovSpinLock.h"

namespace zov {

namespace {

using valuePtr = sharedPtr<genericValue>;
using valueMap = std::map<scString, valuePtr>;

} // namespace

// The entries with their guard. Under the guard pointers are copied and exchanged; no value is copied, called or
// destroyed.
struct genericSet::record {
    mutable spinLockerRecursive guard;
    valueMap values;

    valueMap snapshot() const {
        std::lock_guard held(guard);
        return values;
    }

    void exchange(valueMap& other) noexcept {
        std::lock_guard held(guard);
        values.swap(other);
    }

    // Leaves the entry's former value in `value`.
    void store(scString key, valuePtr& value) {
        std::lock_guard held(guard);
        values[key].exchange(value);
    }

    static valueMap independentCopy(genericSet const& source) {
        record const* const from = source.mRecord.load(std::memory_order_acquire);
        valueMap copy = from ? from->snapshot() : valueMap();
        for (auto& [key, value] : copy)
            value.reset(new zov::genericValue(std::as_const(*value)));
        return copy;
    }
};

genericSet::genericSet(genericSet const& other) {
    auto values = record::independentCopy(other);
    if (!values.empty()) ownRecord().exchange(values);
}

genericSet::genericSet(genericSet&& other) noexcept : mRecord(other.mRecord.exchange(nullptr)) {}

genericSet& genericSet::operator=(genericSet const& other) {
    auto values = record::independentCopy(other);
    if (!values.empty() || size() != 0) ownRecord().exchange(values);
    return *this;
}

genericSet& genericSet::operator=(genericSet&& other) noexcept {
    std::unique_ptr<record> taken(other.mRecord.exchange(nullptr));
    record* none = nullptr;
    if (mRecord.compare_exchange_strong(none, taken.get(), std::memory_order_acq_rel)) {
        static_cast<void>(taken.release()); // it is the set's own now
        return *this;
    }
    valueMap nothing;
    none->exchange(taken ? taken->values : nothing);
    return *this;
}

genericSet::~genericSet() {
    delete mRecord.load(std::memory_order_acquire);
}

const_sharedPtr<genericValue> genericSet::genericValue(scString const& key) const {
    return entry(key);
}

sharedPtr<genericValue> genericSet::genericValue(scString const& key) {
    return entry(key);
}

bool genericSet::setGenericValue(scString const& key, zov::genericValue const& value, bool flag) {
    zov::genericValue copy(value);
    return _setGenericValue(key, copy, flag);
}

bool genericSet::_setGenericValue(scString const& key, zov::genericValue& value, bool) {
    auto stored = valuePtr(new zov::genericValue(std::move(value)));
    ownRecord().store(key, stored);
    return true;
}

void genericSet::erase(scString const& key) {
    record* const held = mRecord.load(std::memory_order_acquire);
    if (!held) return;
    valueMap::node_type former;
    std::lock_guard guard(held->guard);
    former = held->values.extract(key);
}

bool genericSet::forEach(std::function<bool(scString const&, zov::genericValue const&)> const& visit,
                         bool stopOnFalse) const {
    record const* const held = mRecord.load(std::memory_order_acquire);
    if (!held) return true;
    for (auto const& [key, value] : held->snapshot()) {
        if (!visit(key, *value) && stopOnFalse) return false;
    }
    return true;
}

std::size_t genericSet::size() const noexcept {
    record const* const held = mRecord.load(std::memory_order_acquire);
    if (!held) return 0;
    std::lock_guard guard(held->guard);
    return held->values.size();
}

sharedPtr<genericValue> genericSet::entry(scString key) const noexcept {
    record const* const held = mRecord.load(std::memory_order_acquire);
    if (!held) return nullptr;
    std::lock_guard guard(held->guard);
    auto const found = held->values.find(key);
    return found == held->values.end() ? nullptr : found->second;
}

genericSet::record& genericSet::ownRecord() {
    if (record* const held = mRecord.load(std::memory_order_acquire)) return *held;
    auto made = std::make_unique<record>();
    record* other = nullptr;
    if (mRecord.compare_exchange_strong(other, made.get(), std::memory_order_acq_rel)) return *made.release();
    return *other;
}

} // namespace zov
