// Words of flags that may change beside readers.
#pragma once

#include <atomic>
#include <cstdint>

namespace zov::metamodel {

// Sets or clears these bits; the others stay, whoever changes them meanwhile.
inline void setFlags(std::atomic<std::int32_t>& flags, std::int32_t bits, bool on) noexcept {
    on ? flags.fetch_or(bits) : flags.fetch_and(~bits);
}

} // namespace zov::metamodel
