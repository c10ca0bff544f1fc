// The trace log: levels, lines, sinks, providers.
#include "zovLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "endingObjects.h"
#include "eventLog.h"

namespace zov::tests {
namespace {

using zov::string;
using zovlog::eLogLevel;
using zovlog::iLogObj;
using zovlog::logger;
using zovlog::logManager;
using zovlog::logRecord;

// Collects the lines that are written while it lives, at the given level.
class lines {
public:
    explicit lines(eLogLevel level) {
        logManager::setSink([this](logRecord const& line) { seen.push_back(line); });
        logManager::setLevel(level);
    }
    ~lines() {
        logManager::setLevel(zovlog::eLogOff);
        logManager::setSink({});
    }
    lines(lines const&) = delete;
    lines& operator=(lines const&) = delete;

    std::vector<logRecord> seen;
};

// Writes a line at each level; answers the levels that arrived.
std::vector<eLogLevel> levelsWritten(eLogLevel level) {
    lines written(level);
    auto const target = logManager::getLogger("log test");
    target->log_info(L"i", "f.cpp", 1, "fn", nullptr);
    target->log_debug(L"d", "f.cpp", 2, "fn", nullptr);
    target->log_trace(L"t", "f.cpp", 3, "fn", nullptr);
    std::vector<eLogLevel> levels;
    for (logRecord const& line : written.seen)
        levels.push_back(line.level);
    return levels;
}

// An object that a line refers to.
class subject : public iLogObj, public refObj {
public:
    std::uint32_t refCount() const override { return currentCount(); }
    std::uint32_t addRef() override { return refObj::addRef(); }
    std::uint32_t release() override { return refObj::release(); }

private:
    void destroy() override { delete this; }
};

// A host's own logger: writes down all that it gets.
class hostLogger : public logger {
public:
    bool isEnabled(eLogLevel) const override { return true; }
    void log_trace(string const& message, char const* file, long line, char const* function,
                   refPtr<iLogObj> object) override {
        note("trace", message, file, line, function, object);
    }
    void log_debug(string const& message, char const* file, long line, char const* function,
                   refPtr<iLogObj> object) override {
        note("debug", message, file, line, function, object);
    }
    void log_info(string const& message, char const* file, long line, char const* function,
                  refPtr<iLogObj> object) override {
        note("info", message, file, line, function, object);
    }

