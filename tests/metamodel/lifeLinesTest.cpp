// The lines by which models, classes and fields tell the log that they come and go.
#include "zovLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "modelFixture.h"

namespace zov::metamodel {
namespace {

using tests::addField;
using tests::events;
using tests::ownClass;
using tests::ownModel;
using zov::tests::eventLog;
using zov::tests::throwsFalse;

char const* const modelSource = "libs/metamodel/src/zovMdlModelInfo.cpp";
char const* const classSource = "libs/metamodel/src/zovMdlClassInfo.cpp";
char const* const fieldSource = "libs/metamodel/src/zovMdlFieldInfo.cpp";

// Collects whole lines while it lives.
class lineLog {
public:
    lineLog() {
        zovlog::logManager::setSink([this](zovlog::logRecord const& line) { lines.push_back(line); });
        zovlog::logManager::setLevel(zovlog::eLogTrace);
    }
    ~lineLog() {
        zovlog::logManager::setLevel(zovlog::eLogOff);
        zovlog::logManager::setSink({});
    }
    lineLog(lineLog const&) = delete;
    lineLog& operator=(lineLog const&) = delete;

    std::vector<zovlog::logRecord> lines;
};

void expectLine(zovlog::logRecord const& line, zovlog::eLogLevel level, std::string const& function,
                std::string const& message, std::string const& file) {
    EXPECT_EQ(line.level, level);
    EXPECT_EQ(line.loggerName, function);
    EXPECT_EQ(line.function, function);
    EXPECT_EQ(line.message.toUtf8(), message);
    EXPECT_EQ(line.file, file);
    EXPECT_GT(line.line, 0);
}

// While it lives, loggers with these names are missing, or all when there are no names.
class missingLoggers {
public:
    explicit missingLoggers(std::set<std::string> functions = {}) {
        zovlog::logManager::setProvider([functions = std::move(functions)](char const* name) {
            bool const missing = functions.empty() || functions.contains(name);
            return missing ? refPtr<zovlog::logger>() : refPtr<zovlog::logger>(new zovlog::logger(name));
        });
    }
    ~missingLoggers() { zovlog::logManager::setProvider({}); }
    missingLoggers(missingLoggers const&) = delete;
    missingLoggers& operator=(missingLoggers const&) = delete;
};

constexpr char const* modelMade = "zov::metamodel::modelInfo::modelInfo";
constexpr char const* modelEnded = "zov::metamodel::modelInfo::~modelInfo";
constexpr char const* classMade = "zov::metamodel::classInfo::classInfo";
constexpr char const* classEnded = "zov::metamodel::classInfo::~classInfo";
constexpr char const* fieldMade = "zov::metamodel::fieldInfo::fieldInfo";
constexpr char const* fieldEnded = "zov::metamodel::fieldInfo::~fieldInfo";

// behaviour: LL-01
TEST(lifeLines, tellOfAModel) {
    lineLog log;
    auto model = modelInfo::createModelInfo(true);
    model.reset();
    ASSERT_EQ(log.lines.size(), 2u);
    expectLine(log.lines[0], zovlog::eLogTrace, modelMade, "modelInfo created", modelSource);
    expectLine(log.lines[1], zovlog::eLogTrace, modelEnded, "modelInfo released", modelSource);
}

// behaviour: LL-02
TEST(lifeLines, tellOfAClassByNameWhenItComesAndByLabelWhenItGoes) {
    lineLog log;
    auto part = classInfo::createClassInfo(L"My PART");
    part->setLabel(L"A \"part\" \u00E4 %s");
    part.reset();
    ASSERT_EQ(log.lines.size(), 2u);
    expectLine(log.lines[0], zovlog::eLogTrace, classMade, "classInfo created: \"My PART\"", classSource);
    expectLine(log.lines[1], zovlog::eLogTrace, classEnded, "classInfo released: \"A \"part\" \xC3\xA4 %s\"",
               classSource);
}

// behaviour: LL-02
TEST(lifeLines, showEmptyNamesAndLabelsOfClasses) {
    eventLog log;
    classInfo::createClassInfo(L"");
    EXPECT_EQ(log.take(), (events{"trace classInfo created: \"\"", "trace classInfo released: \"\""}));
}

// behaviour: LL-03, FR-04
TEST(lifeLines, tellOfAFieldByItsLabelWhichIsEmptyWhenItComes) {
    ownClass const part(L"part");
    lineLog log;
    auto width = addField(part, L"width");
    width->setLabel(L"The Width");
    part->tearDown();
    width.reset();
    ASSERT_EQ(log.lines.size(), 2u);
    expectLine(log.lines[0], zovlog::eLogTrace, fieldMade, "fieldInfo created: \"\"", fieldSource);
    EXPECT_EQ(log.lines[0].line, 119);
    expectLine(log.lines[1], zovlog::eLogDebug, fieldEnded, "fieldInfo released: \"The Width\"", fieldSource);
    EXPECT_EQ(log.lines[1].line, 169);
}

// behaviour: LL-03, FR-04
TEST(lifeLines, tellOfAStandingFieldFromAnotherLine) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    addField(base, L"width")->setLabel(L"The Width");
    lineLog log;
    part->createFieldInfo(base.pointer(), L"width");
    ASSERT_EQ(log.lines.size(), 1u);
    expectLine(log.lines[0], zovlog::eLogTrace, fieldMade, "fieldInfo created: \"\"", fieldSource);
    EXPECT_EQ(log.lines[0].line, 129);
}

// behaviour: LL-03, FR-04
TEST(lifeLines, showNoLabelWhenALabelledFieldIsCopied) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    auto const width = addField(from, L"width");
    width->setLabel(L"The Width");
    lineLog log;
    to->copyFieldInfoFrom(width, nullptr);
    ASSERT_EQ(log.lines.size(), 1u);
    expectLine(log.lines[0], zovlog::eLogTrace, fieldMade, "fieldInfo created: \"\"", fieldSource);
    EXPECT_EQ(log.lines[0].line, 119);
}

