// A value put in place for a scope; the old one returns on every way out.
#pragma once

#include <utility>

namespace tov {

/// Replaces `target` by `value` until the scope ends, then moves the old value back (also when an exception passes).
///
/// @param target  borrowed; must outlive the guard.
template <class T>
class ScopedSwap {
public:
    template <class U>
    ScopedSwap(T& target, U&& value) : target_(target), saved_(std::exchange(target, std::forward<U>(value))) {}
    /// Keeps a copy of the present value only, for code that alters `target` in place.
    explicit ScopedSwap(T& target) : target_(target), saved_(target) {}
    ~ScopedSwap() { target_ = std::move(saved_); }
    ScopedSwap(ScopedSwap const&) = delete;
    ScopedSwap& operator=(ScopedSwap const&) = delete;

    /// The value that comes back at the end of the scope.
    [[nodiscard]] T const& saved() const noexcept { return saved_; }

private:
    T& target_;
    T saved_;
};

template <class T, class U>
ScopedSwap(T&, U&&) -> ScopedSwap<T>;
template <class T>
ScopedSwap(T&) -> ScopedSwap<T>;

}  // namespace tov
