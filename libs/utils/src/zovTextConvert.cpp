#include "zovTextConvert.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>

namespace zov {

namespace {

std::wstring_view withoutBlanks(std::wstring_view text) noexcept {
    constexpr std::wstring_view blanks = L" \t";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    text.remove_suffix(text.size() - (text.find_last_not_of(blanks) + 1));
    return text;
}

constexpr bool isDigit(wchar_t unit) noexcept {
    return unit >= L'0' && unit <= L'9';
}

// The number's text in narrow units, without blanks and without a plus sign at the start; empty when it has a unit
// that neither is a digit nor stands in `marks`, or a sign that no digit or point follows.
std::string narrowNumber(std::wstring_view text, std::wstring_view marks) {
    text = withoutBlanks(text);
    std::wstring_view body = text;
    if (body.starts_with(L'+') || body.starts_with(L'-')) body.remove_prefix(1);
    if (text.starts_with(L'+')) text = body;
    bool const starts = !body.empty() && (isDigit(body.front()) || body.front() == L'.');
    auto const known = [marks](wchar_t unit) { return isDigit(unit) || marks.find(unit) != marks.npos; };
    if (!starts || !std::all_of(body.begin(), body.end(), known)) return {};
    std::string narrow(text.size(), '\0');
    std::transform(text.begin(), text.end(), narrow.begin(), [](wchar_t unit) { return static_cast<char>(unit); });
    return narrow;
}

template <class Number>
bool readNumber(std::wstring_view text, std::wstring_view marks, Number& out) {
    std::string const narrow = narrowNumber(text, marks);
    char const* const end = narrow.data() + narrow.size();
    Number value{};
    auto const read = std::from_chars(narrow.data(), end, value);
    if (read.ec != std::errc() || read.ptr != end) return false;
    out = value;
    return true;
}

template <class Whole>
bool readWhole(std::wstring_view text, Whole& out) {
    return readNumber(text, L"", out);
}

template <class Float>
bool readFloat(std::wstring_view text, Float& out) {
    return readNumber(text, L".eE+-", out);
}

template <class Number>
bool writeNumber(Number value, string& out) {
    char digits[64];
    out.assign(std::begin(digits), std::to_chars(std::begin(digits), std::end(digits), value).ptr);
    return true;
}

template <class Float>
bool writeFloat(Float value, string& out) {
    return std::isfinite(value) && writeNumber(value, out);
}

// Takes exactly `count` digits, or one unit, from the start of a text. Once something was missing, nothing is taken.
class scanner {
public:
    explicit scanner(std::wstring_view text) noexcept : mRest(text) {}

    unsigned digits(std::size_t count) noexcept {
        unsigned value = 0;
        for (std::size_t taken = 0; taken < count; ++taken) {
            if (!startsWithDigit()) return fail();
            value = value * 10 + static_cast<unsigned>(mRest.front() - L'0');
            mRest.remove_prefix(1);
        }
        return value;
    }

    void unit(wchar_t expected) noexcept {
        if (!take(expected)) fail();
    }

    bool take(wchar_t expected) noexcept {
        if (!mRest.starts_with(expected)) return false;
        mRest.remove_prefix(1);
        return true;
    }

    bool startsWithDigit() const noexcept { return !mRest.empty() && isDigit(mRest.front()); }

    // Whether all that was asked for was there, and nothing is left.
    bool isComplete() const noexcept { return mHolds && mRest.empty(); }

