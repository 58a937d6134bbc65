// Population: life of a sample, its accessors, and the defaults of the operations of the data types.
#include "model/popbase.h"

#include <algorithm>
#include <string_view>

namespace tov {

Population::Population() : haplotypes(-1, 10), gene_copies(-1, 10) {}

Population::Population(my_string const& name, double size) : Population() {
    sample_name = name;
    set_sample_size(size);
}

Population::~Population() = default;

void Population::test_methods(settings& /*s*/) {}

void Population::clean_bnum() {}

int Population::check_data() { return 1; }

int Population::compute_distance_matrix(std::ostream* /*out*/, settings* /*s*/, int /*scale*/) { return 0; }

int Population::evaluate_polymorphism(settings const& /*s*/) { return 1; }

void Population::initialize() {
    Population::clean();
    sample_name = my_string();
    index = -1;
    set_sample_size(0.0);
    nb_diff_haplotypes = 0;
    nb_original_haplotypes = 0;
    nb_gene_copies = 0.0;
    converted = 0;
    degrees_of_freedom = 0.0;
    monomorphic = 0;
    longitude_ = 0.0;
    latitude_ = 0.0;
    numpop_ = 0;
    app_ling_ = 0;
    ethnie_ = my_string();
    recessive_loci_ = 0;
}

void Population::clean() {
    phenotypes.destroy();
    haplotypes.Flush();
    gene_copies.Flush();
    current_haplotypes = &haplotypes;
    pool.cleanDB(2.0);
    pool.empty();
    polym_sites = std::vector<int>();
    table.release();
}

int Population::polymSite(int site) const {
    if (site < 0 || site >= static_cast<int>(polym_sites.size())) return 0;
    return polym_sites[static_cast<std::size_t>(site)];
}

void Population::set_sample_size(double size) noexcept {
    sample_size_ = size;
    inverse_sample_size_ = size > 0.0 ? 1.0 / size : 0.0;
}

PHaploDef& Population::haplotype(int i) const { return *current_haplotypes->view()[static_cast<std::size_t>(i)]; }

my_string Population::get_small_name() const {
    constexpr std::size_t head_length = 5;
    constexpr std::size_t longest_without_tail = 8;
    constexpr std::size_t tail_length = 3;
    std::string_view const name(sample_name.str());
    std::string small(name.substr(0, head_length));
    if (name.size() <= longest_without_tail) return my_string(std::move(small));
    std::string tail;
    for (std::size_t i = name.size() - 1; i > head_length && tail.size() < tail_length; --i) {
        if (name[i] != ' ') tail += name[i];
    }
    small.append(tail.rbegin(), tail.rend());
    return my_string(std::move(small));
}

int count_loci(my_string const& content, char separator) noexcept {
    std::string_view const text(content.str());
    if (!separator) return static_cast<int>(text.size());
    int pieces = 0;
    bool inside = false;
    for (char const c : text) {
        if (c != separator && !inside) ++pieces;
        inside = c != separator;
    }
    return pieces;
}

int Population::evaluate_nb_loci() const {
    if (haplotypes.GetItemsInContainer() > 0) {
        HaploDef const* const h = haplotypes.view()[0]->haplotype;
        if (!h) return 0;
        return h->content.is_null() ? h->nb_loci() : count_loci(h->content, profile.LocusSeparator);
    }
    if (phenotypes.size() == 0) return 0;
    TPhenotype const& p = phenotypes.phenotype(0);
    return p.allele_string().is_null() ? p.pheno_length() : count_loci(p.allele_string(), profile.LocusSeparator);
}

}  // namespace tov
