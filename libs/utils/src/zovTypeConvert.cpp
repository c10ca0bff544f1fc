#include "zovTypeConvert.h"

#include <atomic>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <limits>
#include <mutex>
#include <shared_mutex>
#include <type_traits>
#include <typeindex>
#include <unordered_map>
#include <utility>

#include "zovBinaryBuffer.h"
#include "zovDateTime.h"
#include "zovFsEntry.h"
#include "zovString.h"
#include "zovTextConvert.h"

namespace zov::typeconvert {

namespace {

template <class T>
concept number = std::is_arithmetic_v<T>;

template <class T>
concept wholeNumber = std::integral<T> && !std::same_as<T, bool>;

template <class T>
concept pathValue = std::same_as<T, file> || std::same_as<T, directory> || std::same_as<T, searchPath>;

template <class T>
concept writtenAsText = requires(T const& value, string& out) {
    writeText(value, out);
};

template <class T>
concept readFromText = requires(std::wstring_view text, T& out) {
    readText(text, out);
};

// What is built in between different types, one overload a kind of pair. Each touches `target` only when it answers
// true.

template <wholeNumber Target>
bool convertValue(Target& target, bool source) noexcept {
    target = source ? 1 : 0;
    return true;
}

template <wholeNumber Target, wholeNumber Source>
bool convertValue(Target& target, Source source) noexcept {
    if (!std::in_range<Target>(source)) return false;
    target = static_cast<Target>(source);
    return true;
}

template <wholeNumber Target, std::floating_point Source>
bool convertValue(Target& target, Source source) noexcept {
    // The smallest whole number is a power of 2, so a double holds both ends of the range exactly; NaN compares
    // false with either.
    auto const lowest = static_cast<double>(std::numeric_limits<Target>::min());
    auto const value = static_cast<double>(source);
    if (!(value >= lowest && value < -lowest) || std::trunc(value) != value) return false;
    target = static_cast<Target>(value);
    return true;
}

template <std::floating_point Target, number Source>
bool convertValue(Target& target, Source source) noexcept {
    target = static_cast<Target>(source);
    return true;
}

bool convertValue(float& target, double source) noexcept {
    constexpr auto largest = static_cast<double>(std::numeric_limits<float>::max());
    if (std::isfinite(source) && std::fabs(source) > largest) return false;
    target = static_cast<float>(source);
    return true;
}

template <number Source>
bool convertValue(bool& target, Source source) noexcept {
    if constexpr (std::floating_point<Source>) {
        if (std::isnan(source)) return false;
    }
    target = source != Source{0};
    return true;
}

template <writtenAsText Source>
bool convertValue(string& target, Source const& source) {
    return writeText(source, target);
}

template <readFromText Target>
bool convertValue(Target& target, string const& source) {
    return readText(source, target);
}

template <pathValue Source>
bool convertValue(string& target, Source const& source) {
    target = source.path();
    return true;
}

template <pathValue Target>
bool convertValue(Target& target, string const& source) {
    target = Target(source);
    return true;
}

bool convertValue(date& target, timestamp const& source) noexcept {
    target = source.date();
    return true;
}

bool convertValue(time& target, timestamp const& source) noexcept {
    target = source.time();
    return true;
}

bool convertValue(timestamp& target, date const& source) noexcept {
    target = timestamp(source, time());
    return true;
}

template <class Target, class Source>
bool convertUntyped(void* target, void const* source) {
    auto& to = *static_cast<Target*>(target);
    auto const& from = *static_cast<Source const*>(source);
    if constexpr (std::same_as<Target, Source>) {
        to = from;
        return true;
    } else {
        return convertValue(to, from);
    }
}

struct typePair {
    std::type_index mTarget;
    std::type_index mSource;

    bool operator==(typePair const&) const noexcept = default;
};

struct typePairHash {
    std::size_t operator()(typePair const& types) const noexcept {
        return types.mTarget.hash_code() * 31 + types.mSource.hash_code();
    }
};

using builtInFunction = bool (*)(void* target, void const* source);
using builtInMap = std::unordered_map<typePair, builtInFunction, typePairHash>;

template <class Target, class... Sources>
void insertInto(builtInMap& map) {
    (map.emplace(typePair{typeid(Target), typeid(Sources)}, &convertUntyped<Target, Sources>), ...);
}

builtInMap makeBuiltIn() {
    builtInMap map;
    insertInto<bool, bool, short, int, long, float, double, string>(map);
    insertInto<short, bool, short, int, long, float, double, string>(map);
    insertInto<int, bool, short, int, long, float, double, string>(map);
    insertInto<long, bool, short, int, long, float, double, string>(map);
    insertInto<float, bool, short, int, long, float, double, string>(map);
    insertInto<double, bool, short, int, long, float, double, string>(map);
    insertInto<string, bool, short, int, long, float, double, string>(map);
    insertInto<string, date, time, timestamp, file, directory, searchPath, binaryBuffer>(map);
    insertInto<date, date, timestamp, string>(map);
    insertInto<time, time, timestamp, string>(map);
    insertInto<timestamp, timestamp, date, string>(map);
    insertInto<file, file, string>(map);
    insertInto<directory, directory, string>(map);
    insertInto<searchPath, searchPath, string>(map);
    insertInto<binaryBuffer, binaryBuffer, string>(map);
    return map;
}

} // namespace

// The built-in conversions never change, so they are read without a lock; those of the host are looked at first.
struct typeConversionManager::registry {
    using function = std::shared_ptr<conversion const>;

    function findAdded(typePair const& types) const {
        if (!mHasAdded.load(std::memory_order_acquire)) return nullptr;
        std::shared_lock guard(mMutex);
        auto const found = mAdded.find(types);
        return found == mAdded.end() ? nullptr : found->second;
    }

    // Answers the former function, which the caller lets go.
    function exchangeAdded(typePair const& types, function next) {
        std::lock_guard guard(mMutex);
        auto const place = mAdded.try_emplace(types).first;
        place->second.swap(next);
        mHasAdded.store(true, std::memory_order_release);
        return next;
    }

    builtInMap const mBuiltIn = makeBuiltIn();
    std::atomic<bool> mHasAdded{false};
    mutable std::shared_mutex mMutex;
    std::unordered_map<typePair, function, typePairHash> mAdded;
};

typeConversionManager::typeConversionManager() : mRegistry(std::make_unique<registry>()) {}

typeConversionManager::~typeConversionManager() = default;

typeConversionManager& typeConversionManager::instance() {
    static auto* const manager = new typeConversionManager;
    return *manager;
}

bool typeConversionManager::convert(std::type_info const& targetType, void* target, std::type_info const& sourceType,
                                    void const* source, int, char*) const {
    if (target == nullptr || source == nullptr) return false;
    typePair const types{targetType, sourceType};
    if (auto const added = mRegistry->findAdded(types)) return (*added)(target, source);
    auto const found = mRegistry->mBuiltIn.find(types);
    return found != mRegistry->mBuiltIn.end() && found->second(target, source);
}

void typeConversionManager::add(std::type_info const& targetType, std::type_info const& sourceType,
                                conversion function) {
    auto next = function ? std::make_shared<conversion const>(std::move(function)) : nullptr;
    // The former function ends here, outside of the lock.
    mRegistry->exchangeAdded({targetType, sourceType}, std::move(next));
}

} // namespace zov::typeconvert
