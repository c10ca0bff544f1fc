#include "zovPlatform.h"

namespace zov {

std::tm localTime(std::time_t moment) noexcept {
    std::tm parts{};
#if defined(_WIN32)
    bool const known = localtime_s(&parts, &moment) == 0;
#else
    bool const known = localtime_r(&moment, &parts) != nullptr;
#endif
    if (!known) {
        parts = std::tm{};
        parts.tm_mday = 1;
    }
    return parts;
}

} // namespace zov
