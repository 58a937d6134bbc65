// PopulDNA: life, settings of the distance, and the distances of one pair.
#include "diversity/popdna.h"

#include <string_view>

#include "run/errors.h"

namespace tov {

PopulDNA::PopulDNA() = default;
PopulDNA::~PopulDNA() = default;

void PopulDNA::initialize() {
    PopGenetics::initialize();
    initialize_DNA();
}

void PopulDNA::initialize_DNA() {
    distance_method_ = DIFF;
    gamma_a_ = 0.0;
    weights_ = SiteWeights{};
    pair_ = PairDistance{};
    frequencies_ = NucleotideFrequencies{};
    counts_ = SubstitutionCounts{};
}

void PopulDNA::clean() {
    PopulSequence::clean();
    site_class_.clear();
    frequencies_ = NucleotideFrequencies{};
}

int PopulDNA::check_data() {
    char const* const function = "PopulDNA::check_data()";
    return check_counts(function) && check_lengths(function) ? 1 : 0;
}

void PopulDNA::set_distance(DistanceChoice const& choice) {
    set_distance_method(static_cast<distance_method>(choice.method));
    set_gamma_correction(choice.gamma_a);
    weights_ = choice.weights;
}

int PopulDNA::comp_nucl_freq() {
    NucleotideFrequencies& f = frequencies_;
    if (f.c > 0.0 || f.t > 0.0 || f.a > 0.0 || f.g > 0.0) {
        return 1;
    }
    if (nb_haplotypes() == 0) {
        E.error(ErrorType::Error, "PopulDNA::comp_nucl_freq()", 108);
        return 0;
    }
    f = NucleotideFrequencies{};
    double characters = 0.0;
    std::vector<std::string_view> const contents = haplotype_contents();
    for (std::size_t i = 0; i < contents.size(); ++i) {
        double const copies = haplotype(static_cast<int>(i)).copies;
        std::size_t c = 0;
        std::size_t t = 0;
        std::size_t a = 0;
        std::size_t g = 0;
        for (char const base : contents[i]) {
            c += base == 'C';
            t += base == 'T';
            a += base == 'A';
            g += base == 'G';
        }
        f.c += copies * static_cast<double>(c);
        f.t += copies * static_cast<double>(t);
        f.a += copies * static_cast<double>(a);
        f.g += copies * static_cast<double>(g);
        characters += copies * static_cast<double>(contents[i].size());
    }
    double sum = 0.0;
    for (double* const x : {&f.c, &f.t, &f.a, &f.g}) {
        *x = characters > 0.0 ? *x / characters : 0.0;
        sum += *x;
    }
    if (sum > 0.0) {
        for (double* const x : {&f.c, &f.t, &f.a, &f.g}) {
            *x /= sum;
        }
    }
    return 1;
}

int PopulDNA::one_pair(distance_method m, char const* s1, char const* s2) {
    NucleotideMethod const method{m, weights_, gamma_a_, frequencies_};
    pair_ = nucleotide_distance(method, count_pair(s1, s2, use_site_, profile.MissingData));
    report_failure(pair_.status);
    return pair_.status == DistanceStatus::ok ? 1 : 0;
}

int PopulDNA::diff_dist(char const* s1, char const* s2) { return one_pair(DIFF, s1, s2); }
int PopulDNA::p_dist(char const* s1, char const* s2) { return one_pair(P_DIST, s1, s2); }
int PopulDNA::jk_dist(char const* s1, char const* s2) { return one_pair(JUKES_CANTOR, s1, s2); }
int PopulDNA::kim2p_dist(char const* s1, char const* s2) { return one_pair(KIMURA_2P, s1, s2); }
int PopulDNA::tajnei_dist(char const* s1, char const* s2) { return one_pair(TAJIMA_NEI, s1, s2); }
int PopulDNA::tamura_dist(char const* s1, char const* s2) { return one_pair(TAMURA, s1, s2); }
int PopulDNA::tamnei_dist(char const* s1, char const* s2) { return one_pair(TAMURA_NEI, s1, s2); }

void PopulDNA::report_failure(DistanceStatus status) {
    switch (status) {
        case DistanceStatus::ok:
            break;
        case DistanceStatus::jukes_cantor_divergent:
            E.error(ErrorType::Warning, "PopulDNA::jk_dist()", 162);
            break;
        case DistanceStatus::kimura_divergent:
            E.error(ErrorType::Warning, "PopulDNA::kim2p_dist()", 163);
            break;
        case DistanceStatus::base_absent:
            E.error(ErrorType::Error, "PopulDNA::tajnei_dist(s1, s2)", 164);
            break;
        case DistanceStatus::tajima_nei_divergent:
            E.error(ErrorType::Warning, "PopulDNA::tajnei_dist(s1, s2)", 165);
            break;
        case DistanceStatus::tamura_unbalanced:
            E.error(ErrorType::Error, "PopulDNA::tamura_dist(s1, s2)", 171);
            break;
        case DistanceStatus::log_of_zero:
            E.error(ErrorType::Error, "PopulDNA::tamura_dist(s1, s2)", 175);
            break;
        case DistanceStatus::tamura_nei_unbalanced:
            E.error(ErrorType::Warning, "PopulDNA::tamnei_dist(s1,s2)", 176);
            break;
        case DistanceStatus::tamura_nei_not_finite:
            E.error(ErrorType::Warning, "PopulDNA::tamnei_dist(s1,s2)", 176);
            E.error(ErrorType::Warning, "PopulDNA::tamnei_dist(s1,s2)", 136);
            break;
    }
}

}  // namespace tov
