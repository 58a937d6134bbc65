// The B number table: recurrence and file form.
#include "base/bnum.h"

#include <algorithm>
#include <cstdint>
#include <fstream>

#include "base/binary.h"
#include "run/errors.h"

namespace tov {

namespace {

constexpr int MOST_GENES = 5000;
constexpr int MOST_ALLELES = 1000;
constexpr std::size_t LARGEST_FILE = std::size_t{1} << 27;  // elements of a table that a file may claim

}  // namespace

BnumMat::BnumMat(int const& genes, int const& alleles) : genes_(std::max(0, genes)), alleles_(std::max(0, alleles)) {
    allocate_matrix();
}

BnumMat::BnumMat(my_string const& name) { read_from_file(name); }

void BnumMat::allocate_matrix() {
    if (loaded_) return;
    try {
        cells_ = std::vector<double>(start(genes_ + 1));
        loaded_ = true;
    } catch (std::exception const&) {  // bad_alloc or length_error
        cells_ = std::vector<double>();
        E.error(ErrorType::Memory, "BnumMat::allocate_matrix()", 0);
    }
}

int BnumMat::re_allocate_matrix(int const& genes, int const& alleles) {
    int const new_genes = std::max(0, genes);
    int const new_alleles = std::max(0, alleles);
    cells_ = std::vector<double>();
    loaded_ = false;
    if (new_genes > MOST_GENES || new_alleles > MOST_ALLELES) return 0;
    genes_ = new_genes;
    alleles_ = new_alleles;
    allocate_matrix();
    if (!loaded_) return 0;
    for (int g = 1; g <= genes_; ++g) {
        double* const row = cells_.data() + start(g);
        double const* const above = g > 1 ? cells_.data() + start(g - 1) : nullptr;
        int const last = std::min(g, alleles_);
        for (int a = 1; a <= last; ++a) {
            if (a == g) {
                row[a - 1] = 1.0;
            } else if (a == 1) {
                row[a - 1] = 1.0 / g;
            } else {
                row[a - 1] = ((g - 1) * above[a - 1] + a * above[a - 2]) / g;
            }
        }
    }
    return 1;
}

int BnumMat::read_from_file(my_string const& name) {
    file_name_ = name;
    return read_from_file();
}

int BnumMat::read_from_file() {
    std::ifstream is(file_name_.c_str(), std::ios::binary);
    if (!is) {
        E.error(ErrorType::Warning, "BnumMat::read_from_file()", 8);
        return 0;
    }
    is >> *this;
    return is ? 1 : 0;
}

std::istream& operator>>(std::istream& is, BnumMat& B) {
    if (!is) {
        E.error(ErrorType::Error, "operator>>(ifstream& is, BnumMat& S)", 9);
        return is;
    }
    std::int32_t genes = 0;
    std::int32_t alleles = 0;
    read_little_endian(is, genes);
    read_little_endian(is, alleles);
    bool const sizes_fit = genes >= 0 && alleles >= 0 && alleles <= genes &&
                           static_cast<std::size_t>(genes) * static_cast<std::size_t>(alleles) <= LARGEST_FILE;
    if (!is || !sizes_fit) {
        is.setstate(std::ios::failbit);
        E.error(ErrorType::Error, "operator>>(istream& is, BnumMat& S)", 10);
        return is;
    }
    B.cells_ = std::vector<double>();
    B.loaded_ = false;
    B.genes_ = genes;
    B.alleles_ = alleles;
    B.allocate_matrix();
    for (double& element : B.cells_) {
        if (!read_little_endian(is, element)) break;
    }
    if (!is) E.error(ErrorType::Error, "operator>>(istream& is, BnumMat& M)", 9);
    return is;
}

}  // namespace tov
