// The trace log: who writes lines, who receives them, and how a host takes over either side.
//
// By default nothing is logged (eLogOff). A host that wants to see objects come and go raises the level, and
// says where lines go:
//
//     zovlog::logManager::setLevel(zovlog::eLogTrace);
//     zovlog::logManager::setSink([](zovlog::logRecord const& line) { print(line.message); });
//
// A host with a log of its own replaces the loggers themselves with setProvider.
//
// Threads: everything here may be called from any thread at any time. A replaced sink or provider may still be
// called by a thread that is just logging. Sinks and providers may read models, not change them.
#pragma once

#include <functional>

#include "zovRefPtr.h"
#include "zovString.h"
#include "zovUtilsApi.h"

namespace zovlog {

// How much is logged: a level includes those before it.
enum eLogLevel : int { eLogOff = 0, eLogInfo = 1, eLogDebug = 2, eLogTrace = 3 };

// One line of the log.
struct logRecord {
    eLogLevel level;        // the level it was written at
    char const* loggerName; // valid as long as the process for the default loggers
    zov::string message;
    char const* file;     // the source file, a path from the project's root
    long line;            // the line in it
    char const* function; // the fully qualified function
};

// An object that a line may refer to. The library always passes none.
class ZOV_UTILS_API iLogObj : public zov::iRefObj {
protected:
    ~iLogObj() = default;
};

// A source of log lines with a name. This one tests the level and hands its lines to the sink; hosts override it
// and hand theirs out through logManager::setProvider.
class ZOV_UTILS_API logger : public zov::refObj {
public:
    // `name` is not copied and must outlive the logger.
    explicit logger(char const* name = "") noexcept;

    // Whether a line of this level would be written. The library asks before it formats, so that a level that
    // is off costs no formatting and no allocation. An overriding logger that wants every line says true.
    virtual bool isEnabled(eLogLevel level) const;

    // Write one line at the level of their name.
    // Throw whatever the sink throws, and std::bad_alloc.
    virtual void log_trace(zov::string const& message, char const* file, long line, char const* function,
                           zov::refPtr<iLogObj> object);
    virtual void log_debug(zov::string const& message, char const* file, long line, char const* function,
                           zov::refPtr<iLogObj> object);
    virtual void log_info(zov::string const& message, char const* file, long line, char const* function,
                          zov::refPtr<iLogObj> object);

protected:
    void destroy() override;
    ~logger() override;

private:
    void write(eLogLevel level, zov::string const& message, char const* file, long line, char const* function);

    char const* mName;
};

// The process-wide switchboard. It is never destroyed: objects that end after main may still log.
class ZOV_UTILS_API logManager {
public:
    logManager() = delete;

    // The logger of this name: what the provider answers, which may be empty, else the default logger of that
    // name, made at the first call. The library asks anew for every line.
    // Throws std::bad_alloc, and what the provider throws.
    static zov::refPtr<logger> getLogger(char const* name);

    // Whether a line of this level may have a reader: the level is on, or a host provides the loggers. When it has not,
    // there is no need to ask for a logger at all.
    static bool isHeard(eLogLevel level) noexcept;

    // Sets the level of the default loggers; eLogOff at start.
    static void setLevel(eLogLevel level) noexcept;
    static eLogLevel level() noexcept;

    // Replaces where the default loggers' lines go; the default writes a line each to standard error, in UTF-8.
    // An empty function restores the default. Throws std::bad_alloc, and the old sink stays.
    static void setSink(std::function<void(logRecord const&)> sink);

    // Replaces where loggers come from. An empty function restores the default loggers.
    // Throws std::bad_alloc, and the old provider stays.
    static void setProvider(std::function<zov::refPtr<logger>(char const* name)> provider);
};

} // namespace zovlog