// behaviour: LL-04
TEST(lifeLines, areLimitedByTheLevel) {
    for (auto const level : {zovlog::eLogOff, zovlog::eLogInfo, zovlog::eLogDebug}) {
        eventLog log(level);
        {
            ownClass const part(L"part");
            addField(part, L"width");
        }
        EXPECT_EQ(log.take(), level == zovlog::eLogDebug ? events{"debug fieldInfo released: \"\""} : events());
    }
}

// behaviour: LL-05
TEST(lifeLines, followTheOrderOfBuilding) {
    eventLog log;
    ownModel const model;
    auto const part = model->createClassInfo(L"Part", [](refPtr<classInfo> const& offered) {
        addField(offered, L"width");
        return true;
    });
    part->addBaseClass(model->getOrCreateClassInfo(L"Base"));
    addField(part, L"WIDTH");
    addField(part, L"height")->setSemantic(eSemPrimkey, genericSet(), L"");
    part->idInfo();
    model->getOrCreateClassInfo(L"Part");
    EXPECT_EQ(log.take(),
              (events{"trace modelInfo created", "trace classInfo created: \"Part\"", "trace fieldInfo created: \"\"",
                      "trace classInfo created: \"Base\"", "trace fieldInfo created: \"\""}));
}

// behaviour: LL-06
TEST(lifeLines, followTheOrderOfRefusing) {
    ownModel const model;
    eventLog log;
    model->createClassInfo(L"Part", [](refPtr<classInfo> const& offered) {
        offered->setLabel(L"A part");
        addField(offered, L"width")->setLabel(L"The width");
        return false;
    });
    EXPECT_EQ(log.take(), (events{"trace classInfo created: \"Part\"", "trace fieldInfo created: \"\"",
                                  "debug fieldInfo released: \"The width\"", "trace classInfo released: \"A part\""}));
}

// behaviour: LL-07
TEST(lifeLines, followTheOrderOfReplacing) {
    ownModel const model(true);
    model->createClassInfo(L"Part")->setLabel(L"The first");
    eventLog log;
    model->createClassInfo(L"Part", [&](refPtr<classInfo> const& offered) {
        offered->setLabel(L"The second");
        EXPECT_EQ(log.take(), events{"trace classInfo created: \"Part\""});
        return true;
    });
    EXPECT_EQ(log.take(), events{"trace classInfo released: \"The first\""});
}

// behaviour: LL-07
TEST(lifeLines, tellOfFieldsThatAreMadeInVain) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    auto const width = addField(base, L"width");
    width->setLabel(L"The width");
    part->createFieldInfo(base.pointer(), L"width");
    eventLog log;
    part->createFieldInfo(base.pointer(), L"width");
    EXPECT_EQ(log.take(), (events{"trace fieldInfo created: \"\"", "debug fieldInfo released: \"\""}));
    part->copyFieldInfoFrom(width, nullptr);
    EXPECT_EQ(log.take(), (events{"trace fieldInfo created: \"\"", "debug fieldInfo released: \"The width\""}));
}

