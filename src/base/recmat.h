/// RectMat: dense matrix of doubles that also knows the sums of the Mantel test.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <span>
#include <vector>

#include "base/cstring.h"

namespace tov {

/// Dense rows x columns matrix, row-major in one block, with a permutation of its rows and columns.
///
/// Errors: element access reports error 1 and goes on, files that can't be read errors 42 and 43, exhausted memory is
/// the memory error 0; refused sums write a line to the log and give 0.
class RectMat {
public:
    RectMat() = default;
    RectMat(int const& rows, int const& cols);
    /// Reads the file `name`.
    explicit RectMat(char const* name);
    /// kept on purpose: a copy shares the elements and the index with its source.
    RectMat(RectMat const&) = default;
    RectMat& operator=(RectMat const&) = default;
    ~RectMat() = default;

    /// 1; elements all 0, unless there are some already: then nothing changes.
    int allocate_matrix();
    /// 1; no elements, sizes 0.
    int de_allocate_matrix();

    [[nodiscard]] int rows() const noexcept { return rows_; }
    [[nodiscard]] int columns() const noexcept { return columns_; }
    /// The smaller of rows and columns.
    [[nodiscard]] int dimension() const noexcept { return rows_ < columns_ ? rows_ : columns_; }
    [[nodiscard]] int conventional_fst() const noexcept { return conventional_; }
    void set_conventional_fst(int flag) noexcept { conventional_ = flag; }
    [[nodiscard]] double mean() const noexcept { return mean_; }
    [[nodiscard]] double SSX() const noexcept { return ssx_; }
    [[nodiscard]] double Z() const noexcept { return z_; }
    [[nodiscard]] my_string const& file_name() const noexcept { return file_name_; }

    /// Element (i, j) of the matrix, or of the conventional one when the flag is set.
    /// An index at or beyond the sizes is reported (error 1); outside the storage a spare cell of value 0 is given.
    double& operator()(int const& i, int const& j) { return *locate(i, j); }
    double const& operator()(int const& i, int const& j) const { return *const_cast<RectMat*>(this)->locate(i, j); }
    /// Stored row i, 0 <= i < rows, without test and whatever the conventional flag says.
    [[nodiscard]] std::span<double const> row(int i) const noexcept {
        return {cells_->data() + offset(i), static_cast<std::size_t>(columns_)};
    }
    [[nodiscard]] std::span<double> row(int i) noexcept {
        return {cells_->data() + offset(i), static_cast<std::size_t>(columns_)};
    }

    /// Each row on a line; returns 1.
    int display_matrix(std::ostream& os) const;

    /// Mean and sum of squared deviations of the strict lower triangle; returns the latter.
    double compute_SSX();
    /// Sum over j < i of this(index[i], index[j]) * M(i, j); needs create_index first.
    ///
    /// kept on purpose: the element is read as stored, without a swap into the lower triangle; a matrix that is
    /// permuted must hold both triangles.
    /// @param M  at least as many rows and columns as this matrix; a smaller one gives 0 with the size message.
    double computeZ(RectMat const& M);
    /// computeZ(M) - n (n - 1) / 2 * mean * M.mean; compute_SSX must have run on both matrices.
    double sum_of_products(RectMat const& M);
    /// The identity permutation; returns 1.
    int create_index();
    /// Shuffles the present permutation; returns 1. Draws: one per row (the last with one choice left).
    int permute_index();
    /// The permutation; empty before create_index.
    [[nodiscard]] std::span<int const> index() const noexcept {
        return index_ ? std::span<int const>(*index_) : std::span<int const>();
    }

    /// Stores the name and reads the file; 1 whatever happened.
    int read_from_file(my_string const& name);
    /// Reads the file of the stored name; 0 if it doesn't open.
    int read_from_file();

    /// Binary form: rows and columns as 32-bit integers, then the elements row by row as 64-bit doubles, little-endian.
    friend std::istream& operator>>(std::istream& is, RectMat& M);

private:
    [[nodiscard]] std::size_t offset(int i) const noexcept {
        return static_cast<std::size_t>(i) * static_cast<std::size_t>(columns_);
    }
    double* locate(int i, int j) {
        if (conventional_) return i == j ? &diagonal_ : &off_diagonal_;
        if (i >= 0 && j >= 0 && i < rows_ && j < columns_ && cells_) [[likely]]
            return cells_->data() + offset(i) + j;
        return outside(i, j);
    }
    double* outside(int i, int j);
    [[nodiscard]] bool is_square(char const* message) const;

    std::shared_ptr<std::vector<double>> cells_;  ///< rows + 1 rows, the last one spare
    int rows_ = 0;
    int columns_ = 0;
    int conventional_ = 0;
    double diagonal_ = 0.0;
    double off_diagonal_ = 1.0;
    my_string file_name_;
    double mean_ = 0.0;
    double ssx_ = 0.0;
    std::shared_ptr<std::vector<int>> index_;
    double z_ = 0.0;
    double spare_ = 0.0;
};

}  // namespace tov
