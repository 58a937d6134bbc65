// The columns of the table of chosen statistics.
#include "output/sumstat_columns.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>

#include "diversity/formula/locus_statistics.h"
#include "diversity/pooled_range.h"
#include "diversity/popdna.h"
#include "input/settings.h"
#include "model/sample.h"
#include "structure/amova_results.h"
#include "structure/amova_table.h"
#include "structure/pairdist.h"

namespace tov {

namespace {

constexpr double not_computed = -1.0;

/// A statistic of one sample with its deviation over loci.
using Statistic = std::function<MeanSd(PopGenetics const&)>;

/// Haplotypes as wholes, not loci, are what these data count.
bool counts_haplotypes(PopGenetics const& sample) {
    return sample.profile.DataType == DNA || sample.profile.DataType == FREQUENCY;
}

MeanSd alleles_of(PopGenetics const& p) {
    return counts_haplotypes(p) ? MeanSd{static_cast<double>(p.nb_haplotypes()), 0.0}
                                : p.locus_table().over_all.alleles;
}

MeanSd heterozygosity_of(PopGenetics const& p) {
    if (!counts_haplotypes(p)) {
        return p.locus_table().over_all.exp_het;
    }
    double const h = p.sample_heterozygosity();
    return {h, h == not_computed ? not_computed : 0.0};
}

/// Polymorphic sites or loci; the deviation is that of the flags of the loci.
MeanSd segregating_sites_of(PopGenetics const& p) {
    if (p.use_site().empty()) {
        return {};
    }
    double const sites = p.numPolymSites();
    if (counts_haplotypes(p)) {
        return {sites, 0.0};
    }
    std::vector<double> flags;
    for (int const alleles : p.locus_table().alleles) {
        flags.push_back(alleles > 1 ? 1.0 : 0.0);
    }
    return {sites, flags.empty() ? not_computed : mean_over_loci(flags, p.nb_loci()).sd};
}

MeanSd over_sizes(PopGenetics const& p, MeanSd LocusMeans::*column) {
    return p.profile.DataType == MICROSAT ? p.locus_table().over_all.*column : MeanSd{};
}

/// Number of alleles over the range of all samples together plus 1, mean over loci with data.
MeanSd modified_garza_williamson(std::span<PopGenetics const* const> all, PopGenetics const& p) {
    if (p.profile.DataType != MICROSAT) {
        return {};
    }
    std::vector<double> values;
    auto const& alleles = p.locus_table().alleles;
    for (std::size_t l = 0; l < alleles.size(); ++l) {
        if (auto const range = pooled_range(all, static_cast<int>(l))) {
            values.push_back(alleles[l] / (*range + 1.0));
        }
    }
    if (values.empty()) {
        return {};
    }
    ColumnMean const m = mean_over_loci(values, static_cast<int>(alleles.size()));
    return {m.mean, m.sd};
}

/// Fs as the test leaves it, which is 0 where it can't be computed; -1 for the data that it refuses.
MeanSd fu_fs_of(PopGenetics const& p) { return {p.phase_known() ? p.fusFS() : not_computed, not_computed}; }

/// The design of an analysis defines the index. FST is kept for individuals in several groups too, whose document lacks
/// it.
bool has_index(AmovaCase const& design, AmovaIndexSlot slot) {
    auto const& shown = design.averages;
    return std::find(shown.begin(), shown.end(), slot == slot_FST && design.blocks.size() > 3 ? slot_FCT : slot) !=
           shown.end();
}

double mean_of(std::vector<double> const& values) {
    double sum = 0.0;
    for (double const value : values) {
        sum += value;
    }
    return values.empty() ? not_computed : sum / static_cast<double>(values.size());
}

/// Walks over all columns in the order of the table.
class ColumnWalk {
public:
    ColumnWalk(TSumStat const& wanted, SumStatSource const& source) : wanted_(wanted), source_(source) {
        for (int i = 0; i < source.samples.NbPopulations(); ++i) {
            if (auto const* const sample = dynamic_cast<PopGenetics const*>(source.samples[i])) {
                samples_.push_back(sample);
            }
        }
    }

