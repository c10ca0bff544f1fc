#include "zovNameKey.h"

#include <type_traits>

#include "zovInternedText.h"

namespace zov {

filedName::filedName(scString name) noexcept : mName(name) {
    if (!name.mText) return;
    mPacked = name.mText->packed;
    mSize = static_cast<std::uint32_t>(name.mText->text.size());
}

nameKey::nameKey(std::wstring_view text, bool caseMatters) noexcept {
    auto const take = [this]<class Form>(Form const& form) {
        mHash = form.hash();
        if constexpr (std::is_same_v<Form, detail::narrowText>) {
            mPacked = form.packed();
            mSize = form.units.size();
        }
    };
    if (!text.empty()) caseMatters ? detail::withWritten(text, take) : detail::withLowered(text, take);
    if (mSize == 0) mName = caseMatters ? scString::find(text) : scString::findLowered(text);
}

nameKey::nameKey(scString name) noexcept : mName(name) {
    if (name.mText) mHash = detail::hashOf(*name.mText);
}

} // namespace zov
