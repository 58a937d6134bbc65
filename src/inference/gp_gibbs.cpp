// Gametic phases of one sample: the run of the sampler and its summary.
#include "inference/gp_gibbs.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <string_view>

#include "base/numtext.h"
#include "diversity/popgen.h"
#include "input/settings.h"
#include "model/alldb.h"
#include "model/pheno.h"
#include "output/tovenia_files.h"

namespace tov {

namespace {

/// Numbers of the alleles of every locus that stand for missing data, -1 for none.
std::vector<int> missing_ranks(TAlleleDB const& alleles, int loci, char missing) {
    char const text[] = {missing, '\0'};
    std::vector<int> ranks;
    for (int l = 0; l < loci; ++l) {
        TLocus const* const locus = alleles.locus(l);
        TAllele const* const allele = locus == nullptr ? nullptr : locus->find_allele_by_name(std::string_view(text));
        ranks.push_back(allele == nullptr ? -1 : allele->rank());
    }
    return ranks;
}

TGamete gamete_of(TPopHaplotype const* haplotype, std::vector<int> const& missing) {
    TGamete gamete;
    for (std::size_t l = 0; l < missing.size(); ++l) {
        int const rank = haplotype == nullptr ? -1 : haplotype->alleles().rank(static_cast<int>(l));
        gamete.push_back(rank == missing[l] ? -1 : rank);
    }
    return gamete;
}

void show_progress(char const* format, long done, long all) {
    char text[120];
    std::snprintf(text, sizeof text, format, done, all);
    settings::set_message(text);
    settings::print_message();
}

}  // namespace

TGenotSample::TGenotSample(TPhenDB const& individuals, TAlleleDB const* alleles, settings& set, char missing)
    : set_(set), alleles_(alleles), missing_(missing) {
    loci_ = individuals.num_loci();
    if (alleles_ == nullptr || loci_ == 0) {
        loci_ = 0;
        return;
    }
    std::vector<int> const missing_rank = missing_ranks(*alleles_, loci_, missing_);
    for (int i = 0; i < individuals.size(); ++i) {
        TPhenotype const& phenotype = individuals.phenotype(i);
        original_.push_back(gamete_of(phenotype.ps_hapl0(), missing_rank));
        original_.push_back(gamete_of(phenotype.ps_hapl1(), missing_rank));
        individuals_.push_back({phenotype.name().str(), {}});
    }
}

namespace {

/// Size of a microsatellite allele, to the nearest whole number; one that is no size counts as 0. Negative sizes are
/// moved down by one, as -1 stands for missing data.
std::int32_t size_code(TAllele const& allele) {
    double const size = my_atof(allele.name().c_str()) + 0.5;
    auto const whole = std::fabs(size) < 2147483647.0 ? static_cast<std::int32_t>(size) : 0;
    return whole < 0 ? whole - 1 : whole;
}

}  // namespace

/// The chain compares sizes for microsatellites, allele numbers otherwise.
KpvChain TGenotSample::make_chain() const {
    std::vector<std::int32_t> codes;
    for (TGamete const& gamete : original_) {
        for (int l = 0; l < loci_; ++l) {
            int code = gamete[l];
            if (code >= 0 && set_.DataType == MICROSAT) {
                code = size_code(*alleles_->locus(l)->allele(code));
            }
            codes.push_back(code);
        }
    }
    KpvParameters parameters;
    parameters.zone = set_.GibbsHetSiteInfluenceZone;
    parameters.alpha = set_.GibbsAlphaInitValue;
    parameters.epsilon = set_.GibbsEpsilonValue;
    parameters.gamma = set_.GibbsGamma;
    parameters.recombination = set_.GibbsPercentageOfRecSteps;
    return KpvChain(std::move(codes), loci_, parameters);
}

bool TGenotSample::walk(KpvChain& chain, long steps) {
    for (long step = 0; step < steps; ++step) {
        if ((step & 63) == 0 && *set_.is_stop()) {
            return false;
        }
        chain.step();
    }
    return true;
}

bool TGenotSample::burn_in(KpvChain& chain) {
    constexpr long shown_every = 500;
    for (long done = shown_every; done <= set_.GibbsBurnIn; done += shown_every) {
        if (!walk(chain, shown_every)) {
            return false;
        }
        settings::inc_work_done(100);
        show_progress(" burnin  KPV algorithm: %li/%li ", done, set_.GibbsBurnIn);
    }
    return walk(chain, set_.GibbsBurnIn % shown_every);
}

SampledPhase TGenotSample::phase_of(KpvChain const& chain, int individual) const {
    SampledPhase phase{original_[2 * static_cast<std::size_t>(individual)],
                       original_[2 * static_cast<std::size_t>(individual) + 1], 1};
    for (int l = 0; l < loci_; ++l) {
        if (chain.swapped(individual, l)) {
            std::swap(phase.first[l], phase.second[l]);
        }
    }
    if (phase.second < phase.first) {
        std::swap(phase.first, phase.second);
    }
    return phase;
}

bool TGenotSample::sample(KpvChain& chain) {
    chain.reset_counters();
    std::vector<std::map<std::pair<TGamete, TGamete>, std::size_t>> place(individuals_.size());
    for (int taken = 0; taken < set_.GibbsNumSamples; ++taken) {
        if (!walk(chain, set_.GibbsSamplingInterval)) {
            return false;
        }
        for (std::size_t i = 0; i < individuals_.size(); ++i) {
            SampledPhase phase = phase_of(chain, static_cast<int>(i));
            auto& phases = individuals_[i].phases;
            auto const [at, is_new] = place[i].try_emplace({phase.first, phase.second}, phases.size());
            if (is_new) {
                phases.push_back(std::move(phase));
            } else {
                ++phases[at->second].count;
            }
        }
        ++samples_taken_;
        if (samples_taken_ % 10 == 0) {
            settings::inc_work_done(300);
            show_progress(" Gibbs sampling KPV algorithm: %li/%li ", samples_taken_, set_.GibbsNumSamples);
        }
    }
    for (TGenotIndividual& individual : individuals_) {
        std::stable_sort(individual.phases.begin(), individual.phases.end(),
                         [](SampledPhase const& a, SampledPhase const& b) { return a.count > b.count; });
    }
    return true;
}

int TGenotSample::performGibbs() {
    samples_taken_ = 0;
    ambiguous_ = 0;
    if (loci_ == 0) {
        return 1;
    }
    KpvChain chain = make_chain();
    ambiguous_ = static_cast<int>(chain.ambiguous().size());
    chain.randomise_phases();
    if (ambiguous_ == 0) {
        return 1;
    }
    return burn_in(chain) && sample(chain) ? 1 : 0;
}

std::vector<EstimatedHaplotype> TGenotSample::constructEstimatedHaploDB() const {
    std::vector<EstimatedHaplotype> list;
    std::map<TGamete, std::size_t> place;
    auto const add = [&](TGamete const& gamete, double share) {
        auto const [at, is_new] = place.try_emplace(gamete, list.size());
        if (is_new) {
            list.push_back({gamete, 0.0});
        }
        list[at->second].frequency += share;
    };
    double const chromosomes = 2.0 * static_cast<double>(individuals_.size());
    for (TGenotIndividual const& individual : individuals_) {
        for (SampledPhase const& phase : individual.phases) {
            double const share = phase.count / static_cast<double>(samples_taken_) / chromosomes;
            add(phase.first, share);
            add(phase.second, share);
        }
    }
    std::stable_sort(list.begin(), list.end(), [](EstimatedHaplotype const& a, EstimatedHaplotype const& b) {
        return a.frequency > b.frequency;
    });
    return list;
}

int PopGenetics::comp_gam_phase_Gibbs(settings& s) {
    constexpr int stopped_by_user = -1000;
    TPhenDB individuals(phenotypes);
    individuals.explode_base();
    TGenotSample sample(individuals, alleles, s, profile.MissingData);
    if (!sample.performGibbs()) {
        return stopped_by_user;
    }
    if (s.GibbsNumSamples == 0) {
        return 0;
    }
    sample.writeResults(s.ofs());
    if (s.GibbsOutputGamPhase == 0) {
        return 0;
    }
    std::string base = settings::input_file.substr(settings::input_file.find_last_of("/\\") + 1);
    base = base.substr(0, base.rfind('.'));
    std::ofstream out(s.project_dir + base + "_KPV_" + std::to_string(pop_index() + 1) + ".tvp", std::ios::trunc);
    sample.writeSample(out, pop_name().str());
    return 0;
}

}  // namespace tov
