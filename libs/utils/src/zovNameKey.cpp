#include "zovNameKey.h"

#include <type_traits>

#include "zovInternedText.h"

namespace zov {

nameKey::nameKey(std::wstring_view text, bool caseMatters) noexcept {
    auto const take = [this]<class Form>(Form const& form) {
        mHash = form.hash();
        if constexpr (std::is_same_v<Form, detail::narrowText>) {
            mPacked = form.packed().words;
            mSize = form.units.size();
        }
    };
    if (!text.empty()) caseMatters ? detail::withWritten(text, take) : detail::withLowered(text, take);
    if (mSize == 0) mName = caseMatters ? scString::find(text) : scString::findLowered(text);
}

nameKey::nameKey(scString name) noexcept : mName(name) {
    if (name.mText) mHash = detail::hashOf(*name.mText);
}

bool nameKey::isTextOf(scString name) const noexcept {
    if (mSize == 0) return mName == name;
    if (!name.mText) return false;
    auto const& known = name.mText->packed.words;
    std::uint64_t const differences =
        (known[0] ^ mPacked[0]) | (known[1] ^ mPacked[1]) | (known[2] ^ mPacked[2]) | (known[3] ^ mPacked[3]);
    return differences == 0 && name.mText->text.size() == mSize;
}

} // namespace zov
