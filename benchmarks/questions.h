// What is asked of a model, and what the right answer is.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "workload.h"

namespace zov::benchmarks {

enum class operation {
    classByName,    // a class by its name
    unknownClass,   // a name that no class has
    qualifiedField, // a field by "class.field"
    unknownField,   // a known class, but no field of it: half of the names are those of other classes' fields
    inheritedField, // a field three bases up, asked of the class object
    walk,           // name and type of all fields of all classes
    intDefault,     // the default value of an int field
    fieldsByThread, // as qualifiedField, in an order in which equal parts ask for different classes
    sameFields,     // as qualifiedField, but always the same eight fields
    classKey,       // part of classByName, on its questions: the key of the name alone
    countedClass,   // the same: counting the class, which is at hand, and giving it up
    addClass,       // these three are not asked but done
    addField,
    addClassBesideReaders
};

// How many questions of an operation there are, the walk apart.
constexpr std::size_t countQuestions = 16'384;

struct question {
    std::string mClassName;
    std::string mFieldName;            // empty when a class is asked for
    classPlan const* mAsked = nullptr; // the class of that name; null when there is none
    classPlan const* mOwner = nullptr; // the class that has the field; null when none is to be found
    fieldPlan const* mField = nullptr;
};

// Questions about the workload, drawn at random but always the same. None when the workload has no such classes or
// fields, and none for a walk. Points into the workload.
std::vector<question> makeQuestions(workload const& load, operation asked);

// How many threads may ask at once: the machine's cores, two at least.
std::size_t mostThreads();

} // namespace zov::benchmarks
