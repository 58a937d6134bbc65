// One allele a locus, kept as small indices into the allele database.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

#include "model/alldb.h"

namespace tov {

/// A row of alleles that costs a byte a site.
///
/// As long as position p holds an allele of locus first + p of one database, the row keeps ranks of 8 bits, or of 16
/// bits once a rank exceeds 255. Any other content (sub-sets of loci, alleles outside a database, null) is kept as
/// pointers. Readers see allele pointers in all three forms; two rows are equal when their pointers are.
class AlleleRow {
public:
    AlleleRow() = default;
    AlleleRow(AlleleRow const& other);
    AlleleRow(AlleleRow&& other) noexcept;
    AlleleRow& operator=(AlleleRow const& other);
    AlleleRow& operator=(AlleleRow&& other) noexcept;
    ~AlleleRow() = default;

    [[nodiscard]] int GetItemsInContainer() const noexcept { return size_; }
    [[nodiscard]] int size() const noexcept { return size_; }
    [[nodiscard]] bool IsEmpty() const noexcept { return size_ == 0; }

    /// Allele at position p; null outside [0, size()). Borrowed from the database.
    [[nodiscard]] TAllele* operator[](int p) const;
    /// Index of the allele within its locus, -1 for none; cheaper than the pointer.
    [[nodiscard]] int rank(int p) const;
    /// The ranks themselves when they are kept in 8 bits, else empty.
    [[nodiscard]] std::span<std::uint8_t const> narrow_ranks() const noexcept;
    /// Locus of position 0 when the row keeps ranks; meaningless otherwise.
    [[nodiscard]] int first_locus() const noexcept { return first_; }

    /// Appends. @return the new count.
    int Add(TAllele* allele);
    /// Appends alleles of consecutive loci of `db`, told by their ranks there, the first at `locus`.
    void append_ranks(TAlleleDB const& db, int locus, std::span<std::uint8_t const> ranks);
    /// Replaces the allele at p; nothing happens outside the row.
    void set_allele(int p, TAllele* allele);
    /// Exchanges the alleles that both rows hold at position p.
    void swap_allele(int p, AlleleRow& other);
    /// Removes position p and closes the gap; nothing happens outside the row.
    void Detach(int p);
    void Flush() noexcept { size_ = 0; }
    /// Empties the row and makes room for n alleles.
    void Reallocate(int n);

    /// Whether both rows hold the same allele at position p; false outside either.
    [[nodiscard]] bool same_at(int p, AlleleRow const& other) const;
    [[nodiscard]] bool operator==(AlleleRow const& other) const noexcept;
    /// Equal rows have equal hashes.
    [[nodiscard]] std::size_t hash() const noexcept;

private:
    enum class Width : std::uint8_t { byte = 1, word = 2, pointer = 8 };
    static constexpr int inline_bytes = 24;

    [[nodiscard]] unsigned char* data() noexcept { return heap_ ? heap_.get() : inline_; }
    [[nodiscard]] unsigned char const* data() const noexcept { return heap_ ? heap_.get() : inline_; }
    [[nodiscard]] int bytes() const noexcept { return size_ * static_cast<int>(width_); }
    [[nodiscard]] int capacity_bytes() const noexcept { return heap_ ? heap_bytes_ : inline_bytes; }
    [[nodiscard]] bool fits(TAllele const* allele, int p) const noexcept;
    [[nodiscard]] bool same_frame(AlleleRow const& other) const noexcept;
    void make_room_for(TAllele const* allele, int p);
    void reserve_bytes(int n);
    void widen(Width width);
    void store(int p, TAllele* allele) noexcept;
    [[nodiscard]] int stored_rank(int p) const noexcept;
    [[nodiscard]] TAllele* stored_pointer(int p) const noexcept;

    TAlleleDB const* database_ = nullptr;  // borrowed
    int first_ = 0;
    int size_ = 0;
    int heap_bytes_ = 0;
    Width width_ = Width::byte;
    unsigned char inline_[inline_bytes] = {};
    std::unique_ptr<unsigned char[]> heap_;
};

}  // namespace tov
