/// Kernels compiled once for each width of vector registers, chosen when the program runs.
#pragma once

#include <cstddef>
#include <new>
#include <span>
#include <vector>

namespace tov {

/// Width of a vector register in bytes.
enum class Registers : int { narrow = 16, wide = 32, widest = 64 };

/// The widths that this processor has, from narrow upwards.
[[nodiscard]] std::span<Registers const> usable_registers() noexcept;
[[nodiscard]] inline Registers best_registers() noexcept { return usable_registers().back(); }

#if defined(__GNUC__) && defined(__x86_64__)
#define TOV_TARGET(features) [[gnu::target(features)]]
#else
#define TOV_TARGET(features)
#endif

#if defined(__GNUC__) && defined(__x86_64__) && !defined(__clang__)
#define TOV_FUSED  // not Clang: it refuses wide operands in a function that is not yet inlined
#endif

namespace detail {

template <class Kernel>
void run_narrow(Kernel const& kernel) {
    kernel.template run<16>();
}

template <class Kernel>
TOV_TARGET("avx2,fma") void run_wide(Kernel const& kernel) {
    kernel.template run<32>();
}

template <class Kernel>
TOV_TARGET("avx512f") void run_widest(Kernel const& kernel) {
    kernel.template run<64>();
}

}  // namespace detail

/// Calls kernel.run<bytes of a register>(), compiled for that register.
///
/// A kernel's functions are all inlined by force, as only then do they take on the caller's instructions. They do the
/// same arithmetic on every lane at every width: no sum over lanes, no contraction but of exact products.
template <class Kernel>
void run_kernel(Kernel const& kernel, Registers registers) {
    switch (registers) {
        case Registers::narrow: return detail::run_narrow(kernel);
        case Registers::wide: return detail::run_wide(kernel);
        case Registers::widest: return detail::run_widest(kernel);
    }
}

/// Element-wise arithmetic on `bytes` of Value.
template <class Value, int bytes>
struct Packed {
    using type [[gnu::vector_size(bytes)]] = Value;
};

/// a = a b + c for doubles, in one instruction where registers of `bytes` have it: only where a b is exact, so that the
/// one rounding is that of two instructions.
template <int bytes, class Doubles>
[[gnu::always_inline]] inline void multiply_and_add(Doubles& a, Doubles const& b, Doubles const& c) {
#if defined(TOV_FUSED)
    if constexpr (bytes > 16) {
        asm("vfmadd213pd %2, %1, %0" : "+v"(a) : "v"(b), "v"(c));
        return;
    }
#endif
    a = a * b + c;
}

/// The same with the sum in c.
template <int bytes, class Doubles>
[[gnu::always_inline]] inline void add_product(Doubles& c, Doubles const& a, Doubles const& b) {
#if defined(TOV_FUSED)
    if constexpr (bytes > 16) {
        asm("vfmadd231pd %2, %1, %0" : "+v"(c) : "v"(a), "v"(b));
        return;
    }
#endif
    c += a * b;
}

/// Storage that starts on a cache line, so that no register's load crosses one.
template <class T>
struct LineAligned {
    using value_type = T;
    static constexpr std::align_val_t line{64};

    LineAligned() = default;
    template <class U>
    LineAligned(LineAligned<U> const&) noexcept {}
    [[nodiscard]] T* allocate(std::size_t n) { return static_cast<T*>(::operator new(n * sizeof(T), line)); }
    void deallocate(T* p, std::size_t) noexcept { ::operator delete(p, line); }
    friend bool operator==(LineAligned const&, LineAligned const&) noexcept { return true; }
};

template <class T>
using LineVector = std::vector<T, LineAligned<T>>;

}  // namespace tov
