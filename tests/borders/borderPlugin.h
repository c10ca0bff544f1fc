// What the host and the plugin of the border tests agree upon. The plugin is a shared library of its own that links
// the two libraries and is loaded by the host at run time.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "zovAssert.h"
#include "zovLog.h"
#include "zovMetamodel.h"

namespace zov::tests {

// A value type that neither library knows. As it crosses a border, it has default visibility.
struct ZOV_UTILS_TYPE gridPoint {
    int column = 0;
    int row = 0;

    friend bool operator==(gridPoint const&, gridPoint const&) = default;
};

// An object that tells when it ends.
class ZOV_UTILS_TYPE countedObject : public refObj {
public:
    explicit countedObject(std::atomic<int>& ended) : mEnded(ended) {}

    // Where the object was made.
    virtual std::string origin() const = 0;

protected:
    void destroy() override { delete this; }
    ~countedObject() override { ++mEnded; }

private:
    std::atomic<int>& mEnded;
};

// A condition that tells when it ends.
class ZOV_UTILS_TYPE rangeCondition : public conditions::condition {
public:
    rangeCondition(int limit, std::atomic<int>& ended) : mLimit(limit), mEnded(&ended) {}
    ~rangeCondition() override { ++*mEnded; }

    virtual std::string origin() const = 0;
    int limit() const { return mLimit; }

private:
    int mLimit;
    std::atomic<int>* mEnded;
};

// The values that the tests pass: one of each listed type, equal on both sides.
inline bool sampleEquality(genericValue const&, genericValue const&) {
    return true;
}

// Calls `visit` with a sample of each listed type.
template <class Visit>
void forEachSample(Visit const& visit) {
    visit(true);
    visit(short{-7});
    visit(int{42});
    visit(long{1234567});
    visit(float{0.5F});
    visit(double{2.25});
    visit(zov::string(L"a text of the plugin's or the host's own"));
    visit(date(2024, 2, 29));
    visit(zov::time(17, 30, 1, 250000));
    visit(timestamp(date(2024, 2, 29), zov::time(17, 30, 1)));
    visit(binaryBuffer("bytes", 5));
    visit(file(L"/tmp/a file"));
    visit(directory(L"/tmp"));
    visit(searchPath(L"/tmp;/usr"));
    visit(std::vector<zov::string>{L"one", L"two"});
    visit(std::vector<scString>{scString::createFrom(L"one"), scString::createFrom(L"two")});
    visit(gridPoint{3, 4});
}

// What the plugin does for the host. Each member is a function inside the plugin.
struct borderPlugin {
    // Values of each listed type, in the order of forEachSample, and whether the plugin takes the host's for such.
    std::vector<genericValue> (*makeSamples)();
    int (*countSamplesRead)(std::vector<genericValue> const& samples);

    // A set with one entry for each sample, under "0", "1" ..., and how many of the host's it reads.
    genericSet (*makeSet)();
    int (*countEntriesRead)(genericSet const& samples);

    // Objects and conditions made in the plugin; and the plugin as the one that lets the host's go.
    refPtr<countedObject> (*makeObject)(std::atomic<int>& ended);
    void (*keepObject)(refPtr<refObj> object);
    std::string (*originOfKept)();
    void (*dropObject)();
    rangeCondition* (*makeCondition)(int limit, std::atomic<int>& ended);
    void (*deleteCondition)(conditions::condition* owned);

    scString (*nameOf)(wchar_t const* text);
    void (*useEmptyPointer)();
    bool (*catchesFalseFrom)(void (*failing)());

    void (*takeOverReports)(std::vector<std::string>& reports);
    void (*takeOverLog)(std::vector<std::string>& lines);
    void (*giveBackBoth)();

    refPtr<metamodel::modelInfo> (*makeModel)();
    bool (*fillClass)(refPtr<metamodel::classInfo> added);
    int (*countFieldsOf)(const_refPtr<metamodel::modelInfo> model, wchar_t const* name);
    void (*addFieldAlias)(refPtr<metamodel::fieldInfo> const& field);
};

// The name of the one function that the plugin exports: borderPlugin const* pluginFunctionName().
inline constexpr char const* pluginFunctionName = "zovBorderPlugin";

// How many of the values read back as the samples do, and as nothing else.
inline int samplesRead(std::vector<genericValue> const& samples) {
    int read = 0;
    std::size_t at = 0;
    forEachSample([&]<class T>(T const& expected) {
        if (at >= samples.size()) return;
        genericValue const& sample = samples[at++];
        auto const* const held = sample.valuePtr<T>();
        T copied = T();
        if (held && *held == expected && sample.getValue(copied) && copied == expected && sample.type() == typeid(T) &&
            !sample.valuePtr<T const>())
            ++read;
    });
    return read;
}

// How many entries of the set point to what the samples are.
inline int entriesRead(genericSet const& samples) {
    int read = 0;
    int at = 0;
    forEachSample([&]<class T>(T const& expected) {
        auto const key = std::to_wstring(at++);
        T* held = nullptr;
        gridPoint const* other = nullptr;
        if (samples.getValuePtr(key.c_str(), held) && *held == expected && !samples.getValuePtr(key.c_str(), other))
            ++read;
    });
    return read;
}

inline std::vector<genericValue> samplesMade() {
    std::vector<genericValue> samples;
    forEachSample([&samples](auto const& sample) { samples.emplace_back(sample); });
    return samples;
}

inline genericSet setMade() {
    genericSet made;
    int at = 0;
    forEachSample([&](auto const& sample) { made.setValue(std::to_wstring(at++).c_str(), sample, false); });
    return made;
}

} // namespace zov::tests
