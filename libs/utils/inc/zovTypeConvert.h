// Conversions between value types: what lets a value of one type be stored into, or read as, another.
//
//     auto& conversions = zov::typeconvert::typeConversionManager::instance();
//     long number = 0;
//     zov::string text(L" 42 ");
//     conversions.convert(typeid(number), &number, typeid(text), &text, 0, nullptr);   // true, number is 42
//
//     conversions.add<colour, zov::string>([](colour& target, zov::string const& source) {
//         return parseColour(source, target);
//     });
//
// Built in, all or nothing (a refused conversion leaves the target as it was):
//   bool, short, int, long, float, double among each other, when the value fits. Refused: what is out of range, NaN
//     (but from float to double and back, as infinity), and a fraction that a whole number cannot keep. A number is
//     true when it is not 0; true gives 1. Whole numbers and doubles round to the nearest float.
//   each of these from and to string: decimal, the whole text, blanks and tabs around it allowed; true false 1 0 in any
//     case for bool. Floats are written as the shortest text that reads back the same; inf and nan have no text, and a
//     number too large or too small for the type is refused.
//   date (YYYY-MM-DD), time (HH:MM:SS, up to six decimals), timestamp (both, with T or a blank between) from and to
//     string, with blanks around as above.
//   timestamp to date and to time; date to timestamp at midnight.
//   file, directory, searchPath from and to their path text; binaryBuffer from and to hexadecimal text.
//   each of these types to itself: a copy.
//
// Ownership: there is one registry, which is never destroyed, so that conversions also work while statics end.
// Threads: everything may be called from any thread at any time. A conversion runs outside of the
// registry's lock; while one is being replaced, a thread that runs it finishes with it. Values convert under their own
// locks, so a conversion reads and writes nothing but the two objects that it is given.
#pragma once

#include <functional>
#include <memory>
#include <typeinfo>
#include <utility>

#include "zovUtilsApi.h"

namespace zov::typeconvert {

class ZOV_UTILS_API typeConversionManager {
public:
    // Writes the value of the object at `source` into the object at `target` and answers true, or leaves the target
    // as it was and answers false. Called on any thread, on several at once, and, for values, under the locks of the
    // two.
    using conversion = std::function<bool(void* target, void const* source)>;

    // The registry.
    // Fails: std::bad_alloc, at the first call only; the next call tries again.
    static typeConversionManager& instance();

    // Converts the object of type `sourceType` at `source` into the existing object of type `targetType` at `target`.
    // True when it did. False, with the target as it was, when there is no such conversion, when the value cannot be
    // kept by the target's type, and when a pointer is null. The last two arguments are accepted and ignored.
    // Fails: std::bad_alloc, with the target as it was; and with what an added conversion throws.
    bool convert(std::type_info const& targetType, void* target, std::type_info const& sourceType, void const* source,
                 int, char*) const;

    // Registers a conversion, in place of the one there is for the same two types, a built-in one included. An empty
    // function takes the added one away; what is built in for these types then holds again.
    // Fails: std::bad_alloc, with the registry as before.
    void add(std::type_info const& targetType, std::type_info const& sourceType, conversion function);

    // The same for a function `bool(Target&, Source const&)`, which must be copyable.
    template <class Target, class Source, class Function>
    void add(Function function);

    typeConversionManager(typeConversionManager const&) = delete;
    typeConversionManager& operator=(typeConversionManager const&) = delete;

private:
    struct registry;

    typeConversionManager();
    ~typeConversionManager();

    std::unique_ptr<registry> const mRegistry;
};

template <class Target, class Source, class Function>
void typeConversionManager::add(Function function) {
    add(typeid(Target), typeid(Source), [function = std::move(function)](void* target, void const* source) -> bool {
        return function(*static_cast<Target*>(target), *static_cast<Source const*>(source));
    });
}

} // namespace zov::typeconvert
