#include "parts/fieldTypes.h"

#include <cmath>
#include <type_traits>

namespace zov::metamodel {

namespace {

// A value below this magnitude is no number to speak of.
constexpr double nullThreshold = 1e-06;

template <class T>
bool isNothing(T const& value) {
    if constexpr (std::is_floating_point_v<T>) {
        return std::fabs(static_cast<double>(value)) < nullThreshold; // never for not-a-number
    } else {
        return value == T();
    }
}

// A value's own start: false, 0, the empty text or buffer, 1900-01-01 at midnight, the empty path.
template <class T>
genericValue makeStart() {
    return genericValue(T());
}

genericValue makeToday() {
    return genericValue(date::today());
}
genericValue makeTimeNow() {
    return genericValue(zov::time::now());
}
genericValue makeTimestampNow() {
    return genericValue(timestamp::now());
}
genericValue makeNothing() {
    return genericValue();
}

// What a value is read into. A host's conversion that succeeds without writing shows it: then a date is no null value.
template <class T>
T readingStart() {
    return T{};
}
template <>
date readingStart<date>() {
    return date(date::thisYear(), 1, 1);
}
template <>
timestamp readingStart<timestamp>() {
    return timestamp(readingStart<date>(), zov::time());
}

template <class T>
T readAs(genericValue const& value) {
    T read = readingStart<T>();
    if (!value.getValue(read)) throw false;
    return read;
}

template <class T>
bool isNullAs(genericValue const& value) {
    if (T const* const held = value.valuePtr<T>()) return isNothing(*held); // where it is: no copy of a long text
    return isNothing(readAs<T>(value));
}

bool isNullWhenEmpty(genericValue const& value) {
    return value.isEmpty();
}

template <class T>
bool areEqualAs(genericValue const& left, genericValue const& right) {
    return readAs<T>(left) == readAs<T>(right);
}

// A type whose default is its null value.
template <class T>
constexpr fieldTypeRow plainRow(eFieldType type, std::wstring_view text) {
    return {type, text, &makeStart<T>, &makeStart<T>, &isNullAs<T>, &areEqualAs<T>};
}

// KEEP FV-04: the default is the present moment and thus never null, while the null value is that of 1900.
template <class T>
constexpr fieldTypeRow momentRow(eFieldType type, std::wstring_view text, genericValue (*present)()) {
    return {type, text, present, &makeStart<T>, &isNullAs<T>, &areEqualAs<T>};
}

// A type of which any value at all counts as one.
template <class T>
constexpr fieldTypeRow pathRow(eFieldType type, std::wstring_view text, valueEqFunction areEqual) {
    return {type, text, &makeStart<T>, &makeStart<T>, &isNullWhenEmpty, areEqual};
}

// In the order of values.
constexpr fieldTypeRow typeRows[] = {
    plainRow<bool>(eBool, L"bool"),
    plainRow<short>(eShort, L"short"),
    plainRow<int>(eInt, L"int"),
    plainRow<long>(eLong, L"long"),
    plainRow<float>(eFloat, L"float"),
    plainRow<double>(eDouble, L"double"),
    plainRow<string>(eString, L"string"),
    momentRow<date>(eDate, L"date", &makeToday),
    momentRow<zov::time>(eTime, L"time", &makeTimeNow),
    momentRow<timestamp>(eTimestamp, L"timestamp", &makeTimestampNow),
    {eBinary, L"binary", &makeStart<binaryBuffer>, &makeStart<binaryBuffer>, &isNullAs<binaryBuffer>, nullptr},
    pathRow<directory>(eDirectory, L"directory", &areEqualAs<directory>),
    pathRow<file>(eFile, L"file", &areEqualAs<file>),
    pathRow<searchPath>(eSearchPath, L"searchpath", nullptr),
    {ePtr, L"ptr", nullptr, &makeNothing, &isNullWhenEmpty, nullptr},
};

// eCustom, and values that are no type.
constexpr fieldTypeRow noType = {eCustom, L"", nullptr, &makeNothing, &isNullWhenEmpty, nullptr};

constexpr std::wstring_view stringText = L"string";

// The length of a text that begins with "string"; 0 when it declares none. Answers false when it declares one that
// is no number, or 0.
bool parseStringLength(string text, unsigned long& length) {
    std::size_t const opening = text.find(L'(');
    // KEEP FT-05: only a parenthesis right behind the word counts, so that stringx(5) is a string of no length.
    if (opening != stringText.size()) return true;
    std::size_t const closing = text.find(L')');
    // KEEP FT-06: without something between the parentheses the whole text is read as the number, and refused.
    // What stands from the closing parenthesis on goes to the conversion too, which ignores it.
    if (closing != string::npos && closing >= opening + 2) text.erase(0, opening + 1);
    unsigned long declared = 0;
    if (!string::dtconvert<unsigned long, string>(declared, text, 0, nullptr) || declared == 0) return false;
    length = declared;
    return true;
}

} // namespace

bool parseTypeText(string const& text, eFieldType& type, unsigned long& length) {
    length = 0;
    string folded = text.lower();
    folded.deleteAll(L" \t");
    if (folded.starts_with(stringText)) {
        if (!parseStringLength(folded, length)) return false;
        type = eString;
        return true;
    }
    for (auto const& row : typeRows) {
        if (folded != row.text) continue;
        type = row.type;
        return true;
    }
    return false;
}

fieldTypeRow const& rowOf(eFieldType type) noexcept {
    for (auto const& row : typeRows) {
        if (row.type == type) return row;
    }
    return noType;
}

} // namespace zov::metamodel
