// PopulMicrosat: a sample of microsatellite haplotypes or genotypes.
#pragma once

#include <vector>

#include "diversity/popgen.h"

namespace tov {

class PopulMicrosat : public PopGenetics {
public:
    PopulMicrosat();
    ~PopulMicrosat() override;

    void test_methods(settings& s) override;
    int check_data() override;
    int compute_distance_matrix(std::ostream* out, settings* s, int scale) override;
    int evaluate_polymorphism(settings const& s) override;
    int compute_molecular_diversity(settings& s) override;
    void set_distance(DistanceChoice const& choice) override;

    /// 0 counts the loci that differ, any other value sums the squared differences of allele sizes.
    void set_distance_method(int m) { distance_method_ = m; }

    int distance_method_ = 0;

private:
    /// Allele sizes of all haplotypes at the given loci, row-major; missing data are not a number. Reports 121.
    int parse_sizes(std::vector<double>& sizes, std::vector<int> const& loci) const;
};

}  // namespace tov
