// The keys of a field's definitions. Hosts see what stands under them only through the field's members.
#pragma once

namespace zov::metamodel::definitions {

inline constexpr wchar_t const* defaultValue = L"DefaultValue";
inline constexpr wchar_t const* defaultExpression = L"Default";
inline constexpr wchar_t const* constantExpression = L"Constant";
inline constexpr wchar_t const* autoExpression = L"Auto";
inline constexpr wchar_t const* valueCondition = L"Condition";
inline constexpr wchar_t const* equality = L"EqValue";

} // namespace zov::metamodel::definitions
