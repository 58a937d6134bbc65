// Storage, Mantel sums and file form of the dense matrix.
#include "base/recmat.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <numeric>
#include <utility>

#include "base/binary.h"
#include "base/random.h"
#include "run/errors.h"

namespace tov {

namespace {

constexpr std::size_t LARGEST_FILE = std::size_t{1} << 27;  // elements of a matrix that a file may claim

}  // namespace

RectMat::RectMat(int const& rows, int const& cols) : rows_(std::max(0, rows)), columns_(std::max(0, cols)) {
    allocate_matrix();
}

RectMat::RectMat(char const* name) { read_from_file(my_string(name)); }

int RectMat::allocate_matrix() {
    if (cells_) return 1;
    try {
        cells_ = std::make_shared<std::vector<double>>(offset(rows_) + static_cast<std::size_t>(columns_));
    } catch (std::exception const&) {  // bad_alloc or length_error
        rows_ = columns_ = 0;
        E.error(ErrorType::Memory, "RectMat::allocate_matrix()", 0);
    }
    return 1;
}

int RectMat::de_allocate_matrix() {
    if (!cells_) return 1;
    cells_.reset();
    rows_ = columns_ = 0;
    return 1;
}

double* RectMat::outside(int i, int j) {
    if (i >= rows_ || j >= columns_) E.error(ErrorType::Error, "RectMat::operator()", 1);
    if (cells_ && i == rows_ && j >= 0 && j < columns_) return cells_->data() + offset(i) + j;
    spare_ = 0.0;
    return &spare_;
}

int RectMat::display_matrix(std::ostream& os) const {
    if (!cells_) {
        os << "Matrix contains no data" << '\n';
        return 1;
    }
    for (int i = 0; i < rows_; ++i) {
        os << "   ";
        for (int j = 0; j < columns_; ++j) os << (*this)(i, j) << ' ';
        os << '\n';
    }
    return 1;
}

/// Tells the log when the matrix isn't square.
bool RectMat::is_square(char const* message) const {
    if (rows_ == columns_) return true;
    *_AOS_ << message;
    return false;
}

double RectMat::compute_SSX() {
    if (!is_square("RectMat::compute_SSX() : unable to proceed on non-square matrix\n")) return 0.0;
    RectMat const& self = *this;
    double sum = 0.0;
    for (int i = 1; i < rows_; ++i) {
        for (int j = 0; j < i; ++j) sum += self(i, j);
    }
    double const pairs = static_cast<double>(rows_) * (rows_ - 1) / 2.0;
    mean_ = pairs > 0.0 ? sum / pairs : 0.0;
    ssx_ = 0.0;
    for (int i = 1; i < rows_; ++i) {
        for (int j = 0; j < i; ++j) {
            double const deviation = self(i, j) - mean_;
            ssx_ += deviation * deviation;
        }
    }
    return ssx_;
}

double RectMat::computeZ(RectMat const& M) {
    if (!is_square("RectMat::Z(const RectMat& M) : unable to proceed on non-square matrix\n")) return 0.0;
    if (!index_ || static_cast<int>(index_->size()) < rows_) {
        *_AOS_ << "RectMat::Z(const RectMat& M) : index matrix not available, Z value cannot be computed\n";
        return 0.0;
    }
    if (M.rows_ < rows_ || M.columns_ < columns_) {
        *_AOS_ << "RectMat::Z(const RectMat& M) : unable to compute Z value of matrices of different size\n";
        return 0.0;
    }
    std::span<int const> const order = index();
    bool const plain = cells_ && M.cells_ && !conventional_ && !M.conventional_;
    RectMat const& self = *this;
    double sum = 0.0;
    for (int i = 1; i < rows_; ++i) {
        int const permuted = order[static_cast<std::size_t>(i)];
        if (!plain) {
            for (int j = 0; j < i; ++j) sum += self(permuted, order[static_cast<std::size_t>(j)]) * M(i, j);
            continue;
        }
        double const* const mine = self.row(permuted).data();
        double const* const other = M.row(i).data();
        for (int j = 0; j < i; ++j) sum += mine[order[static_cast<std::size_t>(j)]] * other[j];
    }
    z_ = sum;
    return z_;
}

double RectMat::sum_of_products(RectMat const& M) {
    if (!is_square("RectMat::sum_of_products(const RectMat& M) : unable to proceed on non-square matrix\n")) return 0.0;
    if (rows_ != M.rows_ || columns_ != M.columns_) {
        *_AOS_ << "RectMat::sum_of_products(const RectMat& M) : unable to compute correlation between matrices of "
                  "different size\n";
        return 0.0;
    }
    computeZ(M);
    auto const pairs = static_cast<long>(static_cast<double>(rows_) * (rows_ - 1) / 2.0);
    return z_ - static_cast<double>(pairs) * mean_ * M.mean_;
}

int RectMat::create_index() {
    index_ = std::make_shared<std::vector<int>>(static_cast<std::size_t>(rows_));
    std::iota(index_->begin(), index_->end(), 0);
    return 1;
}

int RectMat::permute_index() {
    if (!index_) create_index();
    std::vector<int>& order = *index_;
    auto left = static_cast<long>(order.size());
    while (left > 0) {
        long const r = rand_long(&left);
        --left;
        std::swap(order[static_cast<std::size_t>(r)], order[static_cast<std::size_t>(left)]);
    }
    return 1;
}

int RectMat::read_from_file(my_string const& name) {
    file_name_ = name;
    read_from_file();
    return 1;
}

int RectMat::read_from_file() {
    std::ifstream is(file_name_.c_str());
    if (!is) {
        E.error(ErrorType::Error, "RectMat::read_from_file()", 42);
        return 0;
    }
    is >> *this;
    return 1;
}

std::istream& operator>>(std::istream& is, RectMat& M) {
    if (!is) {
        E.error(ErrorType::Error, "operator>>(ifstream& is, RectMat& S)", 42);
        return is;
    }
    std::int32_t rows = 0;
    std::int32_t columns = 0;
    read_little_endian(is, rows);
    read_little_endian(is, columns);
    bool const sizes_fit = rows >= 0 && columns >= 0 && columns <= rows &&
                           static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns) <= LARGEST_FILE;
    if (!is || !sizes_fit) {
        E.error(ErrorType::Error, "operator>>(istream& is, RectMat& S)", 43);
        return is;
    }
    M.de_allocate_matrix();
    M.rows_ = rows;
    M.columns_ = columns;
    M.allocate_matrix();
    // kept on purpose: one row past the end is asked for, so that a whole file is reported as out of bounds (1) and as
    // read in error (43).
    for (int i = 0; i <= M.rows_; ++i) {
        for (int j = 0; j < M.columns_; ++j) {
            if (!read_little_endian(is, M(i, j))) break;
        }
    }
    if (!is) E.error(ErrorType::Error, "operator>>(istream& is, RectMat& M)", 43);
    return is;
}

}  // namespace tov
