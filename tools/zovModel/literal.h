// Literals of SQL, and what they are as values of a field.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <zovGenericValue.h>
#include <zovMdlFieldType.h>

namespace zovModel {

enum class literalKind { null, whole, real, text, blob };

struct literal {
    literalKind mKind;
    std::string mText; // UTF-8; of numbers and blobs the digits, with a minus in front of negative ones
};

// The literal that the whole expression is; none when it is another one, such as CURRENT_TIMESTAMP or 1 + 1. As in a
// DEFAULT clause, TRUE and FALSE are the numbers 1 and 0, and any other name stands for its own text.
std::optional<literal> literalOf(std::string_view expression);

// The literal as a value of the type, where it converts: null as the empty value in any type, a blob in binary fields
// only, and in custom fields every other literal as its text.
std::optional<zov::genericValue> valueOf(literal const& source, zov::metamodel::eFieldType type);

} // namespace zovModel
