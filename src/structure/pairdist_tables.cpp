// The batch tables of the distances between pairs of samples.
#include "structure/pairdist_tables.h"

#include <cmath>
#include <sstream>
#include <string>

#include "model/sample.h"
#include "output/escape.h"
#include "output/glbobj.h"
#include "structure/formula/pairwise.h"
#include "structure/pairdist.h"

namespace tov {

namespace {

enum class Shape { triangle, square };

/// What stands above every matrix: the file, then the labels.
std::string block_head(Samples const& samples, std::string_view file) {
    std::string head = quoted(file) + '\n';
    for (int i = 0; i < samples.NbPopulations(); ++i) {
        head += (i == 0 ? "" : "\t") + quoted(samples[i]->pop_name().str());
    }
    return head + '\n';
}

/// One matrix of n samples; cell(i, j) gives its values.
template <class Cell>
std::string matrix_rows(int n, Shape shape, Cell const& cell) {
    std::ostringstream text;
    for (int i = 0; i < n; ++i) {
        int const columns = shape == Shape::square ? n : i + 1;
        for (int j = 0; j < columns; ++j) {
            double const value = cell(i, j);
            text << (j == 0 ? "" : "\t");
            if (std::isinf(value)) {
                text << "inf";
            } else {
                text << value;
            }
        }
        text << '\n';
    }
    return text.str();
}

template <class Cell>
void write_matrix(BatchStream const& table, std::string const& head, int n, Shape shape, Cell const& cell) {
    if (table) {
        *table << head << matrix_rows(n, shape, cell) << std::flush;
    }
}

/// The P-values of the FST below a line with their number of permutations; "*" stands on the diagonal.
std::string p_value_rows(PairwiseResults const& results, int n) {
    std::ostringstream text;
    text << "p-Values matrix : No of permutations : " << results.plan.permutations << '\n';
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < i; ++j) {
            text << results.p_fst(i, j) << '\t';
        }
        text << "*\n";
    }
    return text.str();
}

}  // namespace

void write_pairwise_tables(PairwiseResults const& results, Samples const& samples, std::string_view file) {
    int const n = samples.NbPopulations();
    std::string const head = block_head(samples, file);
    auto const triangle = [&](BatchStream const& table, auto const& cell) {
        write_matrix(table, head, n, Shape::triangle, cell);
    };
    auto const fst = [&](int i, int j) { return results.fst(i, j); };
    auto const derived = [&](double (*value)(double) noexcept) {
        return [&results, value](int i, int j) { return i == j ? 0.0 : value(results.fst(i, j)); };
    };
    triangle(ofs_pairw_dist, fst);
    if (ofs_pairw_dist && results.tested) {
        *ofs_pairw_dist << p_value_rows(results, n) << std::flush;
    }
    triangle(ofs_FST_dist, fst);
    triangle(ofs_varComp_dist, [&](int i, int j) { return results.va(i, j); });
    write_matrix(ofs_pairw_diffs, head, n, Shape::square, [&](int i, int j) { return results.differences(i, j); });
    if (results.divergence) {
        triangle(ofs_tau_uneq, [&](int i, int j) { return results.divergence->tau(i, j); });
    }
    triangle(ofs_concest, derived(coancestry_distance));
    triangle(ofs_slatkins, derived(linearised_fst));
    triangle(ofs_NM_vals, [&](int i, int j) { return migrants_of_fst(i == j ? 0.0 : results.fst(i, j)); });
}

}  // namespace tov
