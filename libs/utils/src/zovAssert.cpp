#include "zovAssert.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <optional>
#include <string_view>

#include "zovHook.h"
#include "zovUtf8.h"

namespace zov {

namespace {

hook<void(string const&)>& assertHandler() {
    static neverDestroyed<hook<void(string const&)>> handler;
    return *handler;
}

// A report of at most 1,023 characters and the end mark, composed without allocating. What does not fit is cut.
class report {
public:
    report& operator<<(std::wstring_view text) noexcept {
        std::size_t const room = std::size(mText) - 1 - mSize;
        mSize += text.copy(mText + mSize, std::min(room, text.size()));
        return *this;
    }

    report& operator<<(char const* narrow) noexcept {
        for (; *narrow; ++narrow) {
            wchar_t const wide = static_cast<unsigned char>(*narrow);
            *this << std::wstring_view(&wide, 1);
        }
        return *this;
    }

    report& operator<<(int number) noexcept {
        char digits[16];
        std::snprintf(digits, sizeof digits, "%d", number);
        return *this << digits;
    }

    wchar_t const* text() noexcept {
        mText[mSize] = L'\0';
        return mText;
    }

private:
    wchar_t mText[1024];
    std::size_t mSize = 0;
};

// Allocates nothing, so that it also works when memory is gone.
void writeToStandardError(std::wstring_view text) noexcept {
    forEachUtf8Byte(text, [](char byte) { std::fputc(byte, stderr); });
    std::fputc('\n', stderr);
}

std::optional<string> tryCopy(std::wstring_view text) noexcept {
    try {
        return string(text);
    } catch (std::bad_alloc const&) {
        return std::nullopt;
    }
}

} // namespace

void assertMsg(wchar_t const* text, ...) {
    std::wstring_view const finished = text ? text : L"";
    if (auto const handler = assertHandler().get()) {
        if (auto const copy = tryCopy(finished)) {
            (*handler)(*copy);
            return;
        }
    }
    writeToStandardError(finished);
}

void setAssertHandler(std::function<void(string const&)> handler) {
    assertHandler().set(std::move(handler));
}

void assertionFailed(wchar_t const* condition, char const* file, int line) {
    report text;
    text << L"Assertion failed:\n" << std::wstring_view(condition) << L"\n\nFile: " << file << L"\nLine: " << line;
    assertMsg(text.text());
    throw false;
}

} // namespace zov
