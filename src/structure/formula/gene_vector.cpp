// Permutation schemes.
#include "structure/formula/gene_vector.h"

#include <utility>

#include "base/random.h"

namespace tov {

StructureSizes::StructureSizes(std::vector<double> pop_copies, std::vector<int> pops_of_group)
    : copies(std::move(pop_copies)), group_size(std::move(pops_of_group)) {
    std::size_t p = 0;
    for (int const size : group_size) {
        double sum = 0.0;
        for (int k = 0; k < size; ++k) {
            sum += copies[p];
            total += copies[p];
            ++p;
        }
        group_copies.push_back(sum);
    }
}

void permute_genes(std::span<int> v, int hi, int lo, int stop) noexcept {
    for (int i = hi; i >= stop; --i) {
        float const r = static_cast<float>(uniform());
        int const j = lo + static_cast<int>(static_cast<float>(i - lo) * r);
        std::swap(v[i], v[j]);
    }
}

void permute_indiv(std::span<int> v, int hi, int lo, int stop) noexcept {
    for (int i = hi; i >= stop; --i) {
        double const r = uniform();
        int const j = lo + static_cast<int>((i - lo) * r);
        std::swap(v[2 * i], v[2 * j]);
        std::swap(v[2 * i + 1], v[2 * j + 1]);
    }
}

namespace {

/// Calls each(first, group) with the number of the first population of every group.
template <class Each>
void for_groups(StructureSizes const& sizes, Each&& each) {
    int first = 0;
    for (int g = 0; g < sizes.groups(); ++g) {
        if (sizes.group_size[g] > 0) {
            each(first, g);
        }
        first += sizes.group_size[g];
    }
}

void permute_genes_in_groups(StructureSizes const& sizes, std::span<int> v) {
    int base = 0;
    for_groups(sizes, [&](int first, int g) {
        int const genes = static_cast<int>(sizes.group_copies[g]);
        permute_genes(v, genes + base - 1, base, static_cast<int>(base + sizes.copies[first]));
        base += genes;
    });
}

void permute_individuals_in_groups(StructureSizes const& sizes, std::span<int> v) {
    int base = 0;
    for_groups(sizes, [&](int first, int g) {
        int const individuals = static_cast<int>(0.5 * sizes.group_copies[g]);
        permute_indiv(v, individuals + base - 1, base, static_cast<int>(0.5 * sizes.copies[first] + base));
        base += individuals;
    });
}

void permute_genes_in_populations(StructureSizes const& sizes, std::span<int> v) {
    int base = 0;
    for (double const copies : sizes.copies) {
        int const n = static_cast<int>(copies);
        permute_genes(v, n + base - 1, base, base + 2);
        base += n;
    }
}

}  // namespace

void permute(PermutationScheme scheme, StructureSizes const& sizes, std::span<int> v) noexcept {
    if (sizes.copies.empty()) {
        return;
    }
    switch (scheme) {
        case PermutationScheme::PHAPAG:
            permute_genes(v, static_cast<int>(sizes.total) - 1, 0, static_cast<int>(sizes.copies[0]));
            break;
        case PermutationScheme::PHAPWG:
            permute_genes_in_groups(sizes, v);
            break;
        case PermutationScheme::PHAIWP:
            permute_genes_in_populations(sizes, v);
            break;
        case PermutationScheme::PIAPWG:
            permute_individuals_in_groups(sizes, v);
            break;
        case PermutationScheme::PIAPAG:
            permute_indiv(v, static_cast<int>(0.5 * sizes.total - 1), 0, static_cast<int>(0.5 * sizes.copies[0]));
            break;
    }
}

void permute_populations(std::span<int> order, int first_group_size) noexcept {
    for (int i = static_cast<int>(order.size()) - 1; i > first_group_size - 1; --i) {
        int const j = static_cast<int>(i * uniform());
        std::swap(order[i], order[j]);
    }
}

}  // namespace tov
