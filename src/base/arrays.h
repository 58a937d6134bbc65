/// The three array templates: values, pointers that may be owned, and owned pointers kept sorted.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

namespace tov {

/// What `Find` gives when nothing equals its argument; `Detach` and `RemoveItem` ignore it.
inline constexpr int NOT_FOUND = 2147483647;

/// Array of values with a capacity (`limit`), a count of elements in use, and a growth step.
///
/// The slots between count and capacity exist and hold default values; `operator[]` reaches them without changing the
/// count. Range-for and `view()` walk the elements in use.
/// Errors: none reported; out of memory is std::bad_alloc.
template <class T>
class MY_TArrayAsVector {
    static_assert(!std::is_same_v<T, bool>, "use int or char for flags");

public:
    /// @param upper  highest index that fits at the start: upper + 1 slots.
    /// @param delta  slots added when the array is full; less than 1 counts as 1.
    explicit MY_TArrayAsVector(long const& upper = 10, long const& delta = 10)
        : slots_(static_cast<std::size_t>(std::max(0L, upper + 1))), delta_(std::max(1L, delta)) {}

    /// Appends a copy; returns the new count.
    int Add(T const& value) {
        if (items_ < limit()) {
            slots_[static_cast<std::size_t>(items_)] = value;
        } else {
            T copy(value);  // value may live in the slots that move
            slots_.resize(slots_.size() + static_cast<std::size_t>(delta_));
            slots_[static_cast<std::size_t>(items_)] = std::move(copy);
        }
        return static_cast<int>(++items_);
    }
    /// Index of the first element that equals `value`, or NOT_FOUND.
    [[nodiscard]] int Find(T const& value) const {
        auto const hit = std::find(begin(), end(), value);
        return hit == end() ? NOT_FOUND : static_cast<int>(hit - begin());
    }
    [[nodiscard]] bool HasMember(T const& value) const { return Find(value) != NOT_FOUND; }
    /// Removes element i and closes the gap; an index outside the elements is ignored.
    void RemoveItem(int const& i) {
        if (i < 0 || i >= items_) return;
        std::move(slots_.begin() + i + 1, slots_.begin() + items_, slots_.begin() + i);
        slots_[static_cast<std::size_t>(--items_)] = T();
    }
    /// Count 0; the capacity stays, and so does what the slots hold.
    void Flush() noexcept { items_ = 0; }
    /// New capacity n, content kept; a smaller n cuts the content.
    void Resize(long const& n) {
        slots_.resize(static_cast<std::size_t>(std::max(0L, n)));
        items_ = std::min(items_, limit());
    }
    /// New capacity n, content discarded, count 0.
    void Reallocate(int const& n) {
        slots_.assign(static_cast<std::size_t>(std::max(0, n)), T());
        items_ = 0;
    }
    [[nodiscard]] int GetItemsInContainer() const noexcept { return static_cast<int>(items_); }
    [[nodiscard]] bool IsEmpty() const noexcept { return items_ == 0; }
    /// Capacity.
    [[nodiscard]] long limit() const noexcept { return static_cast<long>(slots_.size()); }

    /// Slot i of the capacity, whether in use or not; an index beyond gives a spare value.
    T& operator[](long i) noexcept(std::is_nothrow_default_constructible_v<T>) {
        if (i >= 0 && i < limit()) [[likely]]
            return slots_[static_cast<std::size_t>(i)];
        return fallback_ = T();
    }
    T const& operator[](long i) const noexcept {
        if (i >= 0 && i < limit()) [[likely]]
            return slots_[static_cast<std::size_t>(i)];
        return fallback_;
    }

    /// The elements in use, in order; valid until the next Add, Resize or Reallocate.
    [[nodiscard]] std::span<T> view() noexcept { return {slots_.data(), static_cast<std::size_t>(items_)}; }
    [[nodiscard]] std::span<T const> view() const noexcept { return {slots_.data(), static_cast<std::size_t>(items_)}; }
    T* begin() noexcept { return slots_.data(); }
    T* end() noexcept { return slots_.data() + items_; }
    T const* begin() const noexcept { return slots_.data(); }
    T const* end() const noexcept { return slots_.data() + items_; }

    /// Ascending by operator<; equal elements keep their order.
    void quickSortArray() { std::stable_sort(begin(), end()); }
    void heapsort() { quickSortArray(); }

private:
    std::vector<T> slots_;
    long items_ = 0;
    long delta_ = 10;
    T fallback_{};
};

/// Array of pointers; with `owns(1)`, the state after construction, it deletes what it holds.
///
/// Slots that were never filled hold null, and null is passed over by every operation. A copy of an array that owns
/// gets copies of the elements; a copy of one that borrows borrows the same elements.
/// Errors: none reported; out of memory is std::bad_alloc.
template <class T>
class MY_TIArrayAsVector {
public:
    /// @param upper  highest index that fits at the start: upper + 1 slots.
    /// @param delta  slots added when the array is full; less than 1 counts as 1.
    explicit MY_TIArrayAsVector(long const& upper = 10, long const& delta = 10)
        : slots_(static_cast<std::size_t>(std::max(0L, upper + 1)), nullptr), delta_(std::max(1L, delta)) {}
    MY_TIArrayAsVector(MY_TIArrayAsVector const& other) : MY_TIArrayAsVector(-1, other.delta_) { *this = other; }
    MY_TIArrayAsVector(MY_TIArrayAsVector&& other) noexcept
        : slots_(std::move(other.slots_)),
          items_(std::exchange(other.items_, 0)),
          delta_(other.delta_),
          owner_(other.owner_) {
        other.slots_.clear();
    }
    MY_TIArrayAsVector& operator=(MY_TIArrayAsVector const& other) {
        if (this == &other) return *this;
        Flush();
        slots_.assign(other.slots_.size(), nullptr);
        delta_ = other.delta_;
        owner_ = other.owner_;
        for (; items_ < other.items_; ++items_) {
            T* const element = other.slots_[static_cast<std::size_t>(items_)];
            slots_[static_cast<std::size_t>(items_)] = owner_ && element ? new T(*element) : element;
        }
        return *this;
    }
    MY_TIArrayAsVector& operator=(MY_TIArrayAsVector&& other) noexcept {
        if (this != &other) {
            Flush();
            slots_ = std::move(other.slots_);
            items_ = std::exchange(other.items_, 0);
            delta_ = other.delta_;
            owner_ = other.owner_;
            other.slots_.clear();
        }
        return *this;
    }
    ~MY_TIArrayAsVector() { Flush(); }