    std::vector<SumStatColumn> walk() {
        constexpr long indices = task::standard_indices;
        constexpr long sites = task::standard_indices | task::molecular_diversity;
        family("K", indices, alleles_of);
        family("H", indices, heterozygosity_of);
        family("S", sites, segregating_sites_of);
        family("TAJIMAD", task::tajima, [](PopGenetics const& p) { return MeanSd{p.tajimaD(), not_computed}; });
        family("FUFS", task::fu_fs, fu_fs_of);
        family("PI", task::molecular_diversity, [](PopGenetics const& p) { return MeanSd{p.pi(), not_computed}; });
        family("GW", indices, [](PopGenetics const& p) { return over_sizes(p, &LocusMeans::garza_williamson); });
        family("NGW", indices, [this](PopGenetics const& p) { return modified_garza_williamson(samples_, p); });
        family("RANGE", indices, [](PopGenetics const& p) { return over_sizes(p, &LocusMeans::range); });
        linkage();
        global_indices();
        pairs();
        return std::move(columns_);
    }

private:
    void add(std::string title, double value) { columns_.push_back({std::move(title), value}); }

    /// The keyword when the definition asks for it and it has columns of this kind; otherwise null.
    [[nodiscard]] SumStatKeyword const* asked(std::string_view word, ColumnsPer per) const {
        if (!wanted_.flag(word)) {
            return nullptr;
        }
        auto const* const keyword =
            std::find_if(sum_stat_keywords.begin(), sum_stat_keywords.end(),
                         [word](SumStatKeyword const& candidate) { return candidate.word == word; });
        return keyword->per == per ? keyword : nullptr;
    }

    /// One column a sample, with the number of the sample.
    template <class Value>
    void each_sample(std::string_view word, Value const& value) {
        if (auto const* const keyword = asked(word, ColumnsPer::sample)) {
            for (std::size_t i = 0; i < samples_.size(); ++i) {
                add(std::string(keyword->title) + std::to_string(i + 1), value(*samples_[i]));
            }
        }
    }

    template <class Value>
    void one(std::string_view word, Value const& value) {
        if (auto const* const keyword = asked(word, ColumnsPer::project)) {
            add(std::string(keyword->title), value());
        }
    }

    /// Columns of one statistic; -1 in all of them when none of its tasks is on.
    ///
    /// @param key  as the keywords name it.
    void family(std::string const& key, long tasks, Statistic const& computed) {
        bool const on = source_.set.wants(tasks);
        Statistic const statistic = [&](PopGenetics const& p) { return on ? computed(p) : MeanSd{}; };
        each_sample("ALL_" + key, [&](PopGenetics const& p) { return statistic(p).mean; });
        each_sample("ALLSD_" + key, [&](PopGenetics const& p) { return statistic(p).sd; });
        each_sample("PRIVATE_" + key, [on](PopGenetics const& p) {
            auto const* const sample = dynamic_cast<PopulDNA const*>(&p);
            return on && sample != nullptr ? sample->substitution_counts().private_sites : not_computed;
        });
        one("MEAN_" + key, [&] { return over_samples(statistic).mean; });
        one("SD_" + key, [&] { return over_samples(statistic).sd; });
        one("TOT_" + key, [&] { return on && !samples_.empty() ? computed(pooled()).mean : not_computed; });
    }

    /// Mean and deviation over the samples with a value; the deviation of one value is 0.
    [[nodiscard]] MeanSd over_samples(Statistic const& statistic) const {
        std::vector<double> values;
        for (PopGenetics const* const sample : samples_) {
            double const value = statistic(*sample).mean;
            if (value != not_computed) {
                values.push_back(value);
            }
        }
        MeanSd result{mean_of(values), values.empty() ? not_computed : 0.0};
        if (values.size() > 1) {
            double squares = 0.0;
            for (double const value : values) {
                squares += (value - result.mean) * (value - result.mean);
            }
            result.sd = std::sqrt(squares / static_cast<double>(values.size() - 1));
        }
        return result;
    }

    /// All gene copies of the project as one sample, with what the columns need.
    PopGenetics const& pooled() {
        if (pooled_) {
            return *pooled_;
        }
        std::unique_ptr<Population> made = new_population(samples_.front()->profile.DataType);
        made->profile = samples_.front()->profile;
        made->set_index(-1);  // no place among the frequencies by sample
        for (PopGenetics const* const sample : samples_) {
            *made += *sample;
        }
        pooled_.reset(dynamic_cast<PopGenetics*>(made.release()));
        std::ostringstream nowhere;
        // The sites of the pool are no sites of the project's samples.
        auto const global_sites = PopGenetics::globalSubstPolymSites;
        pooled_->evaluate_polymorphism(source_.set);
        PopGenetics::globalSubstPolymSites = global_sites;
        pooled_->calc_sample_homozygosity();
        if (pooled_->is_genotypic()) {
            pooled_->OutputAllelelNumberAndHetPerLocusDipl(pooled_->phenotypes, nowhere, source_.set, false, false,
                                                           false);
        } else {
            pooled_->OutputAllelelNumberAndHetPerLocusHapl(nowhere, source_.set, false, false, false);
        }
        return *pooled_;
    }

