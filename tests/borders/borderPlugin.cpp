// The plugin: everything here is compiled into a shared library of its own, with its own vtables and type
// information.
#include "borderPlugin.h"

namespace {

using zov::const_refPtr;
using zov::genericSet;
using zov::genericValue;
using zov::refObj;
using zov::refPtr;
using zov::scString;
using zov::string;
using zov::metamodel::classInfo;
using zov::metamodel::eDouble;
using zov::metamodel::eInt;
using zov::metamodel::fieldInfo;
using zov::metamodel::modelInfo;
using zov::tests::borderPlugin;
using zov::tests::countedObject;
using zov::tests::rangeCondition;

class pluginObject final : public countedObject {
public:
    using countedObject::countedObject;
    std::string origin() const override { return "plugin"; }
};

class pluginCondition final : public rangeCondition {
public:
    using rangeCondition::rangeCondition;
    std::string origin() const override { return "plugin"; }
    condition* clone() const override { return new pluginCondition(*this); }
};

refPtr<refObj> kept;

refPtr<countedObject> makeObject(std::atomic<int>& ended) {
    return new pluginObject(ended);
}

void keepObject(refPtr<refObj> object) {
    kept = std::move(object);
}

std::string originOfKept() {
    auto const object = zov::refPtrCast<countedObject>(kept);
    return object ? object->origin() : "unknown";
}

void dropObject() {
    kept = nullptr;
}

rangeCondition* makeCondition(int limit, std::atomic<int>& ended) {
    return new pluginCondition(limit, ended);
}

void deleteCondition(zov::conditions::condition* owned) {
    delete owned;
}

scString nameOf(wchar_t const* text) {
    return scString::createFrom(text);
}

void useEmptyPointer() {
    refPtr<classInfo>()->scName();
}

bool catchesFalseFrom(void (*failing)()) {
    try {
        failing();
    } catch (bool thrown) {
        return !thrown;
    }
    return false;
}

void takeOverReports(std::vector<std::string>& reports) {
    zov::setAssertHandler([&reports](string const& report) { reports.push_back(report.toUtf8()); });
}

class pluginLogger final : public zovlog::logger {
public:
    explicit pluginLogger(std::vector<std::string>& lines) : mLines(lines) {}
    bool isEnabled(zovlog::eLogLevel) const override { return true; }
    void log_trace(string const& message, char const*, long, char const*, refPtr<zovlog::iLogObj>) override {
        mLines.push_back("plugin: " + message.toUtf8());
    }

private:
    std::vector<std::string>& mLines;
};

void takeOverLog(std::vector<std::string>& lines) {
    refPtr<zovlog::logger> const mine = new pluginLogger(lines);
    zovlog::logManager::setProvider([mine](char const*) { return mine; });
}

void giveBackBoth() {
    zov::setAssertHandler({});
    zovlog::logManager::setProvider({});
}

bool fillClass(refPtr<classInfo> added) {
    added->createFieldInfo(L"width", eDouble, zov::tests::setMade(), L"");
    added->createFieldInfo(L"count", eInt, genericSet(), L"");
    return true;
}

refPtr<modelInfo> makeModel() {
    auto const model = modelInfo::createModelInfo(false);
    model->createClassInfo(L"Part", fillClass);
    return model;
}

int countFieldsOf(const_refPtr<modelInfo> model, wchar_t const* name) {
    auto const found = model->classInfo(name, false);
    return found ? static_cast<int>(found->countFields()) : -1;
}

void addFieldAlias(refPtr<fieldInfo> const& field) {
    field->addAliasname(L"alias");
}

constexpr borderPlugin functions{
    .makeSamples = zov::tests::samplesMade,
    .countSamplesRead = zov::tests::samplesRead,
    .makeSet = zov::tests::setMade,
    .countEntriesRead = zov::tests::entriesRead,
    .makeObject = makeObject,
    .keepObject = keepObject,
    .originOfKept = originOfKept,
    .dropObject = dropObject,
    .makeCondition = makeCondition,
    .deleteCondition = deleteCondition,
    .nameOf = nameOf,
    .useEmptyPointer = useEmptyPointer,
    .catchesFalseFrom = catchesFalseFrom,
    .takeOverReports = takeOverReports,
    .takeOverLog = takeOverLog,
    .giveBackBoth = giveBackBoth,
    .makeModel = makeModel,
    .fillClass = fillClass,
    .countFieldsOf = countFieldsOf,
    .addFieldAlias = addFieldAlias,
};

} // namespace

extern "C" __attribute__((visibility("default"))) borderPlugin const* zovBorderPlugin() {
    return &functions;
}
