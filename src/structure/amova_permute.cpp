// Running a design: its record, its permutation tests and the null distributions.
#include <algorithm>
#include <ctime>
#include <numeric>
#include <sstream>

#include "base/timing.h"
#include "input/settings.h"
#include "output/escape.h"
#include "output/glbobj.h"
#include "run/errors.h"
#include "structure/amova.h"

namespace tov {

namespace {

/// What a scheme exchanges, as the log tells it.
char const* meaning(AmovaTest const& test) {
    if (test.populations) {
        return "Populations among Groups";
    }
    switch (test.scheme) {
        case PermutationScheme::PHAPAG: return "Haplotypes among Populations among Groups";
        case PermutationScheme::PHAPWG: return "Haplotypes among Populations Within Groups";
        case PermutationScheme::PHAIWP: return "Haplotypes among Individuals Within Populations";
        case PermutationScheme::PIAPWG: return "Individuals among Populations Within Groups";
        case PermutationScheme::PIAPAG: return "Individuals among Populations among Groups";
    }
    return "";
}

}  // namespace

bool Amova::poll() {
    settings::inc_work_done(1.0);
    settings::print_message();
    return *view_.set.is_stop() != 0;
}

int Amova::run_design(AmovaDesign const& design, std::vector<Statistic> const& statistics) {
    if (table_.ill_defined) {
        E.error(ErrorType::Error, design.context, 2);
        return 0;
    }
    settings const& set = view_.set;
    observed_fixation = {table_.FST, table_.FSC, table_.FCT};
    results_->set_amova_results(table_);
    results_->locus = locus_;
    bool const fis = design.individuals && set.PopSpecificFIS != 0;
    bool const fst = !design.individuals && sizes_.groups() == 1 && set.PopSpecificFST != 0;
    if (fst) {
        results_->fst_per_pop = population_fst(table_, sizes_, S_, sums_.Nu);
    }
    if (fis) {
        observe_population_fis();
        results_->fis_per_pop = observed_fis_;
    }
    if (print_) {
        print_table(design);
        if (fst && table_.v_total != 1e-18) {
            print_population_fst();
        }
        if (fis && plan_.permutations == 0) {
            print_population_fis(false);
        }
    }
    if (plan_.permutations == 0) {
        write_batch_row(design);
        return 1;
    }
    results_->permutations = plan_.permutations;
    for (std::size_t test = 0; test < statistics.size(); ++test) {
        if (!run_test(design, test, statistics[test])) {
            return 0;
        }
    }
    if (print_ && set.KeepNullDistrib != 0) {
        print_histogram(design);
    }
    if (print_ && fis) {
        print_population_fis(true);
    }
    write_batch_row(design);
    return 1;
}

void Amova::write_batch_row(AmovaDesign const& design) const {
    if (!print_) {
        return;
    }
    constexpr std::size_t levels = 4;  // a design with fewer has 0 in their place
    TabRow row = batch_row(ofs_amova_res, settings::input_file);
    for (int const df : table_.df) {
        row << df;
    }
    for (double const variance : table_.variance) {
        row << variance;
    }
    for (std::size_t k = 0; k < levels; ++k) {
        row << (k < design.indices.size() ? table_.*design.indices[k].value : 0.0);
    }
    row << results_->permutations;
    for (std::size_t k = 0; k < levels; ++k) {
        row << (k < design.tests.size() ? results_->p_value[design.tests[k].slot] : 0.0);
    }
}

/// The vector as the samples hold it, before every test but the first (which runs from that state anyway).
void Amova::restore_observed(AmovaTest const& test) {
    genes_ = observed_genes_;
    if (test.populations) {
        compute_SSDP();
    }
}

int Amova::run_test(AmovaDesign const& design, std::size_t number, Statistic const& statistic) {
    AmovaTest const& test = design.tests[number];
    std::clock_t const start = std::clock();
    if (number > 0) {
        restore_observed(test);
    }
    if (print_) {
        *_AOS_ << "\t\tPermuting " << meaning(test) << ". ... \n";
    }
    std::vector<double>& null_values = results_->null_values[test.component];
    local_values_.clear();
    local_orders_.clear();
    auto const keep = [&](double value) {
        if (!local_orders_.empty()) {
            FloatsAndPops& kept = local_orders_[local_values_.size()];
            kept.value = value;
            std::copy(order_.begin(), order_.end(), kept.pops.begin());
        }
        local_values_.push_back(value);
        null_values.push_back(value);
    };
    auto const ask = [&] {
        reserve_null_values(test);
        return poll();
    };
    auto const run = [&](auto&& permutations) {
        return permutation_p<float>(plan_, table_.variance[test.component], test.tail, plan_.permutations,
                                    permutations, ask, keep);
    };
    PermutationOutcome const outcome =
        test.populations ? run(SinglePermutations([&] {
            permute_among_groups();
            return statistic.value(0.0, 0.0);
        }))
                         : run(gene_permutations(test, statistic));
    if (outcome.stopped) {
        return 0;
    }
    std::sort(local_values_.begin(), local_values_.end());
    std::stable_sort(local_orders_.begin(), local_orders_.end());
    results_->p_value[test.slot] = outcome.p;
    sorted_null_[test.component] = local_values_;
    if (print_) {
        print_test(design, number, outcome);
    }
    bool const written = view_.set.KeepNullDistrib == 0 || !print_ || write_null_file(test, milliseconds_since(start));
    if (test.populations) {
        std::iota(order_.begin(), order_.end(), 0);
    }
    return written ? 1 : 0;
}

GenePermutations Amova::gene_permutations(AmovaTest const& test, Statistic const& statistic) {
    if (statistic.within && !within_) {
        within_ = std::make_unique<WithinSums>(distances_, slices_, genes_);
    }
    return GenePermutations(test.scheme, sizes_, distances_, slices_, statistic.within ? within_.get() : nullptr,
                            statistic.individuals, genes_, [this, &statistic](PermutedSums const& sums) {
                                if (statistic.individuals == IndividualSums::by_population) {
                                    count_population_fis(sums.S, sums.individuals);
                                }
                                return statistic.value(sums.W, sums.I);
                            });
}

void Amova::reserve_null_values(AmovaTest const& test) {
    for (std::vector<double>* const values : {&local_values_, &results_->null_values[test.component]}) {
        if (values->capacity() < values->size() + poll_every) {
            values->reserve(2 * values->size() + poll_every);
        }
    }
    if (test.populations && view_.set.KeepNullDistrib != 0) {
        int const done = static_cast<int>(local_values_.size());
        local_orders_.resize(std::min(done + poll_every, plan_.permutations), {0.0, order_});
    }
}

void Amova::observe_population_fis() {
    observed_fis_.clear();
    for (std::size_t p = 0; p < slices_.size(); ++p) {
        observed_fis_.push_back(population_fis(S_[p] / sizes_.copies[p], within_individuals_[p], sizes_.copies[p]));
    }
    fis_hits_.assign(observed_fis_.size(), 0);
}

void Amova::count_population_fis(std::span<double const> S, std::span<double const> individuals) {
    for (std::size_t p = 0; p < fis_hits_.size(); ++p) {
        double const fis = population_fis(S[p] / sizes_.copies[p], individuals[p], sizes_.copies[p]);
        if (fis != undefined_fis && fis >= observed_fis_[p]) {
            ++fis_hits_[p];
        }
    }
}

void amova_results::set_amova_results(VarianceTable const& table) {
    for (std::size_t k = 0; k < 4; ++k) {
        df[k] = table.df[k];
        ssd[k] = table.ssd[k];
        variance[k] = table.variance[k];
        null_values[k].clear();
    }
    df[4] = table.df_total();
    ssd[4] = table.ssd_total;
    variance[4] = table.v_total;
    index = {table.FST, table.FSC, table.FCT, table.FIT, table.FIS};
    p_value = {};
    fst_per_pop.clear();
    fis_per_pop.clear();
    third_per_pop.clear();
    permutations = 0;
    case_number = 0;
}

}  // namespace tov
