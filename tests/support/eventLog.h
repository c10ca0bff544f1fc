// Records what the library reports and logs, in order, so that a test compares the whole list:
//
//     eventLog events;
//     ... what the host does ...
//     EXPECT_EQ(events.take(), (std::vector<std::string>{"trace classInfo created: \"Part\""}));
//
// A life line reads "<level> <message>", a failed assertion "assert <condition> @ <file>:<line>". While it lives it
// has taken over the assert handler, the log level and the log sink of the process.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "zovAssert.h"
#include "zovLog.h"

namespace zov::tests {

class eventLog {
public:
    explicit eventLog(zovlog::eLogLevel level = zovlog::eLogTrace) {
        zov::setAssertHandler([this](zov::string const& text) { add(assertionEvent(text.toUtf8())); });
        zovlog::logManager::setSink([this](zovlog::logRecord const& line) {
            static constexpr char const* names[] = {"off", "info", "debug", "trace"};
            add(std::string(names[line.level]) + " " + line.message.toUtf8());
        });
        zovlog::logManager::setLevel(level);
    }

    ~eventLog() {
        zovlog::logManager::setLevel(zovlog::eLogOff);
        zovlog::logManager::setSink({});
        zov::setAssertHandler({});
    }

    eventLog(eventLog const&) = delete;
    eventLog& operator=(eventLog const&) = delete;

    // What has happened since the last call.
    std::vector<std::string> take() {
        std::lock_guard guard(mMutex);
        return std::exchange(mEvents, {});
    }

private:
    void add(std::string event) {
        std::lock_guard guard(mMutex);
        mEvents.push_back(std::move(event));
    }

    // "Assertion failed:\nC\n\nFile: F\nLine: L" becomes "assert C @ F:L"; any other text stays as it is.
    static std::string assertionEvent(std::string const& text) {
        std::string const head = "Assertion failed:\n";
        std::string const file = "\n\nFile: ";
        std::string const line = "\nLine: ";
        auto const fileAt = text.find(file);
        auto const lineAt = text.find(line, fileAt);
        if (!text.starts_with(head) || fileAt == std::string::npos || lineAt == std::string::npos) return text;
        auto const conditionEnd = fileAt - head.size();
        auto const fileStart = fileAt + file.size();
        return "assert " + text.substr(head.size(), conditionEnd) + " @ " + text.substr(fileStart, lineAt - fileStart) +
               ":" + text.substr(lineAt + line.size());
    }

    std::mutex mMutex;
    std::vector<std::string> mEvents;
};

// Whether `action` throws the bool value false, the library's failure signal.
template <class Action>
bool throwsFalse(Action const& action) {
    try {
        action();
    } catch (bool thrown) {
        return !thrown;
    }
    return false;
}

} // namespace zov::tests