// behaviour: LL-08
TEST(lifeLines, followTheOrderOfTearingDown) {
    auto model = modelInfo::createModelInfo(false);
    auto const make = [](refPtr<classInfo> const& offered) {
        offered->setLabel(L"A part");
        addField(offered, L"width")->setLabel(L"The width");
        return true;
    };
    model->createClassInfo(L"part", make);
    eventLog log;
    model->tearDown();
    EXPECT_EQ(log.take(), (events{"debug fieldInfo released: \"The width\"", "trace classInfo released: \"A part\""}));
    model.reset();
    EXPECT_EQ(log.take(), events{"trace modelInfo released"});
}

// behaviour: LL-08
TEST(lifeLines, putTheModelBeforeItsClasses) {
    eventLog log;
    auto model = modelInfo::createModelInfo(false);
    model->createClassInfo(L"part")->setLabel(L"A part");
    log.take();
    model.reset();
    EXPECT_EQ(log.take(), (events{"trace modelInfo released", "trace classInfo released: \"A part\""}));
}

// A class with this label and these bases.
refPtr<classInfo> labelled(wchar_t const* label, std::vector<refPtr<classInfo>> const& bases = {}) {
    auto const made = classInfo::createClassInfo(label);
    made->setLabel(label);
    for (auto const& base : bases)
        made->addBaseClass(base);
    return made;
}

// behaviour: LL-12
TEST(lifeLines, goDepthFirstThroughWhatEndsTogether) {
    auto part =
        labelled(L"part", {labelled(L"left", {labelled(L"left top")}), labelled(L"right", {labelled(L"right top")})});
    eventLog log;
    part.reset();
    auto const released = [](char const* label) { return "trace classInfo released: \"" + std::string(label) + "\""; };
    events const leftFirst{released("part"), released("left"), released("left top"), released("right"),
                           released("right top")};
    events const rightFirst{released("part"), released("right"), released("right top"), released("left"),
                            released("left top")};
    auto const happened = log.take();
    EXPECT_TRUE(happened == leftFirst || happened == rightFirst) << testing::PrintToString(happened);
}

// behaviour: LL-09
TEST(lifeLines, areNotSkippedWhenAModelHasNoLogger) {
    eventLog log(zovlog::eLogOff);
    missingLoggers const missing;
    EXPECT_TRUE(throwsFalse([] { modelInfo::createModelInfo(false); }));
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
}

// behaviour: LL-09
TEST(lifeLines, areNotSkippedWhenAClassHasNoLogger) {
    ownModel const model;
    eventLog log(zovlog::eLogOff);
    bool asked = false;
    auto const accept = [&](refPtr<classInfo> const&) { return asked = true; };
    {
        missingLoggers const missing;
        EXPECT_TRUE(throwsFalse([] { classInfo::createClassInfo(L"part"); }));
        EXPECT_TRUE(throwsFalse([&] { model->createClassInfo(L"part", accept); }));
        EXPECT_TRUE(throwsFalse([&] { model->getOrCreateClassInfo(L"part", accept); }));
    }
    EXPECT_EQ(log.take(), (events{tests::emptyRefPtr, tests::emptyRefPtr, tests::emptyRefPtr}));
    EXPECT_FALSE(asked);
    EXPECT_EQ(model->countClasses(), 0u);
    EXPECT_NE(model->createClassInfo(L"part", accept), nullptr);
}

// behaviour: LL-09
TEST(lifeLines, areNotSkippedWhenAFieldHasNoLogger) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    auto const width = addField(base, L"width");
    eventLog log(zovlog::eLogOff);
    {
        missingLoggers const missing({fieldMade});
        EXPECT_TRUE(throwsFalse([&] { addField(part, L"height"); }));
        EXPECT_TRUE(throwsFalse([&] { part->createFieldInfo(base.pointer(), L"width"); }));
        EXPECT_TRUE(throwsFalse([&] { part->copyFieldInfoFrom(width, L"p"); }));
        EXPECT_TRUE(throwsFalse([&] { part->copyInfosFrom(base.pointer(), L"p"); }));
        EXPECT_EQ(addField(part, L"width"), width);
        EXPECT_NE(classInfo::createClassInfo(L"another"), nullptr);
    }
    EXPECT_EQ(log.take(), events(4, tests::emptyRefPtr));
    EXPECT_EQ(part->countFields(), 0u);
    EXPECT_EQ(part->refCount(), 1u);
    EXPECT_EQ(width->refCount(), 2u);
    EXPECT_NE(addField(part, L"height"), nullptr);
}

