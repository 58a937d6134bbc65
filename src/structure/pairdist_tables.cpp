// The batch tables of the distances between pairs of samples.
#include "structure/pairdist_tables.h"

#include <string>

#include "model/sample.h"
#include "output/glbobj.h"
#include "structure/formula/pairwise.h"
#include "structure/pairdist.h"

namespace tov {

namespace {

enum class Shape { triangle, square };

/// One matrix of the samples behind two lines, the file and their names; cell(i, j) gives its values.
template <class Cell>
void write_matrix(BatchStream const& table, Samples const& samples, std::string_view file, Shape shape,
                  Cell const& cell) {
    if (!table) {
        return;
    }
    TabRow(*table).quoted(file);
    int const n = samples.NbPopulations();
    {
        TabRow names(*table);
        for (int i = 0; i < n; ++i) {
            names.quoted(samples[i]->pop_name().str());
        }
    }
    for (int i = 0; i < n; ++i) {
        TabRow row(*table);
        int const columns = shape == Shape::square ? n : i + 1;
        for (int j = 0; j < columns; ++j) {
            row << cell(i, j);
        }
    }
    table->flush();
}

/// The P-values of the FST below a line with their number of permutations; "*" stands on the diagonal.
void write_p_values(BatchStream const& table, PairwiseResults const& results, int n) {
    if (!table) {
        return;
    }
    TabRow(*table) << "p-Values matrix : No of permutations : " + std::to_string(results.plan.permutations);
    for (int i = 0; i < n; ++i) {
        TabRow row(*table);
        for (int j = 0; j < i; ++j) {
            row << results.p_fst(i, j);
        }
        row << "*";
    }
    table->flush();
}

}  // namespace

void write_pairwise_tables(PairwiseResults const& results, Samples const& samples, std::string_view file) {
    auto const triangle = [&](BatchStream const& table, auto const& cell) {
        write_matrix(table, samples, file, Shape::triangle, cell);
    };
    auto const fst = [&](int i, int j) { return results.fst(i, j); };
    auto const derived = [&](double (*value)(double) noexcept) {
        return [&results, value](int i, int j) { return i == j ? 0.0 : value(results.fst(i, j)); };
    };
    triangle(ofs_pairw_dist, fst);
    if (results.tested) {
        write_p_values(ofs_pairw_dist, results, samples.NbPopulations());
    }
    triangle(ofs_FST_dist, fst);
    triangle(ofs_varComp_dist, [&](int i, int j) { return results.va(i, j); });
    write_matrix(ofs_pairw_diffs, samples, file, Shape::square,
                 [&](int i, int j) { return results.differences(i, j); });
    if (results.divergence) {
        triangle(ofs_tau_uneq, [&](int i, int j) { return results.divergence->tau(i, j); });
    }
    triangle(ofs_concest, derived(coancestry_distance));
    triangle(ofs_slatkins, derived(linearised_fst));
    triangle(ofs_NM_vals, [&](int i, int j) { return migrants_of_fst(i == j ? 0.0 : results.fst(i, j)); });
}

}  // namespace tov