    std::vector<std::string> notes;

private:
    void note(char const* level, string const& message, char const* file, long line, char const* function,
              refPtr<iLogObj> const& object) {
        notes.push_back(std::string(level) + "|" + message.toUtf8() + "|" + file + "|" + std::to_string(line) + "|" +
                        function + "|" + (object ? std::to_string(object->refCount()) : "none"));
    }
};

// behaviour: LG-01
TEST(logLevel, isOffAtStart) {
    EXPECT_EQ(logManager::level(), zovlog::eLogOff);
}

// behaviour: LG-01
TEST(logLevel, isWhatWasSet) {
    for (eLogLevel const level : {zovlog::eLogInfo, zovlog::eLogDebug, zovlog::eLogTrace, zovlog::eLogOff}) {
        logManager::setLevel(level);
        EXPECT_EQ(logManager::level(), level);
    }
}

// behaviour: LG-02
TEST(logLevel, includesTheLevelsBeforeIt) {
    using levels = std::vector<eLogLevel>;
    EXPECT_EQ(levelsWritten(zovlog::eLogOff), levels{});
    EXPECT_EQ(levelsWritten(zovlog::eLogInfo), (levels{zovlog::eLogInfo}));
    EXPECT_EQ(levelsWritten(zovlog::eLogDebug), (levels{zovlog::eLogInfo, zovlog::eLogDebug}));
    EXPECT_EQ(levelsWritten(zovlog::eLogTrace), (levels{zovlog::eLogInfo, zovlog::eLogDebug, zovlog::eLogTrace}));
}

// behaviour: LG-02
TEST(loggerEnabled, saysWhetherALineWouldBeWritten) {
    auto const target = logManager::getLogger("log test");
    for (int level = zovlog::eLogOff; level <= zovlog::eLogTrace; ++level) {
        logManager::setLevel(static_cast<eLogLevel>(level));
        EXPECT_EQ(target->isEnabled(zovlog::eLogInfo), level >= zovlog::eLogInfo);
        EXPECT_EQ(target->isEnabled(zovlog::eLogDebug), level >= zovlog::eLogDebug);
        EXPECT_EQ(target->isEnabled(zovlog::eLogTrace), level >= zovlog::eLogTrace);
    }
    logManager::setLevel(zovlog::eLogOff);
}

// behaviour: LG-03
TEST(logLine, arrivesWithAllItsParts) {
    lines written(zovlog::eLogTrace);
    logManager::getLogger("zov::some::function")
        ->log_debug(L"text %s \u4E2D", "libs/file.cpp", 123456, "zov::some::function", nullptr);
    ASSERT_EQ(written.seen.size(), 1U);
    logRecord const& line = written.seen.front();
    EXPECT_EQ(line.level, zovlog::eLogDebug);
    EXPECT_STREQ(line.loggerName, "zov::some::function");
    EXPECT_EQ(line.message, L"text %s \u4E2D");
    EXPECT_STREQ(line.file, "libs/file.cpp");
    EXPECT_EQ(line.line, 123456);
    EXPECT_STREQ(line.function, "zov::some::function");
}

// behaviour: LG-04
TEST(loggerOfAName, isAlwaysTheSame) {
    std::string const sameName("log same");
    EXPECT_EQ(logManager::getLogger("log same"), logManager::getLogger(sameName.c_str()));
    EXPECT_NE(logManager::getLogger("log same"), logManager::getLogger("log other"));
}

// behaviour: LG-04
TEST(loggerOfAName, keepsItsName) {
    lines written(zovlog::eLogInfo);
    {
        auto const name = std::make_unique<std::string>("log name of the caller's");
        auto const target = logManager::getLogger(name->c_str());
        name->assign(name->size(), 'x');
        target->log_info(L"", "", 0, "", nullptr);
    }
    ASSERT_EQ(written.seen.size(), 1U);
    EXPECT_STREQ(written.seen.front().loggerName, "log name of the caller's");
}

// behaviour: LG-05
TEST(defaultSink, isStandardErrorInUtf8) {
    logManager::setLevel(zovlog::eLogInfo);
    testing::internal::CaptureStderr();
    logManager::getLogger("log stderr")->log_info(L"Stra\u00DFe 100%s", "file.cpp", 1, "fn", nullptr);
    std::string const written = testing::internal::GetCapturedStderr();
    logManager::setLevel(zovlog::eLogOff);
    EXPECT_NE(written.find("Stra\xC3\x9F"
                           "e 100%s"),
              std::string::npos);
    EXPECT_EQ(std::count(written.begin(), written.end(), '\n'), 1);
}

// behaviour: LG-05
TEST(defaultSink, writesNothingWhileTheLevelIsOff) {
    testing::internal::CaptureStderr();
    logManager::getLogger("log stderr")->log_info(L"unseen", "file.cpp", 1, "fn", nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// behaviour: LG-06
TEST(logSink, thatIsEmptyRestoresTheDefault) {
    int calls = 0;
    logManager::setLevel(zovlog::eLogInfo);
    logManager::setSink([&](logRecord const&) { ++calls; });
    logManager::getLogger("log sink")->log_info(L"one", "file.cpp", 1, "fn", nullptr);
    logManager::setSink({});
    testing::internal::CaptureStderr();
    logManager::getLogger("log sink")->log_info(L"two", "file.cpp", 1, "fn", nullptr);
    std::string const written = testing::internal::GetCapturedStderr();
    logManager::setLevel(zovlog::eLogOff);
    EXPECT_EQ(calls, 1);
    EXPECT_NE(written.find("two"), std::string::npos);
}

// behaviour: LG-06
TEST(logSink, mayLogAndReplaceItself) {
    std::vector<string> seen;
    logManager::setLevel(zovlog::eLogInfo);
    logManager::setSink([&](logRecord const& line) {
        seen.push_back(line.message);
        logManager::setSink([&](logRecord const& inner) { seen.push_back(L"second: " + inner.message); });
        logManager::getLogger("log inner")->log_info(L"inner", "", 0, "", nullptr);
    });
    logManager::getLogger("log outer")->log_info(L"outer", "", 0, "", nullptr);
    logManager::setSink({});
    logManager::setLevel(zovlog::eLogOff);
    EXPECT_EQ(seen, (std::vector<string>{L"outer", L"second: inner"}));
}

// behaviour: LG-06
TEST(logSink, thatThrowsIsHeardByTheCaller) {
    logManager::setLevel(zovlog::eLogInfo);
    logManager::setSink([](logRecord const&) { throw std::runtime_error("sink"); });
    EXPECT_THROW(logManager::getLogger("log")->log_info(L"", "", 0, "", nullptr), std::runtime_error);
    logManager::setSink({});
    logManager::setLevel(zovlog::eLogOff);
}

// behaviour: LG-07
TEST(logProvider, isAskedEveryTime) {
    refPtr<hostLogger> const mine(new hostLogger);
    std::vector<std::string> asked;
    logManager::setProvider([&](char const* name) -> refPtr<logger> {
        asked.push_back(name);
        return mine;
    });
    EXPECT_EQ(logManager::getLogger("one"), mine);
    EXPECT_EQ(logManager::getLogger("two"), mine);
    EXPECT_EQ(logManager::getLogger("one"), mine);
    logManager::setProvider({});
    EXPECT_EQ(asked, (std::vector<std::string>{"one", "two", "one"}));
}

// behaviour: LG-08
TEST(logProvider, mayAnswerNoLogger) {
    eventLog events;
    noLoggers const none;
    EXPECT_FALSE(logManager::getLogger("any"));
    EXPECT_TRUE(throwsFalse([] { logManager::getLogger("any")->log_info(L"", "", 0, "", nullptr); }));
    EXPECT_EQ(events.take(), (std::vector<std::string>{"assert m_p != NULL @ libs/utils/inc/zovRefPtr.h:156"}));
}

// behaviour: LG-08
TEST(logProvider, thatAnswersNoLoggerIsNoticedWhileTheLevelIsOff) {
    eventLog events(zovlog::eLogOff);
    noLoggers const none;
    EXPECT_TRUE(throwsFalse([] { logManager::getLogger("any")->log_trace(L"", "", 0, "", nullptr); }));
    EXPECT_EQ(events.take().size(), 1U);
}

// behaviour: LG-09
TEST(logProvider, thatIsEmptyRestoresTheDefaultLoggers) {
    auto const usual = logManager::getLogger("log restored");
    {
        noLoggers const none;
        EXPECT_FALSE(logManager::getLogger("log restored"));
    }
    EXPECT_EQ(logManager::getLogger("log restored"), usual);
}

// behaviour: LG-10
TEST(hostLoggers, getEveryLineAsItWasGiven) {
    refPtr<hostLogger> const mine(new hostLogger);
    logManager::setProvider([&](char const*) -> refPtr<logger> { return mine; });
    logManager::getLogger("x")->log_trace(L"one", "a.cpp", 1, "f", nullptr);
    logManager::getLogger("x")->log_debug(L"two", "b.cpp", 2, "g", nullptr);
    logManager::getLogger("x")->log_info(L"three", "c.cpp", 3, "h", refPtr<iLogObj>(new subject));
    logManager::setProvider({});
    EXPECT_EQ(mine->notes, (std::vector<std::string>{"trace|one|a.cpp|1|f|none", "debug|two|b.cpp|2|g|none",
                                                     "info|three|c.cpp|3|h|1"}));
}

// behaviour: LG-10
TEST(hostLoggers, mayWriteThroughTheLibrarysOwn) {
    lines written(zovlog::eLogDebug);
    refPtr<logger> const mine(new logger("host's name"));
    mine->log_debug(L"text", "a.cpp", 1, "f", nullptr);
    mine->log_trace(L"too fine", "a.cpp", 1, "f", nullptr);
    ASSERT_EQ(written.seen.size(), 1U);
    EXPECT_STREQ(written.seen.front().loggerName, "host's name");
    EXPECT_EQ(written.seen.front().message, L"text");
}

// behaviour: LG-11
TEST(lateLog, isWrittenWhileTheProcessEnds) {
    EXPECT_EXIT(
        {
            logManager::setLevel(zovlog::eLogInfo);
            std::atexit(
                [] { logManager::getLogger("late")->log_info(L"a late line", "late.cpp", 1, "late", nullptr); });
            std::exit(0);
        },
        testing::ExitedWithCode(0), "a late line");
}

// behaviour: LG-12
TEST(logManagerType, cannotBeMade) {
    EXPECT_FALSE(std::is_default_constructible_v<logManager>);
}

} // namespace
} // namespace zov::tests
