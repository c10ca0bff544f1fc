#include "base/lifeLine.h"

namespace zov::metamodel {

void writeLifeLine(lifeLineSite const& site, wchar_t const* format, string const& name, string const& otherName) {
    if (!zovlog::logManager::isHeard(site.level)) return; // the default loggers are there, and silent
    refPtr<zovlog::logger> const logger = zovlog::logManager::getLogger(site.function);
    if (!logger->isEnabled(site.level)) return;
    string const message = string::sformat(format, name.c_str(), otherName.c_str());
    switch (site.level) {
    case zovlog::eLogInfo: return logger->log_info(message, site.file, site.line, site.function, nullptr);
    case zovlog::eLogDebug: return logger->log_debug(message, site.file, site.line, site.function, nullptr);
    default: return logger->log_trace(message, site.file, site.line, site.function, nullptr);
    }
}

} // namespace zov::metamodel