    unsigned fail() noexcept {
        mHolds = false;
        mRest = {};
        return 0;
    }

private:
    std::wstring_view mRest;
    bool mHolds = true;
};

// Microseconds from a point and one to six decimals, 0 when there is no point.
unsigned scanFraction(scanner& from) noexcept {
    if (!from.take(L'.')) return 0;
    unsigned fraction = from.digits(1) * 100'000;
    for (unsigned weight = 10'000; weight > 0 && from.startsWithDigit(); weight /= 10) {
        fraction += from.digits(1) * weight;
    }
    return fraction;
}

std::optional<date> scanDate(std::wstring_view text) {
    scanner from(text);
    unsigned const year = from.digits(4);
    from.unit(L'-');
    unsigned const month = from.digits(2);
    from.unit(L'-');
    unsigned const day = from.digits(2);
    if (!from.isComplete() || !date::exists(year, month, day)) return std::nullopt;
    return date(year, month, day);
}

std::optional<time> scanTime(std::wstring_view text) {
    scanner from(text);
    unsigned const hour = from.digits(2);
    from.unit(L':');
    unsigned const minute = from.digits(2);
    from.unit(L':');
    unsigned const second = from.digits(2);
    unsigned const fraction = scanFraction(from);
    if (!from.isComplete() || !time::exists(hour, minute, second, fraction)) return std::nullopt;
    return time(hour, minute, second, fraction);
}

std::optional<timestamp> scanTimestamp(std::wstring_view text) {
    constexpr std::size_t dateSize = 10;
    bool const divided = text.size() > dateSize && (text[dateSize] == L'T' || text[dateSize] == L' ');
    if (!divided) return std::nullopt;
    auto const day = scanDate(text.substr(0, dateSize));
    auto const clock = scanTime(text.substr(dateSize + 1));
    if (!day || !clock) return std::nullopt;
    return timestamp(*day, *clock);
}

template <class T>
bool keep(std::optional<T> const& value, T& out) noexcept {
    if (value) out = *value;
    return value.has_value();
}

string dateText(date const& value) {
    return string::sformat(L"%04u-%02u-%02u", value.year(), value.month(), value.day());
}

string timeText(time const& value) {
    string text = string::sformat(L"%02u:%02u:%02u", value.hour(), value.minute(), value.second());
    if (value.fraction() != 0) text += string::sformat(L".%06u", value.fraction());
    return text;
}

// The value of a hexadecimal digit, 16 for anything else.
unsigned hexValue(wchar_t unit) noexcept {
    if (isDigit(unit)) return static_cast<unsigned>(unit - L'0');
    if (unit >= L'a' && unit <= L'f') return static_cast<unsigned>(unit - L'a') + 10;
    if (unit >= L'A' && unit <= L'F') return static_cast<unsigned>(unit - L'A') + 10;
    return 16;
}

} // namespace

bool readText(std::wstring_view text, bool& out) {
    string const word = string(withoutBlanks(text)).lower();
    bool const isTrue = word == L"true" || word == L"1";
    if (!isTrue && word != L"false" && word != L"0") return false;
    out = isTrue;
    return true;
}

bool readText(std::wstring_view text, short& out) {
    return readWhole(text, out);
}
bool readText(std::wstring_view text, int& out) {
    return readWhole(text, out);
}
bool readText(std::wstring_view text, long& out) {
    return readWhole(text, out);
}
bool readText(std::wstring_view text, float& out) {
    return readFloat(text, out);
}
bool readText(std::wstring_view text, double& out) {
    return readFloat(text, out);
}
bool readText(std::wstring_view text, date& out) {
    return keep(scanDate(withoutBlanks(text)), out);
}
bool readText(std::wstring_view text, time& out) {
    return keep(scanTime(withoutBlanks(text)), out);
}
bool readText(std::wstring_view text, timestamp& out) {
    return keep(scanTimestamp(withoutBlanks(text)), out);
}

bool readText(std::wstring_view text, binaryBuffer& out) {
    if (text.size() % 2 != 0) return false;
    binaryBuffer bytes(text.size() / 2);
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        unsigned const high = hexValue(text[2 * at]);
        unsigned const low = hexValue(text[2 * at + 1]);
        if (high > 15 || low > 15) return false;
        bytes.data()[at] = static_cast<unsigned char>(high << 4 | low);
    }
    out = std::move(bytes);
    return true;
}

bool writeText(bool value, string& out) {
    out = value ? L"true" : L"false";
    return true;
}

bool writeText(short value, string& out) {
    return writeNumber(value, out);
}
bool writeText(int value, string& out) {
    return writeNumber(value, out);
}
bool writeText(long value, string& out) {
    return writeNumber(value, out);
}
bool writeText(float value, string& out) {
    return writeFloat(value, out);
}
bool writeText(double value, string& out) {
    return writeFloat(value, out);
}

bool writeText(date const& value, string& out) {
    out = dateText(value);
    return true;
}

bool writeText(time const& value, string& out) {
    out = timeText(value);
    return true;
}

bool writeText(timestamp const& value, string& out) {
    out = dateText(value.date()) + L'T' + timeText(value.time());
    return true;
}

bool writeText(binaryBuffer const& value, string& out) {
    constexpr wchar_t digits[] = L"0123456789abcdef";
    string text;
    text.reserve(value.size() * 2);
    for (std::size_t at = 0; at < value.size(); ++at) {
        text += digits[value.data()[at] >> 4];
        text += digits[value.data()[at] & 0xF];
    }
    out = std::move(text);
    return true;
}

} // namespace zov