    /// Appends; owned from now on if the array owns. Returns the new count.
    int Add(T* element) {
        if (items_ == limit()) slots_.resize(slots_.size() + static_cast<std::size_t>(delta_), nullptr);
        slots_[static_cast<std::size_t>(items_)] = element;
        return static_cast<int>(++items_);
    }
    /// Index of the first element whose value equals `value` (operator==, not the address), or NOT_FOUND.
    [[nodiscard]] int Find(T const& value) const {
        auto const hit = std::find_if(begin(), end(), [&](T const* p) { return p && *p == value; });
        return hit == end() ? NOT_FOUND : static_cast<int>(hit - begin());
    }
    [[nodiscard]] int Find(T const* value) const { return value ? Find(*value) : NOT_FOUND; }
    /// Removes element i, deletes it if the array owns, closes the gap; an index outside the elements is ignored.
    void Detach(int const& i) { take_out(i, owner_ != 0); }
    /// Removes element i and deletes it, whether the array owns or not; an index outside the elements is ignored.
    void Destroy(int const& i) { take_out(i, true); }
    /// Count 0; deletes the elements if the array owns.
    void Flush() noexcept {
        for (long i = 0; i < items_; ++i) {
            T* const element = std::exchange(slots_[static_cast<std::size_t>(i)], nullptr);
            if (owner_) delete element;
        }
        items_ = 0;
    }
    void owns(int const& owner) noexcept { owner_ = owner; }
    [[nodiscard]] int owns() const noexcept { return owner_; }
    /// New capacity n, content discarded (deleted if owned), count 0.
    void Reallocate(int const& n) {
        Flush();
        slots_.assign(static_cast<std::size_t>(std::max(0, n)), nullptr);
    }
    [[nodiscard]] int GetItemsInContainer() const noexcept { return static_cast<int>(items_); }
    [[nodiscard]] bool IsEmpty() const noexcept { return items_ == 0; }
    /// Capacity.
    [[nodiscard]] long limit() const noexcept { return static_cast<long>(slots_.size()); }

    /// Slot i.
    /// kept on purpose: an index from the count up to the capacity - 1 extends the count to i + 1 by mere access; walk
    /// with the count as limit, or through a const array. An index beyond gives a fallback slot that holds null.
    T*& operator[](long i) noexcept {
        if (i >= 0 && i < limit()) [[likely]] {
            items_ = std::max(items_, i + 1);
            return slots_[static_cast<std::size_t>(i)];
        }
        return fallback_ = nullptr;
    }
    /// Slot i without any change of the count; null beyond the capacity.
    T* operator[](long i) const noexcept {
        return i >= 0 && i < limit() ? slots_[static_cast<std::size_t>(i)] : nullptr;
    }

    /// The first slot; valid until the array grows.
    T** getIterator() noexcept { return slots_.data(); }
    /// The elements in use, in order (borrowed).
    [[nodiscard]] std::span<T* const> view() const noexcept {
        return {slots_.data(), static_cast<std::size_t>(items_)};
    }
    T* const* begin() const noexcept { return slots_.data(); }
    T* const* end() const noexcept { return slots_.data() + items_; }

    /// Ascending by the elements' operator<; equal elements keep their order, nulls go last.
    void quickSortArray() {
        std::stable_sort(slots_.begin(), slots_.begin() + items_,
                         [](T const* a, T const* b) { return a && (!b || *a < *b); });
    }
    void heapsort() { quickSortArray(); }

private:
    void take_out(int i, bool destroy) {
        if (i < 0 || i >= items_) return;
        if (destroy) delete slots_[static_cast<std::size_t>(i)];
        std::move(slots_.begin() + i + 1, slots_.begin() + items_, slots_.begin() + i);
        slots_[static_cast<std::size_t>(--items_)] = nullptr;
    }

    std::vector<T*> slots_;
    long items_ = 0;
    long delta_ = 10;
    T* fallback_ = nullptr;
    int owner_ = 1;
};

/// Array of pointers kept sorted by the elements' operator<, equal elements in order of arrival.
template <class T>
class MY_TISArrayAsVector : private MY_TIArrayAsVector<T> {
    using Base = MY_TIArrayAsVector<T>;

public:
    using Base::Base;
    using Base::Flush;
    using Base::GetItemsInContainer;
    using Base::IsEmpty;
    using Base::limit;
    using Base::owns;
    using Base::view;
    using Base::operator[];
    using Base::begin;
    using Base::end;

    /// Inserts behind the last element that is not greater; returns the index it got.
    int Add(T* element) {
        int i = Base::Add(element) - 1;
        T** const slots = Base::getIterator();
        for (; i > 0 && element && slots[i - 1] && *element < *slots[i - 1]; --i) {
            std::swap(slots[i], slots[i - 1]);
        }
        return i;
    }
};

}  // namespace tov
