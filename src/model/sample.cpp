// Samples: checks and conversions over all samples of a project.
#include "model/sample.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>
#include <unordered_map>

#include "run/errors.h"

namespace tov {

Samples::Samples() : populations(-1, 10) {}

Samples::~Samples() = default;

Population* Samples::operator[](int i) const { return populations.view()[static_cast<std::size_t>(i)]; }

int Samples::Add(Population* population) { return populations.Add(population); }

void Samples::set_profile(ProfileSettings const& profile) { ProfileSettings::operator=(profile); }

void Samples::clean() {
    for (Population* const p : populations.view()) p->clean();
    populations.Flush();
    geo_distances = std::vector<double>();
}

// --- Checks ---

namespace {

bool wholly_missing(AlleleRow const& row, std::string_view missing) {
    if (row.IsEmpty()) return false;
    for (int p = 0; p < row.size(); ++p) {
        TAllele const* const a = row[p];
        if (!a || !(a->name() == missing)) return false;
    }
    return true;
}

// The codes of a wrong number of loci: within a sample, and between samples.
struct LengthCodes {
    int within;
    int between;
};

// Compares a length with the first of the project. @return false after a report.
class LengthCheck {
public:
    explicit LengthCheck(LengthCodes codes) : codes_(codes) {}
    void next_sample() { first_of_sample_ = true; }
    [[nodiscard]] bool passes(int length) {
        if (length_ < 0) length_ = length;
        bool const same = length == length_;
        if (!same) {
            E.error(ErrorType::Error, "Samples::verify_data()", first_of_sample_ ? codes_.between : codes_.within);
        }
        first_of_sample_ = false;
        return same;
    }

private:
    LengthCodes codes_;
    int length_ = -1;
    bool first_of_sample_ = true;
};

bool same_lengths(Samples const& samples) {
    LengthCheck haplotypes({70, 71});
    LengthCheck phenotypes({69, 71});
    for (Population const* const population : samples.populations.view()) {
        haplotypes.next_sample();
        phenotypes.next_sample();
        for (PHaploDef const* const h : population->haplotypes.view()) {
            if (h->haplotype && !haplotypes.passes(h->haplotype->nb_loci())) return false;
        }
        for (TPhenotype const* const p : population->phenotypes.view()) {
            if (!phenotypes.passes(p->pheno_length())) return false;
        }
    }
    return true;
}

void detach_missing_haplotypes(Population& population, std::string_view missing) {
    auto& list = population.haplotypes;
    for (int i = list.GetItemsInContainer() - 1; i >= 0; --i) {
        PHaploDef const& h = *list.view()[static_cast<std::size_t>(i)];
        if (!h.haplotype || !wholly_missing(*h.haplotype, missing)) continue;
        population.set_sample_size(population.sample_size() - h.copies);
        list.Detach(i);
        if (population.nb_diff_haplotypes > 0) --population.nb_diff_haplotypes;
    }
}

void detach_missing_phenotypes(Population& population, std::string_view missing) {
    auto& list = population.phenotypes;
    for (int i = list.size() - 1; i >= 0; --i) {
        TPhenotype const& p = list.phenotype(i);
        if (!p.ps_hapl0() || !p.ps_hapl1()) continue;
        if (!wholly_missing(p.ps_hapl0()->alleles(), missing) || !wholly_missing(p.ps_hapl1()->alleles(), missing)) {
            continue;
        }
        population.set_sample_size(population.sample_size() - 2.0 * p.obs_count());
        list.Detach(i);
    }
}

}  // namespace

int Samples::verify_data() {
    if (!same_lengths(*this)) return 0;
    std::string_view const missing(&MissingData, 1);
    for (Population* const population : populations.view()) {
        if (population->is_genotypic()) {
            detach_missing_phenotypes(*population, missing);
        } else {
            detach_missing_haplotypes(*population, missing);
        }
        bool const empty =
            population->is_genotypic() ? population->phenotypes.IsEmpty() : population->haplotypes.IsEmpty();
        if (empty) {
            E.error(ErrorType::Error, "Samples::verify_data()", population->is_genotypic() ? 152 : 108);
            return 0;
        }
    }
    return 1;
}

// --- Conversions ---

void Samples::convert_dna_upper(Haplo_DB& db) {
    if (DataType != DNA) return;
    for (HaploDef* const h : db.list().view()) h->content.to_upper();
    db.reindex();
    for (Population* const population : populations.view()) {
        for (TPhenotype* const p : population->phenotypes.view()) {
            for (int which = 0; which < 2; ++which) p->allele_string(which).to_upper();
        }
    }
}

void Samples::rm_separators(Haplo_DB& db) {
    if (!LocusSeparator) return;
    db.rm_separators(LocusSeparator);
    for (Population* const population : populations.view()) {
        for (TPhenotype* const p : population->phenotypes.view()) {
            for (int which = 0; which < 2; ++which) std::erase(p->allele_string(which).str(), LocusSeparator);
        }
    }
}

void Samples::build_all_vectors(char const& separator) {
    for (Population* const population : populations.view()) population->build_allele_vectors(separator);
}

void Samples::phen_to_gam(Haplo_DB& db, ProfileSettings* profile, settings* s) {
    // Every individual gets entries of its own.
    std::int64_t individuals = 0;
    for (Population const* const population : populations.view())
        individuals += population->phenotypes.nb_individuals();
    if (!has_room(static_cast<int>(std::min<std::int64_t>(individuals, std::numeric_limits<int>::max())),
                  "Samples::phen_to_gam()"))
        return;
    for (Population* const population : populations.view()) population->phen_to_gam(&db, profile, s);
}

void Samples::h_pop_db_to_gam(Haplo_DB& db) {
    for (Population* const population : populations.view()) population->h_pop_db_to_gam(&db, nullptr);
}

void Samples::init_all_pointers(TAlleleDB* alleles) {
    for (Population* const population : populations.view()) population->alleles = alleles;
}

void Samples::sum_copies(Haplo_DB& db) const {
    for (HaploDef* const h : db.list().view()) h->copies = 0;
    for (Population const* const population : populations.view()) {
        for (PHaploDef const* const h : population->haplotypes.view()) {
            if (h->haplotype) h->haplotype->copies += h->copies;
        }
    }
}

// --- Geography ---

void Samples::normalize_coord() {
    // kept on purpose: the extremes start from 0, so that coordinates of one sign keep the origin in view.
    double west = 0.0;
    double east = 0.0;
    double south = 0.0;
    double north = 0.0;
    for (Population const* const p : populations.view()) {
        west = std::min(west, p->longitude());
        east = std::max(east, p->longitude());
        south = std::min(south, p->latitude());
        north = std::max(north, p->latitude());
    }
    auto const share = [](double x, double low, double high) { return high > low ? (x - low) / (high - low) : 0.0; };
    for (Population* const p : populations.view()) {
        p->init_front_settings(share(p->longitude(), west, east), share(p->latitude(), south, north));
        *_AOS_ << p->pop_name().str() << '\t' << p->longitude() << '\t' << p->latitude() << '\n';
    }
}

void Samples::calc_geo_dist() {
    auto const n = static_cast<std::size_t>(NbPopulations());
    geo_distances.assign(n * n, 0.0);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            Population const& a = *populations.view()[i];
            Population const& b = *populations.view()[j];
            double const d = std::hypot(a.longitude() - b.longitude(), a.latitude() - b.latitude());
            geo_distances[i * n + j] = geo_distances[j * n + i] = d;
        }
    }
}

}  // namespace tov
