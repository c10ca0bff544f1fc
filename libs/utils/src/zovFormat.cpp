#include "zovFormat.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

namespace zov {

namespace {

enum class argumentLength { none, hh, h, l, ll, j, z, t, longDouble };

// One conversion of a format, such as %-8.3ls.
struct conversion {
    bool mLeft = false;
    bool mPlus = false;
    bool mBlank = false;
    bool mAlternate = false;
    bool mZero = false;
    int mWidth = 0;
    int mPrecision = -1;
    argumentLength mLength = argumentLength::none;
    wchar_t mLetter = 0;
};

// Widths and precisions beyond this are taken for a mistake.
constexpr int longestField = 1'000'000;

// Writes one text from a format and its arguments. Each step answers false on a format that is none.
class formatter {
public:
    formatter(wchar_t const* format, formatArguments& values) noexcept : mAt(format), mValues(values) {}

    bool write();
    string take() noexcept { return std::move(mOut); }

private:
    void readFlags(conversion& field) noexcept;
    bool readField(int& size) noexcept;
    bool readConversion(conversion& field) noexcept;
    argumentLength readLength() noexcept;

    bool writeConversion(conversion const& field);
    void writePadded(conversion const& field, std::wstring_view text);
    void writeText(conversion const& field);
    void writeUnit(conversion const& field);
    void writeSigned(conversion const& field);
    void writeUnsigned(conversion const& field, int base);
    void writePointer(conversion const& field);
    void writeDigits(conversion const& field, std::string digits, std::string prefix);
    void writeNumber(conversion const& field, std::string_view prefix, std::string_view body, bool zeroFill);
    template <class Float>
    void writeFloat(conversion const& field, Float value);

    std::intmax_t nextSigned(argumentLength length) noexcept;
    std::uintmax_t nextUnsigned(argumentLength length) noexcept;

