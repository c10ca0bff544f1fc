// Failed preconditions: what is reported, where, and what the caller gets.
#include "zovAssert.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "eventLog.h"

namespace zov::tests {
namespace {

using zov::string;

// Collects the texts that are reported while it lives.
class reports {
public:
    reports() {
        setAssertHandler([this](string const& text) { mTexts.push_back(text); });
    }
    ~reports() { setAssertHandler({}); }
    reports(reports const&) = delete;
    reports& operator=(reports const&) = delete;

    std::vector<string> take() { return std::exchange(mTexts, {}); }

private:
    std::vector<string> mTexts;
};

// What `action` writes to standard error.
std::string standardErrorOf(std::function<void()> const& action) {
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}

// behaviour: AS-01
TEST(failedCheck, reportsConditionFileAndLine) {
    reports seen;
    EXPECT_TRUE(throwsFalse([] { assertionFailed(L"m_p != NULL", "libs/some/file.cpp", 156); }));
    EXPECT_EQ(seen.take(),
              (std::vector<string>{L"Assertion failed:\nm_p != NULL\n\nFile: libs/some/file.cpp\nLine: 156"}));
}

// behaviour: AS-01
TEST(failedCheck, throwsFalseAfterTheReport) {
    bool reported = false;
    setAssertHandler([&](string const&) { reported = true; });
    bool reportedWhenThrown = false;
    try {
        assertThat(false, L"holds", "file.cpp", 1);
        ADD_FAILURE() << "returned";
    } catch (bool thrown) {
        EXPECT_FALSE(thrown);
        reportedWhenThrown = reported;
    }
    setAssertHandler({});
    EXPECT_TRUE(reportedWhenThrown);
}

// behaviour: AS-02
TEST(check, thatHoldsReportsNothing) {
    reports seen;
    EXPECT_NO_THROW(assertThat(true, L"holds", "file.cpp", 1));
    EXPECT_TRUE(seen.take().empty());
}

// behaviour: AS-03
TEST(failedCheck, isCutAt1023Characters) {
    reports seen;
    string const head(L"Assertion failed:\n");
    string const condition(2000, L'c');
    EXPECT_TRUE(throwsFalse([&] { assertionFailed(condition.c_str(), "file.cpp", 1); }));
    EXPECT_EQ(seen.take(), (std::vector<string>{head + string(1023 - head.size(), L'c')}));
}

// behaviour: AS-03
TEST(failedCheck, isCutWhereverTheLimitLies) {
    string const head(L"Assertion failed:\n");
    string const tail(L"\n\nFile: some/file.cpp\nLine: 12345");
    std::size_t const exact = 1023 - head.size() - tail.size();
    for (std::size_t length = exact - 2; length <= 1100; ++length) {
        reports seen;
        string const condition(length, L'c');
        EXPECT_TRUE(throwsFalse([&] { assertionFailed(condition.c_str(), "some/file.cpp", 12345); }));
        string const whole = head + condition + tail;
        ASSERT_EQ(seen.take(), (std::vector<string>{whole.substr(0, 1023)})) << length;
    }
}

// behaviour: AS-03
TEST(failedCheck, isCutInTheFileToo) {
    reports seen;
    std::string const file(3000, 'f');
    EXPECT_TRUE(throwsFalse([&] { assertionFailed(L"c", file.c_str(), 1); }));
    string const head(L"Assertion failed:\nc\n\nFile: ");
    EXPECT_EQ(seen.take(), (std::vector<string>{head + string(1023 - head.size(), L'f')}));
}

// behaviour: AS-04
TEST(failedCheck, neverReadsItsTextsAsAFormat) {
    reports seen;
    EXPECT_TRUE(throwsFalse([] { assertionFailed(L"a %s %n %d %%", "b%s%n.cpp", -1); }));
    EXPECT_EQ(seen.take(), (std::vector<string>{L"Assertion failed:\na %s %n %d %%\n\nFile: b%s%n.cpp\nLine: -1"}));
}

// behaviour: AS-05
TEST(assertMessage, isShownAsItStands) {
    reports seen;
    assertMsg(L"100 %s %n %d");
    assertMsg(L"with arguments: %s %d", L"ignored", 42);
    assertMsg(L"");
    EXPECT_EQ(seen.take(), (std::vector<string>{L"100 %s %n %d", L"with arguments: %s %d", L""}));
}

// behaviour: AS-05
TEST(assertMessage, thatIsNullIsTheEmptyText) {
    reports seen;
    assertMsg(nullptr);
    EXPECT_EQ(seen.take(), (std::vector<string>{L""}));
}

// behaviour: AS-06
TEST(assertMessage, returns) {
    reports seen;
    EXPECT_NO_THROW(assertMsg(L"reported"));
    EXPECT_EQ(seen.take().size(), 1U);
}

// behaviour: AS-06
TEST(assertMessage, throwsWhatTheHandlerThrows) {
    setAssertHandler([](string const&) { throw std::runtime_error("handler"); });
    EXPECT_THROW(assertMsg(L"reported"), std::runtime_error);
    setAssertHandler({});
}

// behaviour: AS-06
TEST(assertMessage, isNotReportedAgainWhenTheHandlerRunsOutOfMemory) {
    setAssertHandler([](string const&) { throw std::bad_alloc(); });
    EXPECT_EQ(standardErrorOf([] { EXPECT_THROW(assertMsg(L"reported"), std::bad_alloc); }), "");
    setAssertHandler({});
}

// behaviour: AS-06
TEST(failedCheck, throwsWhatTheHandlerThrowsInsteadOfFalse) {
    int reported = 0;
    setAssertHandler([&](string const&) {
        ++reported;
        throw std::runtime_error("handler");
    });
    EXPECT_THROW(assertionFailed(L"holds", "file.cpp", 1), std::runtime_error);
    EXPECT_THROW(assertThat(false, L"holds", "file.cpp", 1), std::runtime_error);
    EXPECT_NO_THROW(assertThat(true, L"holds", "file.cpp", 1));
    setAssertHandler([&](string const&) { ++reported; });
    EXPECT_TRUE(throwsFalse([] { assertionFailed(L"holds", "file.cpp", 1); }));
    setAssertHandler({});
    EXPECT_EQ(reported, 3);
}

// behaviour: AS-07
TEST(defaultReport, goesToStandardErrorInUtf8) {
    std::string const written = standardErrorOf([] { assertMsg(L"Stra\u00DFe \u4E2D 100%s"); });
    EXPECT_NE(written.find("Stra\xC3\x9F"
                           "e \xE4\xB8\xAD 100%s"),
              std::string::npos);
}

// behaviour: AS-07
TEST(defaultReport, ofAFailedCheckIsTheWholeText) {
    std::string const written =
        standardErrorOf([] { EXPECT_TRUE(throwsFalse([] { assertionFailed(L"a > 0", "dir/file.cpp", 7); })); });
    EXPECT_NE(written.find("Assertion failed:\na > 0\n\nFile: dir/file.cpp\nLine: 7"), std::string::npos);
}

// behaviour: AS-08
TEST(assertHandler, takesTheReportFromStandardError) {
    reports seen;
    EXPECT_EQ(standardErrorOf([] { assertMsg(L"taken"); }), "");
    EXPECT_EQ(seen.take().size(), 1U);
}

// behaviour: AS-08
TEST(assertHandler, thatIsEmptyRestoresTheDefault) {
    int calls = 0;
    setAssertHandler([&](string const&) { ++calls; });
    setAssertHandler({});
    EXPECT_NE(standardErrorOf([] { assertMsg(L"default again"); }).find("default again"), std::string::npos);
    EXPECT_EQ(calls, 0);
}

// behaviour: AS-08
TEST(assertHandler, replacesTheFormerOne) {
    std::vector<int> calls;
    setAssertHandler([&](string const&) { calls.push_back(1); });
    assertMsg(L"one");
    setAssertHandler([&](string const&) { calls.push_back(2); });
    assertMsg(L"two");
    setAssertHandler({});
    EXPECT_EQ(calls, (std::vector{1, 2}));
}

// behaviour: AS-09
TEST(assertHandler, mayReportAndReplaceItself) {
    std::vector<string> seen;
    setAssertHandler([&](string const& text) {
        seen.push_back(text);
        setAssertHandler([&](string const& inner) { seen.push_back(L"second: " + inner); });
        assertMsg(L"inner");
        seen.push_back(text);
    });
    assertMsg(L"outer");
    assertMsg(L"next");
    setAssertHandler({});
    EXPECT_EQ(seen, (std::vector<string>{L"outer", L"second: inner", L"outer", L"second: next"}));
}

} // namespace
} // namespace zov::tests