// behaviour: LL-09
TEST(lifeLines, ofOneCopyThatFailsLeaveNothingCopied) {
    ownClass const from(L"from");
    ownClass const to(L"to");
    for (wchar_t const* name : {L"a", L"b", L"c"})
        addField(from, name);
    int left = 2;
    eventLog log(zovlog::eLogOff);
    zovlog::logManager::setProvider([&](char const* name) {
        bool const missing = std::string(name) == fieldMade && left-- == 0;
        return missing ? refPtr<zovlog::logger>() : refPtr<zovlog::logger>(new zovlog::logger(name));
    });
    EXPECT_TRUE(throwsFalse([&] { to->copyInfosFrom(from.pointer(), nullptr); }));
    zovlog::logManager::setProvider({});
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
    EXPECT_EQ(to->countFields(), 0u);
    EXPECT_EQ(to->refCount(), 1u);
}

// behaviour: LL-09
TEST(lifeLines, thatFailInsideAcceptLeaveNothingRegistered) {
    ownModel const model;
    eventLog log(zovlog::eLogOff);
    missingLoggers const missing({fieldMade});
    EXPECT_TRUE(throwsFalse([&] {
        model->createClassInfo(L"part",
                               [](refPtr<classInfo> const& offered) { return addField(offered, L"a") != nullptr; });
    }));
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
    EXPECT_EQ(model->countClasses(), 0u);
}

// behaviour: LL-09
TEST(lifeLines, areNotNeededByIdSets) {
    ownClass const part(L"part");
    addField(part, L"a")->setSemantic(eSemPrimkey, genericSet(), L"");
    eventLog log(zovlog::eLogOff);
    missingLoggers const missing;
    auto id = part->idInfo();
    part->onSemanticChanged(part->fieldInfo(L"a", false, false));
    id.reset();
    EXPECT_EQ(log.take(), events());
}

// behaviour: LL-10
TEST(lifeLines, thatAreMissingWhenAClassEndsReachWhoGaveItUp) {
    ownClass const base(L"base");
    eventLog log(zovlog::eLogOff);
    for (bool const byAssignment : {false, true}) {
        auto part = classInfo::createClassInfo(L"part");
        part->addBaseClass(base);
        missingLoggers const missing({classEnded});
        EXPECT_TRUE(throwsFalse([&] {
            if (byAssignment)
                part = base.pointer().get();
            else
                part.reset();
        }));
        EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
        EXPECT_EQ(part.get(), byAssignment ? base.pointer().get() : nullptr);
        part.reset();
        EXPECT_EQ(base->refCount(), 1u);
    }
}

// behaviour: LL-10
TEST(lifeLines, thatAreMissingWhenAPointerIsDestroyedAreReportedOnly) {
    ownClass const base(L"base");
    eventLog log(zovlog::eLogOff);
    missingLoggers const missing({classEnded});
    {
        auto const part = classInfo::createClassInfo(L"part");
        part->addBaseClass(base);
    }
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
    EXPECT_EQ(base->refCount(), 1u);
}

// behaviour: LL-10
TEST(lifeLines, thatAreMissingWhenAModelEndsLeaveNothingBehind) {
    auto model = modelInfo::createModelInfo(false);
    auto const part = model->createClassInfo(L"part");
    eventLog log(zovlog::eLogOff);
    missingLoggers const missing({modelEnded});
    EXPECT_TRUE(throwsFalse([&] { model.reset(); }));
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
    EXPECT_EQ(part->refCount(), 1u);
}

// behaviour: LL-10
TEST(lifeLines, thatAreMissingWhenAFieldEndsReachWhoGaveItUp) {
    ownClass const base(L"base");
    ownClass const part(L"part");
    part->addBaseClass(base);
    auto const root = addField(base, L"width");
    auto field = part->createFieldInfo(base.pointer(), L"width");
    part->tearDown();
    eventLog log(zovlog::eLogOff);
    missingLoggers const missing({fieldEnded});
    EXPECT_TRUE(throwsFalse([&] { field.reset(); }));
    EXPECT_EQ(log.take(), events{tests::emptyRefPtr});
    EXPECT_EQ(root->refCount(), 2u);
}

// behaviour: LL-10, TD-11
TEST(lifeLines, thatAreMissingDuringATearDownAreReportedAndNothingIsThrown) {
    auto const model = modelInfo::createModelInfo(false);
    auto const base = classInfo::createClassInfo(L"base");
    model->createClassInfo(L"part", [&](refPtr<classInfo> const& offered) {
        offered->addBaseClass(base);
        addField(offered, L"a");
        addField(offered, L"b");
        return true;
    });
    eventLog log(zovlog::eLogOff);
    missingLoggers const missing;
    EXPECT_NO_THROW(model->tearDown());
    EXPECT_EQ(log.take(), events(3, tests::emptyRefPtr));
    EXPECT_EQ(base->refCount(), 1u);
}

