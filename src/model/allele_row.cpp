// One allele a locus, kept as small indices into the allele database.
#include "model/allele_row.h"

#include <algorithm>
#include <vector>

namespace tov {

namespace {

constexpr int largest_byte = 0xFF;
constexpr int largest_word = 0xFFFF;

// Low byte of a rank; alleles without a locus give bits of their address.
std::uint8_t hash_byte(TAllele const* allele) noexcept {
    if (allele && !allele->home()) return static_cast<std::uint8_t>(reinterpret_cast<std::uintptr_t>(allele) >> 5);
    return static_cast<std::uint8_t>(allele ? allele->rank() : -1);
}

std::uint64_t mix(std::uint64_t h, std::uint64_t chunk) noexcept {
    h = (h ^ chunk) * 0x9E3779B97F4A7C15ULL;
    return h ^ (h >> 29);
}

}  // namespace

AlleleRow::AlleleRow(AlleleRow const& other) : database_(other.database_), first_(other.first_), width_(other.width_) {
    reserve_bytes(other.bytes());
    std::memcpy(data(), other.data(), static_cast<std::size_t>(other.bytes()));
    size_ = other.size_;
}

AlleleRow::AlleleRow(AlleleRow&& other) noexcept
    : database_(other.database_),
      first_(other.first_),
      size_(other.size_),
      heap_bytes_(other.heap_bytes_),
      width_(other.width_),
      heap_(std::move(other.heap_)) {
    std::memcpy(inline_, other.inline_, sizeof inline_);
    other.size_ = 0;
    other.heap_bytes_ = 0;
}

AlleleRow& AlleleRow::operator=(AlleleRow const& other) {
    if (this == &other) return *this;
    size_ = 0;
    reserve_bytes(other.bytes());
    std::memcpy(data(), other.data(), static_cast<std::size_t>(other.bytes()));
    database_ = other.database_;
    first_ = other.first_;
    width_ = other.width_;
    size_ = other.size_;
    return *this;
}

AlleleRow& AlleleRow::operator=(AlleleRow&& other) noexcept {
    if (this == &other) return *this;
    database_ = other.database_;
    first_ = other.first_;
    size_ = other.size_;
    heap_bytes_ = other.heap_bytes_;
    width_ = other.width_;
    heap_ = std::move(other.heap_);
    std::memcpy(inline_, other.inline_, sizeof inline_);
    other.size_ = 0;
    other.heap_bytes_ = 0;
    return *this;
}

bool AlleleRow::fits(TAllele const* allele, int p) const noexcept {
    if (!allele || !allele->home() || !database_) return false;
    TLocus const& home = *allele->home();
    return home.database() == database_ && home.position() == first_ + p && allele->rank() >= 0 &&
           allele->rank() <= largest_word;
}

void AlleleRow::reserve_bytes(int n) {
    if (n <= capacity_bytes()) return;
    int const grown = size_ > 0 ? std::max(n, 2 * capacity_bytes()) : n;
    auto larger = std::make_unique_for_overwrite<unsigned char[]>(static_cast<std::size_t>(grown));
    std::memcpy(larger.get(), data(), static_cast<std::size_t>(bytes()));
    heap_ = std::move(larger);
    heap_bytes_ = grown;
}

int AlleleRow::stored_rank(int p) const noexcept {
    if (width_ == Width::byte) return data()[p];
    std::uint16_t word = 0;
    std::memcpy(&word, data() + 2 * static_cast<std::size_t>(p), sizeof word);
    return word;
}

TAllele* AlleleRow::stored_pointer(int p) const noexcept {
    if (width_ != Width::pointer) {
        TLocus const* const locus = database_->locus(first_ + p);
        return locus ? locus->allele(stored_rank(p)) : nullptr;
    }
    TAllele* allele = nullptr;
    std::memcpy(&allele, data() + sizeof allele * static_cast<std::size_t>(p), sizeof allele);
    return allele;
}

void AlleleRow::store(int p, TAllele* allele) noexcept {
    std::size_t const at = static_cast<std::size_t>(p) * static_cast<std::size_t>(width_);
    if (width_ == Width::byte) {
        data()[at] = static_cast<unsigned char>(allele->rank());
    } else if (width_ == Width::word) {
        auto const word = static_cast<std::uint16_t>(allele->rank());
        std::memcpy(data() + at, &word, sizeof word);
    } else {
        std::memcpy(data() + at, &allele, sizeof allele);
    }
}

void AlleleRow::widen(Width width) {
    std::vector<TAllele*> alleles(static_cast<std::size_t>(size_));
    for (int p = 0; p < size_; ++p) alleles[static_cast<std::size_t>(p)] = stored_pointer(p);
    reserve_bytes(size_ * static_cast<int>(width));
    width_ = width;
    for (int p = 0; p < size_; ++p) store(p, alleles[static_cast<std::size_t>(p)]);
}

void AlleleRow::make_room_for(TAllele const* allele, int p) {
    if (width_ == Width::pointer) return;
    if (!fits(allele, p)) {
        widen(Width::pointer);
    } else if (width_ == Width::byte && allele->rank() > largest_byte) {
        widen(Width::word);
    }
}

TAllele* AlleleRow::operator[](int p) const {
    if (p < 0 || p >= size_) return nullptr;
    return stored_pointer(p);
}

int AlleleRow::rank(int p) const {
    if (p < 0 || p >= size_) return -1;
    if (width_ != Width::pointer) return stored_rank(p);
    TAllele const* const allele = stored_pointer(p);
    return allele ? allele->rank() : -1;
}

std::span<std::uint8_t const> AlleleRow::narrow_ranks() const noexcept {
    if (width_ != Width::byte) return {};
    return {data(), static_cast<std::size_t>(size_)};
}

int AlleleRow::Add(TAllele* allele) {
    if (size_ == 0) {
        TLocus const* const home = allele ? allele->home() : nullptr;
        database_ = home ? home->database() : nullptr;
        first_ = home ? home->position() : 0;
        width_ = database_ ? Width::byte : Width::pointer;
    }
    make_room_for(allele, size_);
    reserve_bytes((size_ + 1) * static_cast<int>(width_));
    store(size_, allele);
    return ++size_;
}

void AlleleRow::append_ranks(TAlleleDB const& db, int locus, std::span<std::uint8_t const> ranks) {
    if (size_ == 0) {
        database_ = &db;
        first_ = locus;
        width_ = Width::byte;
    }
    if (width_ != Width::byte || database_ != &db || first_ + size_ != locus) {
        for (std::uint8_t const r : ranks) Add(db(locus++, int{r}));
        return;
    }
    reserve_bytes(size_ + static_cast<int>(ranks.size()));
    std::memcpy(data() + size_, ranks.data(), ranks.size());
    size_ += static_cast<int>(ranks.size());
}

void AlleleRow::set_allele(int p, TAllele* allele) {
    if (p < 0 || p >= size_) return;
    make_room_for(allele, p);
    store(p, allele);
}

void AlleleRow::swap_allele(int p, AlleleRow& other) {
    if (p < 0 || p >= size_ || p >= other.size_) return;
    if (same_frame(other)) {
        auto const width = static_cast<std::size_t>(width_);
        std::size_t const at = static_cast<std::size_t>(p) * width;
        std::swap_ranges(data() + at, data() + at + width, other.data() + at);
        return;
    }
    TAllele* const mine = stored_pointer(p);
    set_allele(p, other.stored_pointer(p));
    other.set_allele(p, mine);
}

void AlleleRow::Detach(int p) {
    if (p < 0 || p >= size_) return;
    if (p == 0) ++first_;
    if (p > 0 && p < size_ - 1 && width_ != Width::pointer) widen(Width::pointer);
    auto const width = static_cast<std::size_t>(width_);
    std::size_t const at = static_cast<std::size_t>(p) * width;
    std::memmove(data() + at, data() + at + width, static_cast<std::size_t>(bytes()) - at - width);
    --size_;
}

void AlleleRow::Reallocate(int n) {
    size_ = 0;
    reserve_bytes(n);
}

bool AlleleRow::same_frame(AlleleRow const& other) const noexcept {
    if (width_ != other.width_) return false;
    return width_ == Width::pointer || (database_ == other.database_ && first_ == other.first_);
}

bool AlleleRow::same_at(int p, AlleleRow const& other) const {
    if (p < 0 || p >= size_ || p >= other.size_) return false;
    if (width_ == Width::byte && same_frame(other)) return data()[p] == other.data()[p];
    return stored_pointer(p) == other.stored_pointer(p);
}

bool AlleleRow::operator==(AlleleRow const& other) const noexcept {
    if (size_ != other.size_) return false;
    if (same_frame(other)) return std::memcmp(data(), other.data(), static_cast<std::size_t>(bytes())) == 0;
    for (int p = 0; p < size_; ++p) {
        if (stored_pointer(p) != other.stored_pointer(p)) return false;
    }
    return true;
}

// Works on the low bytes of the ranks, eight at a time, so that all widths of the same alleles agree.
std::size_t AlleleRow::hash() const noexcept {
    std::uint64_t h = static_cast<std::uint64_t>(size_);
    for (int p = 0; p < size_; p += 8) {
        unsigned char low[8] = {};
        int const n = std::min(8, size_ - p);
        if (width_ == Width::byte) {
            std::memcpy(low, data() + p, static_cast<std::size_t>(n));
        } else {
            for (int i = 0; i < n; ++i) {
                low[i] = width_ == Width::word ? static_cast<unsigned char>(stored_rank(p + i))
                                               : hash_byte(stored_pointer(p + i));
            }
        }
        std::uint64_t chunk = 0;
        std::memcpy(&chunk, low, sizeof chunk);
        h = mix(h, chunk);
    }
    return static_cast<std::size_t>(h ^ (h >> 32));
}

}  // namespace tov
