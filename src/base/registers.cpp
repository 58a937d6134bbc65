// Widths of vector registers that the processor has.
#include "base/registers.h"

#include <array>

namespace tov {

namespace {

constexpr std::array all_widths{Registers::narrow, Registers::wide, Registers::widest};

std::size_t count_usable() noexcept {
#if defined(__GNUC__) && defined(__x86_64__)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f")) {
        return 3;
    }
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") ? 2 : 1;
#else
    return 1;
#endif
}

}  // namespace

std::span<Registers const> usable_registers() noexcept {
    static std::size_t const usable = count_usable();
    return std::span(all_widths).first(usable);
}

}  // namespace tov
