// Values as texts: how each value type is spelled, and what spellings are read.
//
// Reading takes the whole text, allows blanks and tabs around it, and touches `out` only when it answers true.
// Writing produces a text that reads back as the same value. No text depends on the locale.
//
//   bool              true false, also 1 0, in any case; written true false
//   short int long    decimal digits with an optional sign
//   float double      decimal, with an optional sign, point and exponent; never inf, nan or hexadecimal. Written as
//                     the shortest text that reads back the same; what is not finite is not written
//   date              YYYY-MM-DD
//   time              HH:MM:SS, with a point and one to six decimals at will; written with six, and only when needed
//   timestamp         a date and a time with T or a blank between; written with T
//   binaryBuffer      two hexadecimal digits a byte, in any case; written in lower case. No blanks are allowed here
//
// Threads: pure functions. Fails: std::bad_alloc, with `out` as before.
#pragma once

#include <string_view>

#include "zovBinaryBuffer.h"
#include "zovDateTime.h"
#include "zovString.h"

namespace zov {

bool readText(std::wstring_view text, bool& out);
bool readText(std::wstring_view text, short& out);
bool readText(std::wstring_view text, int& out);
bool readText(std::wstring_view text, long& out);
bool readText(std::wstring_view text, float& out);
bool readText(std::wstring_view text, double& out);
bool readText(std::wstring_view text, date& out);
bool readText(std::wstring_view text, time& out);
bool readText(std::wstring_view text, timestamp& out);
bool readText(std::wstring_view text, binaryBuffer& out);

// False, with `out` as before, when the value has no text (a float or double that is not finite).
bool writeText(bool value, string& out);
bool writeText(short value, string& out);
bool writeText(int value, string& out);
bool writeText(long value, string& out);
bool writeText(float value, string& out);
bool writeText(double value, string& out);
bool writeText(date const& value, string& out);
bool writeText(time const& value, string& out);
bool writeText(timestamp const& value, string& out);
bool writeText(binaryBuffer const& value, string& out);

} // namespace zov
