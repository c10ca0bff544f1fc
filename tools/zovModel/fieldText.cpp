#include "fieldText.h"

#include <zovBinaryBuffer.h>
#include <zovFsEntry.h>
#include <zovGenericSet.h>

#include "displayText.h"

namespace zovModel {

using zov::genericValue;
using zov::string;
using zov::metamodel::fieldInfo;

namespace {

constexpr wchar_t const* cHasDefault = L"hasExplicitDefault";

bool isQuotedForPeople(genericValue const& value) {
    return value.valuePtr<string>() || value.valuePtr<zov::file>() || value.valuePtr<zov::directory>() ||
           value.valuePtr<zov::searchPath>();
}

} // namespace

string typeForPeople(fieldInfo const& field) {
    string const text = field.typeString().string();
    if (field.type() == zov::metamodel::eCustom) return L"custom " + quoted(text);
    unsigned long const length = lengthOf(field);
    return length > 0 ? string(text + string::sformat(L"(%lu)", length)) : text;
}

string flagsForPeople(fieldInfo const& field) {
    if (field.isMandatory() && field.isUnique()) return L"mandatory, unique";
    if (field.isMandatory()) return L"mandatory";
    return field.isUnique() ? L"unique" : L"";
}

unsigned long lengthOf(fieldInfo const& field) {
    unsigned long* length = nullptr;
    return field.typeAttribs().getValuePtr(L"length", length) ? *length : 0;
}

string semanticOf(fieldInfo const& field) {
    if (field.semantic() == zov::metamodel::eSemPrimkey) return L"key";
    return fieldInfo::semanticStringFromType(field.semantic()).string();
}

void giveDefault(fieldInfo& field, genericValue const& value) {
    field.setDefaultValue(value);
    field.setUserProperty(cHasDefault, genericValue(true), false);
}

std::optional<genericValue> explicitDefault(fieldInfo const& field) {
    genericValue isGiven;
    genericValue value;
    bool const isExplicit = field.getUserProperty(cHasDefault, isGiven, false) && field.getDefaultValue(value, false);
    return isExplicit ? std::optional(value) : std::nullopt;
}

string valueForPeople(genericValue const& value) {
    if (value.isEmpty()) return L"NULL";
    string text;
    value.getValue(text);
    if (value.valuePtr<zov::binaryBuffer>()) return L"x'" + text + L"'";
    return isQuotedForPeople(value) ? quoted(text) : text;
}

string originForPeople(fieldInfo const& field) {
    if (string const generated = field.autoExpression(); !generated.empty()) return L"computed " + printable(generated);
    if (auto const value = explicitDefault(field)) return L"default " + valueForPeople(*value);
    string const expression = field.defaultExpression();
    return expression.empty() ? string() : string(L"default expression " + printable(expression));
}

string nullForPeople(fieldInfo const& field) {
    genericValue const value = field.createNullValue();
    return value.isEmpty() ? string() : string(L"null " + valueForPeople(value));
}

} // namespace zovModel
