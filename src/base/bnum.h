/// BnumMat: the table of B numbers of the Ewens-Watterson test.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <span>
#include <vector>

#include "base/cstring.h"

namespace tov {

/// Lower-triangular table B(g, a) = a! |s(g, a)| / g!, with s the Stirling numbers of the first kind; g = 1 .. genes,
/// a = 1 .. min(g, alleles).
///
/// Errors: a missing file is warning 8, a bad one error 9 or 10, exhausted memory is the memory error 0.
/// Source: Stewart 1977, appendix to Fuerst, Chakraborty and Nei, Genetics 86.
class BnumMat {
public:
    BnumMat() = default;
    /// All elements 0.
    BnumMat(int const& genes, int const& alleles);
    /// Reads the file `name`.
    explicit BnumMat(my_string const& name);

    [[nodiscard]] int nb_genes() const noexcept { return genes_; }
    [[nodiscard]] int nb_alleles() const noexcept { return alleles_; }
    /// Whether there is a table. After a refused re_allocate_matrix there is none, although the sizes say otherwise.
    [[nodiscard]] bool loaded() const noexcept { return loaded_; }

    /// Storage for the present sizes, all 0; nothing if there is some already.
    void allocate_matrix();
    /// Computes the table by B(g, a) = ((g - 1) B(g - 1, a) + a B(g - 1, a - 1)) / g.
    ///
    /// @return  1, or 0 with no table and the stored sizes as they were, when genes > 5000 or alleles > 1000.
    int re_allocate_matrix(int const& genes, int const& alleles);

    /// B(g, a), both counted from 1; outside the table 0 in a spare cell.
    double& operator()(int const& g, int const& a) { return *locate(g, a); }
    double const& operator()(int const& g, int const& a) const { return *const_cast<BnumMat*>(this)->locate(g, a); }
    /// Row g = 1 .. genes of a loaded table: B(g, 1) .. B(g, min(g, alleles)), without test.
    [[nodiscard]] std::span<double const> row(int g) const noexcept { return {cells_.data() + start(g), width(g)}; }

    /// Stores the name and reads the file; 1 on success.
    int read_from_file(my_string const& name);
    /// Reads the file of the stored name; 1 on success.
    int read_from_file();

    /// Binary form: genes and alleles as 32-bit integers, then the rows as 64-bit doubles, little-endian.
    friend std::istream& operator>>(std::istream& is, BnumMat& B);

private:
    [[nodiscard]] std::size_t width(int g) const noexcept {
        return static_cast<std::size_t>(g < alleles_ ? g : alleles_);
    }
    [[nodiscard]] std::size_t start(int g) const noexcept {
        auto const rows = static_cast<std::size_t>(g - 1);  // rows above row g
        auto const cut = static_cast<std::size_t>(alleles_);
        return rows <= cut ? rows * (rows + 1) / 2 : cut * (cut + 1) / 2 + (rows - cut) * cut;
    }
    double* locate(int g, int a) noexcept {
        if (loaded_ && g >= 1 && g <= genes_ && a >= 1 && a <= g && a <= alleles_) [[likely]]
            return cells_.data() + start(g) + (a - 1);
        spare_ = 0.0;
        return &spare_;
    }

    std::vector<double> cells_;
    my_string file_name_;
    int genes_ = 0;
    int alleles_ = 0;
    bool loaded_ = false;
    double spare_ = 0.0;
};

}  // namespace tov