// behaviour: LL-10
TEST(lifeLines, thatAreMissingForSeveralAtOnceAreThrownOnce) {
    auto part = labelled(L"part", {labelled(L"middle", {labelled(L"top")})});
    eventLog log(zovlog::eLogOff);
    missingLoggers const missing({classEnded});
    EXPECT_TRUE(throwsFalse([&] { part.reset(); }));
    EXPECT_EQ(log.take(), events(3, tests::emptyRefPtr));
}

// A host's logger, which wants every line and keeps what it got.
class hostLogger : public zovlog::logger {
public:
    explicit hostLogger(events& written) : mWritten(written) {}

    bool isEnabled(zovlog::eLogLevel) const override { return true; }
    void log_trace(string const& message, char const* file, long line, char const* function,
                   refPtr<zovlog::iLogObj> object) override {
        keep("trace ", message, file, line, function, object);
    }
    void log_debug(string const& message, char const* file, long line, char const* function,
                   refPtr<zovlog::iLogObj> object) override {
        keep("debug ", message, file, line, function, object);
    }
    void log_info(string const& message, char const* file, long line, char const* function,
                  refPtr<zovlog::iLogObj> object) override {
        keep("info ", message, file, line, function, object);
    }

private:
    void keep(char const* level, string const& message, char const* file, long line, char const* function,
              refPtr<zovlog::iLogObj> const& object) {
        EXPECT_EQ(object, nullptr);
        EXPECT_GT(line, 0);
        EXPECT_TRUE(std::string(file).starts_with("libs/metamodel/src/zovMdl"));
        EXPECT_TRUE(std::string(function).starts_with("zov::metamodel::"));
        mWritten.push_back(level + message.toUtf8());
    }

    events& mWritten;
};

// behaviour: LL-13
TEST(lifeLines, goToAHostsOwnLoggersWhateverTheLevel) {
    events written;
    std::set<std::string> asked;
    zovlog::logManager::setProvider([&](char const* name) {
        asked.insert(name);
        return refPtr<zovlog::logger>(new hostLogger(written));
    });
    {
        ownModel const model;
        addField(model->createClassInfo(L"Part"), L"width");
    }
    zovlog::logManager::setProvider({});
    EXPECT_EQ(written,
              (events{"trace modelInfo created", "trace classInfo created: \"Part\"", "trace fieldInfo created: \"\"",
                      "debug fieldInfo released: \"\"", "trace classInfo released: \"\"", "trace modelInfo released"}));
    EXPECT_EQ(asked, (std::set<std::string>{modelMade, modelEnded, classMade, classEnded, fieldMade, fieldEnded}));
}

// behaviour: LL-14
TEST(lifeLines, baseClassesThatNobodyElseHoldsEndFromTheLastHandleOn) {
    auto derived = classInfo::createClassInfo(L"derived");
    std::vector<std::pair<scString, std::string>> byHandle;
    for (wchar_t const* const name : {L"base c", L"base a", L"base d", L"base b"}) {
        auto const base = classInfo::createClassInfo(name);
        base->setLabel(name);
        derived->addBaseClass(base);
        byHandle.emplace_back(base->scName(), string(name).toUtf8());
    }
    std::sort(byHandle.rbegin(), byHandle.rend());
    events expected{"trace classInfo released: \"\""};
    for (auto const& [handle, label] : byHandle)
        expected.push_back("trace classInfo released: \"" + label + "\"");
    eventLog log;
    derived.reset();
    EXPECT_EQ(log.take(), expected);
}

// behaviour: LL-12
TEST(lifeLines, ofAClassThatEndsTellOfItsBasesBeforeItsIdentifyingFields) {
    auto part = classInfo::createClassInfo(L"part");
    auto key = addField(part, L"number");
    key->setLabel(L"key");
    key->setSemantic(eSemPrimkey, genericSet(), L"");
    part->idInfo();
    key.reset();
    part->tearDown();
    auto base = classInfo::createClassInfo(L"base");
    base->setLabel(L"base");
    part->addBaseClass(base);
    base.reset();
    eventLog log;
    part.reset();
    EXPECT_EQ(log.take(), (events{"trace classInfo released: \"\"", "trace classInfo released: \"base\"",
                                  "debug fieldInfo released: \"key\""}));
}

} // namespace
} // namespace zov::metamodel