    // --- Linkage ---
    void linkage() {
        linkage_of("MEAN_ALL_DPRIME", &LinkageSummary::mean_Dprime);
        linkage_of("MEAN_ALL_R2", &LinkageSummary::mean_r2);
        neighbours("ALL_ADJ_DPRIME", &LinkageSummary::adj_Dprime);
        neighbours("ALL_ADJ_R2", &LinkageSummary::adj_r2);
        mean_of_neighbours("MEAN_ADJ_DPRIME", &LinkageSummary::adj_Dprime);
        mean_of_neighbours("MEAN_ADJ_R2", &LinkageSummary::adj_r2);
        linkage_of("FLANK_DPRIME", &LinkageSummary::flank_Dprime);
        linkage_of("FLANK_R2", &LinkageSummary::flank_r2);
    }

    void linkage_of(std::string_view word, double LinkageSummary::*value) {
        each_sample(word, [value](PopGenetics const& p) { return p.linkage_.*value; });
    }

    /// Pairs of neighbouring loci that a sample can have: so many columns, whatever the sample has.
    [[nodiscard]] std::size_t most_neighbours() const {
        TAlleleDB const* const alleles = samples_.empty() ? nullptr : samples_.front()->alleles;
        int const loci = alleles == nullptr ? 0 : alleles->nb_loci();
        return loci > 1 ? static_cast<std::size_t>(loci) - 1 : 1;
    }

    /// One column a pair of neighbouring loci and sample: number of the pair, then of the sample.
    void neighbours(std::string_view word, std::vector<double> LinkageSummary::*list) {
        auto const* const keyword = asked(word, ColumnsPer::locus_pair);
        if (keyword == nullptr) {
            return;
        }
        std::size_t const most = most_neighbours();
        for (std::size_t i = 0; i < samples_.size(); ++i) {
            auto const& values = samples_[i]->linkage_.*list;
            for (std::size_t pair = 0; pair < most; ++pair) {
                add(std::string(keyword->title) + std::to_string(pair + 1) + "_" + std::to_string(i + 1),
                    pair < values.size() ? values[pair] : not_computed);
            }
        }
    }

    void mean_of_neighbours(std::string_view word, std::vector<double> LinkageSummary::*list) {
        each_sample(word, [list](PopGenetics const& p) {
            std::vector<double> values = p.linkage_.*list;
            std::erase(values, not_computed);
            return mean_of(values);
        });
    }

    // --- Structure ---
    void global_indices() {
        if (asked("GLOBAL_FSTAT", ColumnsPer::index) == nullptr) {
            return;
        }
        amova_results const* const amova = source_.amova;
        AmovaCase const* const design = amova == nullptr ? nullptr : amova_case(amova->case_number);
        for (AmovaIndexSlot const slot : {slot_FIS, slot_FST, slot_FCT, slot_FSC, slot_FIT}) {
            add(index_name(slot), design != nullptr && has_index(*design, slot) ? amova->index[slot] : not_computed);
        }
    }

    void pairs() {
        PairwiseResults const* const r = source_.pairs;
        bool const fst = r != nullptr && r->has_fst, delta_mu = r != nullptr && r->has_delta_mu;
        each_pair("PAIRWISE_FST", [&](int i, int j) { return fst ? r->fst(i, j) : not_computed; });
        each_pair("PAIRWISE_PI", [&](int i, int j) { return fst ? r->differences(j, i) : not_computed; });
        each_pair("PAIRWISE_DMUSQR", [&](int i, int j) { return delta_mu ? r->delta_mu(i, j) : not_computed; });
    }

    /// The lower triangle, row by row.
    template <class Value>
    void each_pair(std::string_view word, Value const& value) {
        auto const* const keyword = asked(word, ColumnsPer::sample_pair);
        if (keyword == nullptr) {
            return;
        }
        int const n = source_.samples.NbPopulations();
        for (int i = 1; i < n; ++i) {
            for (int j = 0; j < i; ++j) {
                add(std::string(keyword->title) + std::to_string(i + 1) + "_" + std::to_string(j + 1), value(i, j));
            }
        }
    }

    TSumStat const& wanted_;
    SumStatSource const& source_;
    std::vector<PopGenetics const*> samples_;  // borrowed
    std::unique_ptr<PopGenetics> pooled_;      // owned; made when first asked for
    std::vector<SumStatColumn> columns_;
};

}  // namespace

std::vector<SumStatColumn> sum_stat_columns(TSumStat const& wanted, SumStatSource const& source) {
    return ColumnWalk(wanted, source).walk();
}

}  // namespace tov
