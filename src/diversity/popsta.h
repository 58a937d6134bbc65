// PopulStandard: a sample of standard multi-locus data or of haplotype frequencies.
#pragma once

#include "diversity/popgen.h"

namespace tov {

class PopulStandard : public PopGenetics {
public:
    PopulStandard();
    ~PopulStandard() override;

    void test_methods(settings& s) override;
    int check_data() override;
    int compute_distance_matrix(std::ostream* out, settings* s, int scale) override;
    int evaluate_polymorphism(settings const& s) override;
    int compute_molecular_diversity(settings& s) override;
};

}  // namespace tov
