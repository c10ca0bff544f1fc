// Words of flags that may change beside readers.
#pragma once

#include <atomic>
#include <cstdint>

namespace zov::metamodel {

// Sets or clears one bit; the others stay, whoever changes them meanwhile.
inline void setFlag(std::atomic<std::int32_t>& flags, std::int32_t bit, bool on) noexcept {
    on ? flags.fetch_or(bit) : flags.fetch_and(~bit);
}

} // namespace zov::metamodel
