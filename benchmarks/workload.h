// The schema that everything is measured on: classes in chains of four and their fields, drawn by a small generator
// from a fixed seed, so that every run on every machine asks the same questions.
//
// Names look like those of real schemas: classes share many field names, a few of which are far more frequent than the
// rest. No two fields of a chain share a name, in whatever letter case.
//
// Ownership: a workload owns its plans. Threads: unchanging once made.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zov::benchmarks {

// Evenly distributed numbers (splitmix64), the same for the same seed everywhere.
class generator {
public:
    explicit generator(std::uint64_t seed) : mState(seed) {}

    std::uint64_t next();

    // A number below `limit`, which is not 0.
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(next() % limit); }

    // A name of `fewest` to `most` letters in which a new word begins with a capital here and there.
    std::string name(std::size_t fewest, std::size_t most);

private:
    std::uint64_t mState;
};

enum class valueType : std::uint8_t { boolean, integer, longInteger, real, text };

struct fieldPlan {
    std::uint32_t mName = 0; // index into workload::fieldNames()
    std::int32_t mDefault = 0;
    valueType mType = valueType::boolean;
    bool mHasDefault = false;
};

struct classPlan {
    static constexpr std::size_t noBase = static_cast<std::size_t>(-1);

    std::string mName;
    std::size_t mBase = noBase; // index into workload::classes()
    std::vector<fieldPlan> mFields;
};

struct modelSize {
    std::size_t mClasses = 0;
    std::size_t mFieldsPerClass = 0;
    bool mDefaults = true; // whether half of the fields carry a default

    // "1000 x 20"
    std::string text() const;

    friend auto operator<=>(modelSize const&, modelSize const&) = default;
};

class workload {
public:
    explicit workload(modelSize size);

    std::vector<classPlan> const& classes() const { return mClasses; }

    // All names that fields may have, whether one has it or not.
    std::vector<std::string> const& fieldNames() const { return mFieldNames; }

    std::size_t countFields() const;

    // Whether the class or another one of its chain up to the root has a field of that name.
    bool hasField(classPlan const& asked, std::uint32_t name) const;

private:
    classPlan makeClass(std::size_t number, std::string name, std::vector<bool>& taken);
    fieldPlan makeField(std::uint32_t name);
    std::uint32_t drawName();

    modelSize mSize;
    generator mGenerator;
    std::vector<std::string> mFieldNames;
    std::vector<classPlan> mClasses;
};

// The text with the letters A to Z in lower case.
std::string lowered(std::string text);

} // namespace zov::benchmarks
