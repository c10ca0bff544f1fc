#include "jsonReport.h"

#include <nlohmann/json.hpp>

#include "fieldText.h"

namespace zovModel {

using json = nlohmann::ordered_json;
using zov::genericValue;
using zov::string;

namespace {

using classPtr = databaseModel::classPtr;
using fieldPtr = databaseModel::fieldPtr;
using relationPtr = databaseModel::relationPtr;

json arrayOf(std::vector<string> const& texts) {
    json result = json::array();
    for (string const& text : texts)
        result.push_back(text.toUtf8());
    return result;
}

// Bools and numbers as such, the empty value as null, everything else as text.
json jsonOf(genericValue const& value) {
    if (value.isEmpty()) return nullptr;
    if (auto const* flag = value.valuePtr<bool>()) return *flag;
    if (auto const* whole = value.valuePtr<long>()) return *whole;
    if (auto const* real = value.valuePtr<double>()) return *real;
    string text;
    value.getValue(text);
    return text.toUtf8();
}

json entryOf(fieldPtr const& field) {
    return {{"name", field->scName().string().toUtf8()},
            {"qualifiedName", field->qualifiedName().toUtf8()},
            {"label", field->label().toUtf8()},
            {"type", field->typeString().string().toUtf8()},
            {"length", lengthOf(*field)},
            {"mandatory", field->isMandatory()},
            {"unique", field->isUnique()},
            {"semantic", semanticOf(*field).toUtf8()},
            {"default", jsonOf(explicitDefault(*field).value_or(genericValue()))},
            {"defaultExpression", field->defaultExpression().toUtf8()},
            {"autoExpression", field->autoExpression().toUtf8()},
            {"null", jsonOf(field->createNullValue())}};
}

json entryOf(databaseModel const& source, classPtr const& subject) {
    std::vector<string> aliases;
    subject->getAliasnames(aliases);
    std::vector<string> bases;
    for (classPtr const& base : databaseModel::baseClasses(subject))
        bases.push_back(base->scName().string());
    json fields = json::array();
    for (fieldPtr const& field : source.fields(subject))
        fields.push_back(entryOf(field));
    return {{"name", subject->scName().string().toUtf8()},
            {"label", subject->label().toUtf8()},
            {"aliases", arrayOf(aliases)},
            {"abstract", subject->isAbstract()},
            {"baseClasses", arrayOf(bases)},
            {"fields", fields},
            {"idFields", arrayOf(source.idFieldNames(subject))}};
}

// In the database's spelling, in which no two fields are the same.
std::string spelled(fieldPtr const& field) {
    return field->classInfo()->label().toUtf8() + "." + field->label().toUtf8();
}

json entryOf(relationPtr const& relation) {
    json pairs = json::array();
    auto const add = [&pairs](fieldPtr const& from, fieldPtr const& to) {
        pairs.push_back({spelled(from), spelled(to)});
        return true;
    };
    relation->forEachFieldPair(add, true);
    return {{"name", relation->scName().string().toUtf8()},
            {"reverseName", relation->scReverseName().string().toUtf8()},
            {"type", zov::metamodel::relationTypeString(relation->type()).string().toUtf8()},
            {"from", relation->fromClassInfo()->label().toUtf8()},
            {"to", relation->toClassInfo()->label().toUtf8()},
            {"pairs", pairs}};
}

} // namespace

std::string jsonReport(databaseModel const& source) {
    json classes = json::array();
    json relations = json::array();
    for (classPtr const& subject : source.classes()) {
        classes.push_back(entryOf(source, subject));
        for (relationPtr const& relation : source.relationsFrom(subject))
            relations.push_back(entryOf(relation));
    }
    return json{{"classes", classes}, {"relations", relations}}.dump(2) + "\n";
}

} // namespace zovModel
