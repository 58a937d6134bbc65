// Storage, sums and printing of the triangular matrix.
#include "base/trimat.h"

#include <iomanip>
#include <ostream>

#include "run/errors.h"

namespace tov {

namespace {

constexpr int column_width = 10;

/// With five decimals the number takes the whole column: a blank in front keeps it apart from the one before, so that a
/// matrix that is written can be read again.
bool fills_column(double x) noexcept { return !(x < 999.999995 && x > -99.999995); }

}  // namespace

TriMat::TriMat(int const& dim) : dimension_(std::max(0, dim)) { allocate("TriMat::TriMat(const int& dim"); }

TriMat::TriMat(TriMat const& other) : TriMat() { *this = other; }

TriMat& TriMat::operator=(TriMat const& other) {
    if (this == &other) return *this;
    create(other.dimension_);
    if (!other.conventional_) {
        std::copy(other.triangle().begin(), other.triangle().end(), cells_.begin());
        return *this;
    }
    for (int i = 0; i < dimension_; ++i) {
        std::ranges::fill(row(i), other.off_diagonal_);
        row(i).back() = other.diagonal_;
    }
    return *this;
}

void TriMat::create(int const& dim) {
    int const n = std::max(0, dim);
    destroy();
    dimension_ = n;
    allocate_matrix();
}

void TriMat::delete_matrix() {
    cells_ = std::vector<double>();
    dimension_ = 0;
}

void TriMat::initialize() { std::ranges::fill(cells_, 0.0); }

void TriMat::allocate_matrix() { allocate("TriMat::allocate_matrix()"); }

void TriMat::allocate(char const* context) {
    try {
        std::size_t const spare_row = static_cast<std::size_t>(dimension_) + 1;
        cells_ = std::vector<double>(dimension_ == 0 ? 0 : start(dimension_) + spare_row);
    } catch (std::exception const&) {  // bad_alloc or length_error
        delete_matrix();
        E.error(ErrorType::Memory, context, 0);
    }
}

double* TriMat::report_bounds() {
    E.error(ErrorType::Warning, "TriMat::operator()", 1);
    return &diagonal_;
}

void TriMat::set_data(double x, int const& i, int const& j) {
    int const high = std::max(i, j);
    int const low = std::min(i, j);
    if (low < 0 || high >= dimension_) return;
    cells_[start(high) + static_cast<std::size_t>(low)] = x;
}

void TriMat::add(TriMat const& other, char const* context) {
    if (dimension_ != other.dimension_) {
        E.error(ErrorType::Error, context, 44);
        return;
    }
    for (int i = 0; i < dimension_; ++i) {
        std::span<double> const cells = row(i);
        for (int j = 0; j <= i; ++j) cells[static_cast<std::size_t>(j)] += other(i, j);
    }
}

TriMat& TriMat::operator+=(TriMat const& other) {
    add(other, "TriMat::operator+=()");
    return *this;
}

TriMat& TriMat::operator*=(TriMat const& other) {
    add(other, "TriMat::operator*=()");
    return *this;
}

void TriMat::print_data(std::ostream& os) const {
    auto const flags = os.flags();
    auto const precision = os.precision(5);
    os.setf(std::ios::fixed, std::ios::floatfield);
    os.setf(std::ios::right, std::ios::adjustfield);
    os.setf(std::ios::showpoint);
    for (int i = 0; i < dimension_; ++i) {
        if (i > 0) os << '\n';
        for (int j = 0; j <= i; ++j) {
            double const element = (*this)(i, j);
            if (j > 0 && fills_column(element)) os << ' ';
            os << std::setw(column_width) << element;
        }
    }
    os.flags(flags);
    os.precision(precision);
}

}  // namespace tov
