// Two small structures that the tests of the analysis of molecular variance share: haplotypes A and genotypes B.
#pragma once

#include <utility>
#include <vector>

#include "base/random.h"
#include "base/trimat.h"
#include "structure/formula/gene_vector.h"
#include "structure/formula/pair_sums.h"
#include "structure/formula/within_sums.h"

namespace tov::test {

/// A gene vector with its structure and distances.
struct StructureData {
    std::vector<int> genes;
    std::vector<double> copies;
    TriMat matrix;
};

inline TriMat triangle_matrix(int n, std::vector<double> const& below) {
    TriMat m(n);
    std::size_t at = 0;
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < i; ++j) {
            m.set_data(below[at++], i, j);
        }
    }
    return m;
}

/// Four samples of 9, 8, 10 and 11 copies of five haplotypes.
inline StructureData haplotypes_A() {
    std::vector<std::vector<std::pair<int, int>>> const samples = {{{0, 5}, {1, 3}, {2, 1}},
                                                                   {{0, 3}, {1, 3}, {3, 1}, {2, 1}},
                                                                   {{2, 3}, {3, 1}, {4, 2}, {0, 3}, {1, 1}},
                                                                   {{2, 2}, {4, 4}, {1, 2}, {0, 3}}};
    StructureData data;
    for (auto const& sample : samples) {
        double n = 0;
        for (auto const& [haplotype, count] : sample) {
            data.genes.insert(data.genes.end(), count, haplotype);
            n += count;
        }
        data.copies.push_back(n);
    }
    data.matrix = triangle_matrix(5, {1, 3, 2, 2, 1, 1, 4, 3, 2, 3});
    return data;
}

/// Five samples of 6, 4, 5, 7 and 4 individuals; alleles 0 to 3 are sizes, distances their squared differences.
inline StructureData genotypes_B() {
    std::vector<std::vector<int>> const samples = {{0, 0, 0, 1, 1, 1, 0, 2, 0, 0, 1, 0},
                                                   {0, 1, 0, 0, 1, 2, 2, 3},
                                                   {1, 1, 0, 1, 1, 2, 0, 0, 1, 1},
                                                   {2, 3, 0, 3, 2, 2, 1, 1, 3, 3, 0, 1, 0, 2},
                                                   {2, 2, 1, 2, 0, 3, 1, 1}};
    StructureData data;
    for (auto const& sample : samples) {
        data.genes.insert(data.genes.end(), sample.begin(), sample.end());
        data.copies.push_back(static_cast<double>(sample.size()));
    }
    data.matrix = triangle_matrix(4, {1, 4, 1, 9, 4, 1});
    return data;
}

inline void seed_one() {
    long idum = -1;
    ran3(&idum);
}

}  // namespace tov::test
