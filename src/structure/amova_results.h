// The results of one analysis of molecular variance.
#pragma once

#include <array>
#include <vector>

namespace tov {

struct VarianceTable;

/// Places of the fixation indices and of their P-values.
enum AmovaIndexSlot { slot_FST, slot_FSC, slot_FCT, slot_FIT, slot_FIS, nb_index_slots };

/// One AMOVA: its table, indices, P-values and null distributions.
class amova_results {
public:
    /// Takes the table over: degrees of freedom, sums of squares and variances of the levels and of the total, and the
    /// indices. P-values become 0, null distributions empty, the case number 0.
    void set_amova_results(VarianceTable const& table);

    int locus = 0;        ///< from 0; a global run has its own
    int case_number = 0;  ///< 1 to 9 by design; 0: no design
    std::array<int, 5> df{};           ///< levels a, b, c, d and the total
    std::array<double, 5> ssd{};
    std::array<double, 5> variance{};
    std::array<double, nb_index_slots> index{};
    std::array<double, nb_index_slots> p_value{};
    std::array<std::vector<double>, 4> null_values;  ///< of Va, Vb, Vc, Vd, in the order of permutation
    std::vector<double> fst_per_pop;
    std::vector<double> fis_per_pop;
    std::vector<double> third_per_pop;
    int permutations = 0;  ///< done for each test
};

/// FST, FSC and FCT of the last analysis, for the detection of selected loci; 0 where its design has none.
struct ObservedFixation {
    double FST = 0.0;
    double FSC = 0.0;
    double FCT = 0.0;
};
extern ObservedFixation observed_fixation;

}  // namespace tov
