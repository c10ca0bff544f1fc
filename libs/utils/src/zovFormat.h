// The formatter behind string::sformat: printf's formats, the same on every platform and in every locale. The C
// runtimes differ on what %s takes of a wide format and on what a long result returns, and follow the locale.
#pragma once

#include <cstdarg>

#include "zovString.h"

namespace zov {

// Whether the unit is one of the decimal digits 0 to 9; no other script's digits count.
constexpr bool isDigit(wchar_t unit) noexcept {
    return unit >= L'0' && unit <= L'9';
}

// The arguments of a variadic call, handed on by reference.
class formatArguments {
public:
    explicit formatArguments(std::va_list& list) noexcept { va_copy(mList, list); }
    formatArguments(formatArguments const&) = delete;
    formatArguments& operator=(formatArguments const&) = delete;
    ~formatArguments() { va_end(mList); }

    template <class T>
    T next() noexcept {
        return va_arg(mList, T);
    }

private:
    std::va_list mList;
};

// The formatted text; the empty text for a format that is none.
string formatText(wchar_t const* format, formatArguments& values);

} // namespace zov
