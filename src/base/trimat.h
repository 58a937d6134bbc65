/// TriMat: symmetric matrix of doubles, stored as its lower triangle with the diagonal.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iosfwd>
#include <span>
#include <vector>

namespace tov {

/// Symmetric n x n matrix; row i holds the columns 0 .. i, all rows in one block.
///
/// A "conventional" matrix stands for the absence of a molecular distance: its element (i, j) is 0 on the diagonal and
/// 1 elsewhere for any index, and the stored triangle isn't consulted.
/// Errors: element access reports warning 1, sums of unequal sizes error 44, exhausted memory is the memory error 0.
class TriMat {
public:
    TriMat() = default;
    explicit TriMat(int const& dim);
    /// Size and elements, read through operator(); neither the conventional flag nor its two values are copied, so a
    /// copy of a conventional matrix is a plain one of 0 and 1.
    TriMat(TriMat const& other);
    TriMat& operator=(TriMat const& other);
    ~TriMat() = default;

    /// Size n, all elements 0.
    void create(int const& dim);
    void destroy() { delete_matrix(); }
    /// Dimension 0 and no storage.
    void delete_matrix();
    /// All elements 0.
    void initialize();
    /// Storage for the present dimension, all elements 0.
    void allocate_matrix();

    [[nodiscard]] int dimension() const noexcept { return dimension_; }
    [[nodiscard]] int conventional_fst() const noexcept { return conventional_; }
    void set_conventional_fst(int flag) noexcept { conventional_ = flag; }

    /// Element (i, j), the same as (j, i).
    /// kept on purpose: an index equal to the dimension passes the test (it reaches a spare row of zeros). Any other
    /// index outside is reported (warning 1) and gives the diagonal value.
    double& operator()(int const& i, int const& j) { return *locate(i, j); }
    double const& operator()(int const& i, int const& j) const { return *const_cast<TriMat*>(this)->locate(i, j); }
    /// Stores x at (i, j); an index outside 0 .. n-1 makes it a silent no-op.
    void set_data(double x, int const& i, int const& j);

    /// Sum element by element. Other size: error 44, and nothing changes.
    TriMat& operator+=(TriMat const& other);
    /// kept on purpose: adds, as operator+= does; it is no product.
    TriMat& operator*=(TriMat const& other);

    /// Row i on a line of its own, width 10, precision 5, fixed; no newline behind the last row.
    void print_data(std::ostream& os) const;

    // For formulas: the stored triangle, without test and whatever the conventional flag says.
    /// Columns 0 .. i of row i, 0 <= i < n.
    [[nodiscard]] std::span<double const> row(int i) const noexcept {
        return {cells_.data() + start(i), static_cast<std::size_t>(i) + 1};
    }
    [[nodiscard]] std::span<double> row(int i) noexcept {
        return {cells_.data() + start(i), static_cast<std::size_t>(i) + 1};
    }
    /// The n (n + 1) / 2 elements, row after row.
    [[nodiscard]] std::span<double const> triangle() const noexcept { return {cells_.data(), start(dimension_)}; }
    [[nodiscard]] std::span<double> triangle() noexcept { return {cells_.data(), start(dimension_)}; }

private:
    [[nodiscard]] static std::size_t start(int i) noexcept {
        return static_cast<std::size_t>(i) * (static_cast<std::size_t>(i) + 1) / 2;
    }
    double* locate(int i, int j) {
        if (conventional_) return i == j ? &diagonal_ : &off_diagonal_;
        int const high = std::max(i, j);
        int const low = std::min(i, j);
        if (low < 0 || high > dimension_) [[unlikely]]
            return report_bounds();
        if (cells_.empty()) [[unlikely]]
            return &diagonal_;
        return cells_.data() + start(high) + low;
    }
    double* report_bounds();
    void add(TriMat const& other, char const* context);
    void allocate(char const* context);

    int dimension_ = 0;
    std::vector<double> cells_;  ///< n + 1 rows, the last one spare
    double diagonal_ = 0.0;
    double off_diagonal_ = 1.0;
    int conventional_ = 0;
};

}  // namespace tov
