// A name as a hash table of names compares it: for tables whose keys are scStrings and whose questions are texts.
//
//     nameKey const filed(scString::createFrom(L"width"));   // what the table goes by when it files a name
//     nameKey const asked(L"Width", false);                  // and when it is asked for a text in any letter case
//     asked.hash() == filed.hash();                          // equal, since the lowered text is that of the name
//     asked.isTextOf(scString::createFrom(L"width"));        // true: the table's entry has the text asked for
//
// A table that is asked so need not find the handle of the text first. Nothing is interned or allocated. Where it keeps
// a filedName for each handle, it need not look at the names themselves either.
//
// A text of at most 31 units, all below 256 once they are folded, is known by its key whenever its name is interned.
// Of any other text a key knows no more than the name that there was when the key was made: if there was none, it is
// nobody's key for good, also once that text is interned. So make a key for a question, and ask with it at once.
//
// Threads: a value; any thread may call anything. Fails: never.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "zovInternedName.h"
#include "zovScString.h"
#include "zovUtilsApi.h"

namespace zov {

// A name's handle with what questions are compared by; 48 bytes.
class ZOV_UTILS_API filedName {
public:
    explicit filedName(scString name) noexcept;

    scString handle() const noexcept { return mName; }

private:
    friend class nameKey;

    detail::packedBytes mPacked; // those of no short text of small units, where the name is none
    scString mName;
    std::uint32_t mSize = 0;
};

class ZOV_UTILS_API nameKey {
public:
    // The key of a text: as it is written, or, unless case matters, of its lower-case form.
    nameKey(std::wstring_view text, bool caseMatters) noexcept;

    // The key under which a name is filed.
    explicit nameKey(scString name) noexcept;

    // Equal for equal texts; well spread over all bits but the highest, which tells few texts apart. May differ between
    // processes and platforms.
    std::uint64_t hash() const noexcept { return mHash; }

    // Whether this is the key of exactly the text of `name`, as far as it was known (see above).
    bool isTextOf(scString name) const noexcept {
        if (mSize == 0) return mName == name;
        return name.mText && mPacked == name.mText->packed && mSize == name.mText->text.size();
    }
    bool isTextOf(filedName const& name) const noexcept {
        return mSize == 0 ? mName == name.mName : mPacked == name.mPacked && mSize == name.mSize;
    }

private:
    // A short text of small units lies here in packed form; of any other, and of the empty one, the handle is known.
    detail::packedBytes mPacked;
    std::size_t mSize = 0; // of a packed text; else 0
    std::uint64_t mHash = 0;
    std::optional<scString> mName; // empty as well when no such text is interned
};

} // namespace zov