    wchar_t const* mAt;
    formatArguments& mValues;
    string mOut;
};

bool formatter::write() {
    while (*mAt != 0) {
        wchar_t const* const plain = mAt;
        while (*mAt != 0 && *mAt != L'%')
            ++mAt;
        mOut.append(plain, mAt);
        if (*mAt == 0) break;
        ++mAt;
        conversion field;
        if (!readConversion(field) || !writeConversion(field)) return false;
    }
    return true;
}

void formatter::readFlags(conversion& field) noexcept {
    for (;; ++mAt) {
        switch (*mAt) {
        case L'-': field.mLeft = true; break;
        case L'+': field.mPlus = true; break;
        case L' ': field.mBlank = true; break;
        case L'#': field.mAlternate = true; break;
        case L'0': field.mZero = true; break;
        default: return;
        }
    }
}

// Reads a width or a precision, digits or *, into `size`; no digit at all leaves it alone.
bool formatter::readField(int& size) noexcept {
    if (*mAt == L'*') {
        ++mAt;
        size = mValues.next<int>();
        return size >= -longestField && size <= longestField;
    }
    for (bool first = true; isDigit(*mAt); first = false, ++mAt) {
        size = (first ? 0 : size * 10) + static_cast<int>(*mAt - L'0');
        if (size > longestField) return false;
    }
    return true;
}

argumentLength formatter::readLength() noexcept {
    auto const doubled = [this](wchar_t letter) { return mAt[0] == letter && mAt[1] == letter; };
    auto const found = [this](argumentLength length, int units) { return mAt += units, length; };
    if (doubled(L'h')) return found(argumentLength::hh, 2);
    if (doubled(L'l')) return found(argumentLength::ll, 2);
    switch (*mAt) {
    case L'h': return found(argumentLength::h, 1);
    case L'l': return found(argumentLength::l, 1);
    case L'j': return found(argumentLength::j, 1);
    case L'z': return found(argumentLength::z, 1);
    case L't': return found(argumentLength::t, 1);
    case L'L': return found(argumentLength::longDouble, 1);
    default: return argumentLength::none;
    }
}

bool formatter::readConversion(conversion& field) noexcept {
    readFlags(field);
    if (!readField(field.mWidth)) return false;
    if (field.mWidth < 0) {
        field.mLeft = true;
        field.mWidth = -field.mWidth;
    }
    if (*mAt == L'.') {
        ++mAt;
        field.mPrecision = 0;
        if (!readField(field.mPrecision)) return false;
        field.mPrecision = std::max(field.mPrecision, -1);
    }
    field.mLength = readLength();
    field.mLetter = *mAt;
    if (field.mLetter == 0) return false;
    ++mAt;
    return true;
}

bool formatter::writeConversion(conversion const& field) {
    switch (field.mLetter) {
    case L'%': mOut += L'%'; return true;
    case L's': writeText(field); return true;
    case L'c': writeUnit(field); return true;
    case L'd':
    case L'i': writeSigned(field); return true;
    case L'u': writeUnsigned(field, 10); return true;
    case L'o': writeUnsigned(field, 8); return true;
    case L'x':
    case L'X': writeUnsigned(field, 16); return true;
    case L'p': writePointer(field); return true;
    case L'f':
    case L'F':
    case L'e':
    case L'E':
    case L'g':
    case L'G':
    case L'a':
    case L'A':
        if (field.mLength == argumentLength::longDouble) {
            writeFloat(field, mValues.next<long double>());
        } else {
            writeFloat(field, mValues.next<double>());
        }
        return true;
    default: return false;
    }
}

void formatter::writePadded(conversion const& field, std::wstring_view text) {
    auto const width = static_cast<std::size_t>(field.mWidth);
    std::size_t const padding = width > text.size() ? width - text.size() : 0;
    if (!field.mLeft) mOut.append(padding, L' ');
    mOut.append(text);
    if (field.mLeft) mOut.append(padding, L' ');
}

// The units of a text whose end mark need not be there when a precision bounds it.
template <class Unit>
std::basic_string_view<Unit> boundedText(Unit const* text, int precision) noexcept {
    if (precision < 0) return std::basic_string_view<Unit>(text);
    std::size_t size = 0;
    while (size < static_cast<std::size_t>(precision) && text[size] != Unit{0})
        ++size;
    return std::basic_string_view<Unit>(text, size);
}

void formatter::writeText(conversion const& field) {
    if (field.mLength == argumentLength::h) {
        char const* const narrow = mValues.next<char const*>();
        string const wide = string::fromUtf8(boundedText(narrow ? narrow : "(null)", field.mPrecision));
        return writePadded(field, wide);
    }
    wchar_t const* const text = mValues.next<wchar_t const*>();
    writePadded(field, boundedText(text ? text : L"(null)", field.mPrecision));
}

void formatter::writeUnit(conversion const& field) {
    auto const unit = static_cast<wchar_t>(mValues.next<int>());
    writePadded(field, std::wstring_view(&unit, 1));
}

std::intmax_t formatter::nextSigned(argumentLength length) noexcept {
    switch (length) {
    case argumentLength::hh: return static_cast<signed char>(mValues.next<int>());
    case argumentLength::h: return static_cast<short>(mValues.next<int>());
    case argumentLength::l: return mValues.next<long>();
    case argumentLength::ll: return mValues.next<long long>();
    case argumentLength::j: return mValues.next<std::intmax_t>();
    case argumentLength::z: return mValues.next<std::make_signed_t<std::size_t>>();
    case argumentLength::t: return mValues.next<std::ptrdiff_t>();
    default: return mValues.next<int>();
    }
}

std::uintmax_t formatter::nextUnsigned(argumentLength length) noexcept {
    switch (length) {
    case argumentLength::hh: return static_cast<unsigned char>(mValues.next<unsigned>());
    case argumentLength::h: return static_cast<unsigned short>(mValues.next<unsigned>());
    case argumentLength::l: return mValues.next<unsigned long>();
    case argumentLength::ll: return mValues.next<unsigned long long>();
    case argumentLength::j: return mValues.next<std::uintmax_t>();
    case argumentLength::z: return mValues.next<std::size_t>();
    case argumentLength::t: return mValues.next<std::make_unsigned_t<std::ptrdiff_t>>();
    default: return mValues.next<unsigned>();
    }
}

std::string digitsOf(std::uintmax_t value, int base) {
    char digits[sizeof(value) * CHAR_BIT];
    return std::string(digits, std::to_chars(std::begin(digits), std::end(digits), value, base).ptr);
}

void raise(std::string& text) noexcept {
    for (char& letter : text) {
        if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    }
}

// What stands before the digits of a number with a sign.
std::string_view signOf(conversion const& field, bool negative) noexcept {
    if (negative) return "-";
    if (field.mPlus) return "+";
    return field.mBlank ? " " : "";
}

void formatter::writeSigned(conversion const& field) {
    std::intmax_t const value = nextSigned(field.mLength);
    auto const bits = static_cast<std::uintmax_t>(value);
    writeDigits(field, digitsOf(value < 0 ? 0 - bits : bits, 10), std::string(signOf(field, value < 0)));
}

void formatter::writeUnsigned(conversion const& field, int base) {
    std::uintmax_t const value = nextUnsigned(field.mLength);
    std::string digits = digitsOf(value, base);
    std::string prefix = field.mAlternate && base == 16 && value != 0 ? "0x" : "";
    if (field.mLetter == L'X') {
        raise(digits);
        raise(prefix);
    }
    writeDigits(field, std::move(digits), std::move(prefix));
}

void formatter::writePointer(conversion const& field) {
    auto const value = reinterpret_cast<std::uintptr_t>(mValues.next<void*>());
    writeDigits(field, digitsOf(value, 16), "0x");
}

// Writes a whole number: its precision is the least number of digits, and switches the flag 0 off.
void formatter::writeDigits(conversion const& field, std::string digits, std::string prefix) {
    if (field.mPrecision == 0 && digits == "0") digits.clear();
    std::size_t least = field.mPrecision < 0 ? 1 : static_cast<std::size_t>(field.mPrecision);
    bool const octalMark = field.mLetter == L'o' && field.mAlternate && (digits.empty() || digits.front() != '0');
    if (octalMark) least = std::max(least, digits.size() + 1);
    if (least > digits.size()) digits.insert(0, least - digits.size(), '0');
    writeNumber(field, prefix, digits, field.mPrecision < 0);
}

// Writes a number from its sign or prefix and its digits; zeros go between the two.
void formatter::writeNumber(conversion const& field, std::string_view prefix, std::string_view body, bool zeroFill) {
    std::wstring text(prefix.begin(), prefix.end());
    std::size_t const size = prefix.size() + body.size();
    auto const width = static_cast<std::size_t>(field.mWidth);
    if (field.mZero && zeroFill && !field.mLeft && width > size) text.append(width - size, L'0');
    text.append(body.begin(), body.end());
    writePadded(field, text);
}

template <class Float>
std::string floatText(Float value, std::chars_format form, int precision) {
    // Digits before the point, sign, point and exponent take no more than this.
    std::string text(static_cast<std::size_t>(std::numeric_limits<Float>::max_exponent10 + precision) + 32, '\0');
    auto const end = precision < 0 ? std::to_chars(text.data(), text.data() + text.size(), value, form)
                                   : std::to_chars(text.data(), text.data() + text.size(), value, form, precision);
    text.resize(static_cast<std::size_t>(end.ptr - text.data()));
    return text;
}

// %#g: as %g, but with all its digits.
template <class Float>
std::string generalText(Float value, int precision) {
    int const digits = std::max(precision, 1);
    std::string scientific = floatText(value, std::chars_format::scientific, digits - 1);
    int exponent = 0;
    std::string_view const tail = std::string_view(scientific).substr(scientific.find('e') + 1);
    std::size_t const skip = tail.starts_with('+') ? 1 : 0;
    std::from_chars(tail.data() + skip, tail.data() + tail.size(), exponent);
    if (exponent < -4 || exponent >= digits) return scientific;
    return floatText(value, std::chars_format::fixed, digits - 1 - exponent);
}

// The digits of a finite number that is not negative.
template <class Float>
std::string finiteText(conversion const& field, Float value) {
    int const precision = field.mPrecision < 0 ? 6 : field.mPrecision;
    std::string text;
    switch (field.mLetter) {
    case L'f':
    case L'F': text = floatText(value, std::chars_format::fixed, precision); break;
    case L'e':
    case L'E': text = floatText(value, std::chars_format::scientific, precision); break;
    case L'g':
    case L'G':
        text =
            field.mAlternate ? generalText(value, precision) : floatText(value, std::chars_format::general, precision);
        break;
    default: text = floatText(value, std::chars_format::hex, field.mPrecision); break;
    }
    if (field.mAlternate && text.find('.') == std::string::npos) {
        text.insert(std::min(text.find_first_of("ep"), text.size()), 1, '.');
    }
    return text;
}

template <class Float>
void formatter::writeFloat(conversion const& field, Float value) {
    std::string prefix(signOf(field, std::signbit(value)));
    bool const finite = std::isfinite(value);
    bool const hexadecimal = field.mLetter == L'a' || field.mLetter == L'A';
    std::string body = finite ? finiteText(field, std::fabs(value)) : std::isnan(value) ? "nan" : "inf";
    if (finite && hexadecimal) prefix += "0x";
    if (field.mLetter >= L'A' && field.mLetter <= L'Z') {
        raise(prefix);
        raise(body);
    }
    writeNumber(field, prefix, body, finite);
}

} // namespace

string formatText(wchar_t const* format, formatArguments& values) {
    formatter writer(format, values);
    return writer.write() ? writer.take() : string();
}

} // namespace zov
