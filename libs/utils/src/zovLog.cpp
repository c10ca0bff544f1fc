#include "zovLog.h"

#include <atomic>
#include <cstdio>
#include <map>
#include <mutex>
#include <string>

#include "zovHook.h"

namespace zovlog {

namespace {

using provideLogger = zov::refPtr<logger>(char const*);
using receiveLine = void(logRecord const&);

std::atomic<eLogLevel> currentLevel{eLogOff};

zov::hook<provideLogger>& provider() {
    static zov::neverDestroyed<zov::hook<provideLogger>> hook;
    return *hook;
}

zov::hook<receiveLine>& sink() {
    static zov::neverDestroyed<zov::hook<receiveLine>> hook;
    return *hook;
}

// The default loggers, one a name. They are never given back, nor are their names.
class loggerTable {
public:
    zov::refPtr<logger> get(char const* name) {
        std::lock_guard guard(mMutex);
        auto found = mLoggers.find(std::string_view(name));
        if (found == mLoggers.end()) {
            found = mLoggers.emplace(name, nullptr).first;
        }
        if (!found->second) found->second = new logger(found->first.c_str());
        return found->second;
    }

private:
    std::mutex mMutex;
    std::map<std::string, zov::refPtr<logger>, std::less<>> mLoggers;
};

loggerTable& defaultLoggers() {
    static zov::neverDestroyed<loggerTable> table;
    return *table;
}

char const* levelName(eLogLevel level) noexcept {
    switch (level) {
    case eLogInfo: return "info";
    case eLogDebug: return "debug";
    case eLogTrace: return "trace";
    default: return "off";
    }
}

void writeToStandardError(logRecord const& line) {
    std::string const message = line.message.toUtf8();
    std::fprintf(stderr, "%s %s: %s (%s:%ld)\n", levelName(line.level), line.loggerName, message.c_str(), line.file,
                 line.line);
}

} // namespace

logger::logger(char const* name) noexcept : mName(name) {}

logger::~logger() = default;

void logger::destroy() {
    delete this;
}

bool logger::isEnabled(eLogLevel level) const {
    return level <= logManager::level();
}

void logger::log_trace(zov::string const& message, char const* file, long line, char const* function,
                       zov::refPtr<iLogObj>) {
    write(eLogTrace, message, file, line, function);
}

void logger::log_debug(zov::string const& message, char const* file, long line, char const* function,
                       zov::refPtr<iLogObj>) {
    write(eLogDebug, message, file, line, function);
}

void logger::log_info(zov::string const& message, char const* file, long line, char const* function,
                      zov::refPtr<iLogObj>) {
    write(eLogInfo, message, file, line, function);
}

void logger::write(eLogLevel level, zov::string const& message, char const* file, long line, char const* function) {
    if (!logger::isEnabled(level)) return;
    logRecord const record{level, mName, message, file, line, function};
    auto const receiver = sink().get();
    receiver ? (*receiver)(record) : writeToStandardError(record);
}

zov::refPtr<logger> logManager::getLogger(char const* name) {
    char const* const known = name ? name : "";
    if (auto const provide = provider().get()) return (*provide)(known);
    return defaultLoggers().get(known);
}

bool logManager::isHeard(eLogLevel lineLevel) noexcept {
    return lineLevel <= level() || provider().isSet();
}

void logManager::setLevel(eLogLevel level) noexcept {
    currentLevel.store(level, std::memory_order_relaxed);
}
eLogLevel logManager::level() noexcept {
    return currentLevel.load(std::memory_order_relaxed);
}

void logManager::setSink(std::function<void(logRecord const&)> receiver) {
    sink().set(std::move(receiver));
}

void logManager::setProvider(std::function<zov::refPtr<logger>(char const*)> provide) {
    provider().set(std::move(provide));
}

} // namespace zovlog
