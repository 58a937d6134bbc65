// Samples::WriteSummaryStatistics: the comparison of all samples, family by family.
#include <algorithm>
#include <functional>
#include <limits>
#include <ostream>

#include "diversity/formula/heterozygosity.h"
#include "diversity/formula/locus_statistics.h"
#include "diversity/pooled_range.h"
#include "diversity/popdna.h"
#include "input/settings.h"
#include "model/sample.h"
#include "output/html_out.h"
#include "output/style.h"
#include "output/summary_table.h"

namespace tov {

namespace {

using Value = std::function<double(PopGenetics const&)>;

/// The samples with their statistics, and how rows are made of them.
class Summary {
public:
    Summary(Samples const& samples, settings const& set) : samples_(samples), set_(set) {
        for (int i = 0; i < samples.NbPopulations(); ++i) {
            auto const* const population = dynamic_cast<PopGenetics const*>(samples[i]);
            if (population != nullptr) {
                populations_.push_back(population);
                names_.push_back(population->pop_name().str());
            }
        }
    }

    void print(std::ostream& out) {
        print_heading(out);
        bool const microsatellites = samples_.DataType == MICROSAT;
        if (set_.wants(task::standard_indices)) {
            show(out, basic());
            show(out, heterozygosity());
            if (microsatellites || samples_.DataType == STANDARD) {
                show(out, theta_h(false));
            }
            if (microsatellites) {
                show(out, theta_h(true));
            }
            show(out, alleles());
            if (microsatellites) {
                show(out, allelic_range());
                show(out, garza_williamson());
                show(out, modified_garza_williamson());
            }
        }
        if (set_.wants(task::molecular_diversity)) {
            show(out, molecular());
        }
        if (set_.wants(task::ewens_watterson | task::chakraborty | task::tajima | task::fu_fs)) {
            show(out, neutrality());
        }
        if (set_.wants(task::mismatch)) {
            show(out, mismatch());
        }
    }

private:
    void print_heading(std::ostream& out) const {
        bool const groups = samples_.pooled != 0;
        print_js_aux_entry(set_, 1, groups ? "_gr_summary" : "_samp_summary",
                           groups ? "Within-groups summary" : "Within-samples summary");
        out << "\n\n" << rule{80, '='} << "\n== Summary of computations done within "
            << (groups ? "groups" : "populations") << "\n" << rule{80, '='} << "\n";
    }

    void show(std::ostream& out, SummaryTable const& table) const {
        print_summary_table(out, set_, table, names_, samples_.pooled != 0);
    }

    [[nodiscard]] SummaryRow row(std::string label, Value const& value, int precision = 5) const {
        SummaryRow r{std::move(label), {}, precision};
        for (PopGenetics const* const population : populations_) {
            r.values.push_back(value(*population));
        }
        return r;
    }
    [[nodiscard]] SummaryRow count(std::string label, Value const& value) const {
        return row(std::move(label), value, 0);
    }

    [[nodiscard]] int loci() const {
        std::size_t most = 0;
        for (PopGenetics const* const population : populations_) {
            most = std::max(most, population->locus_table().copies.size());
        }
        return static_cast<int>(most);
    }

    /// One row a locus; a sample without the locus has no value.
    template <class Column>
    [[nodiscard]] std::vector<SummaryRow> locus_rows(Column LocusTable::*column, int precision) const {
        std::vector<SummaryRow> rows;
        for (int l = 0; l < loci(); ++l) {
            rows.push_back(row(
                std::to_string(l + 1),
                [&](PopGenetics const& p) {
                    auto const& values = p.locus_table().*column;
                    return l < static_cast<int>(values.size()) ? static_cast<double>(values[l]) : -1.0;
                },
                precision));
        }
        return rows;
    }

    /// Counts of the alleles of a locus over all samples.
    [[nodiscard]] std::vector<double> pooled_counts(int locus) const {
        TAlleleDB const* const database = populations_.empty() ? nullptr : populations_.front()->alleles;
        TLocus const* const home = database == nullptr ? nullptr : database->locus(locus);
        std::vector<double> counts;
        for (int a = 0; home != nullptr && a < home->nb_alleles(); ++a) {
            double sum = 0.0;
            double const* const frequencies = home->allele(a)->pop_freq();
            for (int s = 0; frequencies != nullptr && s < home->allele(a)->pop_freq_slots() &&
                            s < static_cast<int>(populations_.size()); ++s) {
                auto const& copies = populations_[s]->locus_table().copies;
                sum += locus < static_cast<int>(copies.size()) ? frequencies[s] * copies[locus] : 0.0;
            }
            if (sum > 0.0) {
                counts.push_back(sum);
            }
        }
        return counts;
    }

    [[nodiscard]] SummaryTable basic() const {
        SummaryTable t{"Basic indices", "Basic", "\nBasic properties\n", "Statistics", "", "", false, {}};
        t.rows = {count("No. of gene copies", [](PopGenetics const& p) { return p.nb_genes(); }),
                  count("No. of loci", [](PopGenetics const& p) { return p.nb_loci_; }),
                  count("No. of usable loci", [](PopGenetics const& p) { return p.nb_usable_loci_; }),
                  count("No. of polym. loci", [](PopGenetics const& p) { return p.num_polym_sites_; })};
        return t;
    }

    [[nodiscard]] SummaryTable heterozygosity() const {
        SummaryTable t{"Heterozygosity", "het", "\nExpected heterozygosity", "Locus#", "Tot. Het.",
                       "sumExpHeterozygosity", true, locus_rows(&LocusTable::exp_het, 5)};
        for (std::size_t l = 0; l < t.rows.size(); ++l) {
            t.rows[l].total = expected_heterozygosity(pooled_counts(static_cast<int>(l)));
        }
        return t;
    }

    /// Theta from the heterozygosity of each locus, under infinite alleles or one-step mutations.
    [[nodiscard]] SummaryTable theta_h(bool stepwise) const {
        SummaryTable t{
            "Theta(H)",
            stepwise ? "thetaH_smm" : "thetaH",
            stepwise ? "\nTheta(H) under the stepwise mutation model" : "\nTheta(H) under the infinite-allele model",
            "Locus#",
            "",
            stepwise ? "sumThetaH_smm" : "sumThetaH",
            true,
            locus_rows(&LocusTable::exp_het, 5)};
        double const none = std::numeric_limits<double>::infinity();
        auto const theta = [&](double h) {
            if (!(h >= 0.0) || h >= 1.0) {
                return none;
            }
            return stepwise ? 0.5 * (1.0 / ((1.0 - h) * (1.0 - h)) - 1.0) : h / (1.0 - h);
        };
        for (SummaryRow& r : t.rows) {
            for (double& value : r.values) {
                value = theta(value);
            }
        }
        t.rows.push_back(row("Theta from Mean H", [&](PopGenetics const& p) {
            return theta(p.locus_table().over_all.exp_het.mean);
        }));
        t.rows.back().is_locus = false;
        return t;
    }

    [[nodiscard]] SummaryTable alleles() const {
        SummaryTable t{"No. of alleles", "numAll", "\nNumber of alleles", "Locus#", "Tot. number", "sumNumAlleles",
                       true, locus_rows(&LocusTable::alleles, 0)};
        for (std::size_t l = 0; l < t.rows.size(); ++l) {
            t.rows[l].total = static_cast<double>(pooled_counts(static_cast<int>(l)).size());
        }
        return t;
    }

    [[nodiscard]] SummaryTable allelic_range() const {
        SummaryTable t{"Allelic range", "allRange", "\nAllelic size range", "Locus#", "Tot. range",
                       "sumAllelicSizeRange", true, locus_rows(&LocusTable::range, 0)};
        for (std::size_t l = 0; l < t.rows.size(); ++l) {
            t.rows[l].total = pooled_range(populations_, static_cast<int>(l)).value_or(-1.0);
        }
        return t;
    }

    [[nodiscard]] SummaryTable garza_williamson() const {
        return {"Garza-Williamson index", "GW", "\nGarza-Williamson index", "Locus#", "", "sumGWIndex", true,
                locus_rows(&LocusTable::garza_williamson, 5)};
    }

    [[nodiscard]] SummaryTable modified_garza_williamson() const {
        SummaryTable t{"Garza-Williamson modified index", "GWN", "\nGarza-Williamson modified index", "Locus#", "",
                       "sumModGWIndex", true, {}};
        for (int l = 0; l < loci(); ++l) {
            auto const range = pooled_range(populations_, l);
            t.rows.push_back(row(std::to_string(l + 1), [&](PopGenetics const& p) {
                auto const& alleles = p.locus_table().alleles;
                return range && l < static_cast<int>(alleles.size()) ? alleles[l] / (*range + 1.0) : -1.0;
            }));
        }
        return t;
    }

    /// Sites with a substitution in at least one sample.
    [[nodiscard]] static double flagged_sites() {
        auto const& flags = PopGenetics::globalSubstPolymSites;
        int sites = 0;
        for (long site = 0; site < flags.GetItemsInContainer(); ++site) {
            sites += flags[site] ? 1 : 0;
        }
        return sites;
    }

    [[nodiscard]] SummaryTable molecular() const {
        bool const sequences = samples_.DataType == DNA;
        SummaryTable t{"Molecular diversity",
                       "moldiv",
                       "\nMolecular diversity indexes",
                       "Statistics",
                       sequences ? "Total:" : "",
                       "sumMolecDivIndexes",
                       false,
                       {}};
        auto const dna = [](int SubstitutionCounts::*member) {
            return [member](PopGenetics const& p) {
                auto const* const sample = dynamic_cast<PopulDNA const*>(&p);
                return sample == nullptr ? -1.0 : sample->substitution_counts().*member;
            };
        };
        SummaryRow substitution_sites = count("No. of subst. sites", dna(&SubstitutionCounts::substitution_sites));
        if (sequences) {
            substitution_sites.total = flagged_sites();
        }
        t.rows = {count("No. of transitions", dna(&SubstitutionCounts::transitions)),
                  count("No. of transversions", dna(&SubstitutionCounts::transversions)),
                  count("No. of substitutions", dna(&SubstitutionCounts::substitutions)),
                  count("No. of indels", dna(&SubstitutionCounts::indels)),
                  count("No. of ts. sites", dna(&SubstitutionCounts::transition_sites)),
                  count("No. of tv. sites", dna(&SubstitutionCounts::transversion_sites)),
                  std::move(substitution_sites),
                  count("No. private subst. sites", dna(&SubstitutionCounts::private_sites)),
                  count("No. of indel sites", dna(&SubstitutionCounts::indel_sites)),
                  row("Pi", [](PopGenetics const& p) { return p.pi_; }),
                  row("Theta_k", [](PopGenetics const& p) { return p.theta_k_; }),
                  row("Theta_k_lower", [](PopGenetics const& p) { return p.theta_k_inf_; }),
                  row("Theta_k_upper", [](PopGenetics const& p) { return p.theta_k_sup_; }),
                  row("Theta_H", [](PopGenetics const& p) { return p.theta_hom_; }),
                  row("s.d. Theta_H", [](PopGenetics const& p) { return p.sd_theta_hom_; }),
                  row("Theta_S", [](PopGenetics const& p) { return p.theta_S_; }),
                  row("s.d. Theta_S", [](PopGenetics const& p) { return p.sd_theta_S_; }),
                  row("Theta_pi", [](PopGenetics const& p) { return p.theta_pi_; }),
                  row("s.d. Theta_pi", [](PopGenetics const& p) { return p.sd_theta_pi_; })};
        return t;
    }

    [[nodiscard]] SummaryTable neutrality() const {
        SummaryTable t{"Neutrality tests", "neutests", "\nNeutrality tests\n", "Statistics", "", "", false, {}};
        auto const add = [&](bool wanted, SummaryRow r) {
            if (wanted) {
                t.rows.push_back(std::move(r));
            }
        };
        bool const ewens = set_.wants(task::ewens_watterson), chakraborty = set_.wants(task::chakraborty);
        bool const tajima = set_.wants(task::tajima), fu = set_.wants(task::fu_fs);
        add(ewens, SummaryRow{"Ewens-Watterson test", {}});
        add(ewens, count("Sample size", [](PopGenetics const& p) { return p.nb_genes(); }));
        add(ewens, count("Real no. of alleles", [](PopGenetics const& p) {
                return p.nb_real_haplotypes_ >= 0 ? p.nb_real_haplotypes_ : p.nb_haplotypes();
            }));
        add(ewens, count("No. of alleles(unchecked)", [](PopGenetics const& p) { return p.nb_haplotypes(); }));
        add(ewens, count("Orig. no. of alleles", [](PopGenetics const& p) {
                return p.nb_original_haplotypes > 0 ? p.nb_original_haplotypes : p.nb_haplotypes();
            }));
        add(ewens, row("Observed F value", [](PopGenetics const& p) { return p.obs_F_; }));
        add(ewens, row("Expected F value", [](PopGenetics const& p) { return p.exp_F_; }));
        add(ewens, row("Watterson F p-value", [](PopGenetics const& p) { return p.p_homoz_test_; }));
        add(chakraborty, SummaryRow{"Chakraborty's test", {}});
        // Other analyses leave a homozygosity too, also of samples that this test refuses.
        add(chakraborty, row("Obs. homozygosity", [](PopGenetics const& p) {
                return p.exp_num_alleles_ == -1.0 ? -1.0 : p.sample_homozygosity_;
            }));
        add(chakraborty, row("Exp. no. of alleles", [](PopGenetics const& p) { return p.exp_num_alleles_; }));
        add(chakraborty, row("P(k or more alleles)", [](PopGenetics const& p) { return p.p_chakrab_test_; }));
        add(tajima, SummaryRow{"Tajima's test", {}});
        add(tajima, count("Sample size", [](PopGenetics const& p) { return p.nb_genes(); }));
        add(tajima, count("S", [](PopGenetics const& p) { return p.tajima_S_; }));
        add(tajima, row("Pi", [](PopGenetics const& p) { return p.tajima_pi_; }));
        add(tajima, row("Tajima's D", [](PopGenetics const& p) { return p.tajima_D_; }));
        add(tajima, row("Tajima's D p-value", [](PopGenetics const& p) { return p.p_tajima_D_; }));
        add(fu, SummaryRow{"Fu's Fs test", {}});
        add(fu, row("FS", [](PopGenetics const& p) { return p.fus_FS_; }));
        add(fu, row("FS p-value", [](PopGenetics const& p) { return p.p_fus_FS_; }));
        return t;
    }

    /// Estimate and quantiles of one parameter.
    void add_quantiles(SummaryTable& t, std::string const& name, ExpansionFit PopGenetics::*fit,
                       QuantileEstimate ExpansionFit::*parameter) const {
        auto const add = [&](std::string const& label, double QuantileEstimate::*value) {
            t.rows.push_back(row(label, [=](PopGenetics const& p) { return p.*fit.*parameter.*value; }));
        };
        add(name, &QuantileEstimate::value);
        add(name + " qt 2.5%", &QuantileEstimate::q025);
        add(name + " qt 5%", &QuantileEstimate::q05);
        add(name + " qt 95%", &QuantileEstimate::q95);
        add(name + " qt 97.5%", &QuantileEstimate::q975);
    }

    void add_fit(SummaryTable& t, ExpansionFit PopGenetics::*fit) const {
        auto const add = [&](std::string const& label, double ExpansionFit::*value) {
            t.rows.push_back(row(label, [=](PopGenetics const& p) { return p.*fit.*value; }));
        };
        add("SSD", &ExpansionFit::ssd);
        add("Model (SSD) p-value", &ExpansionFit::p_ssd);
        add("Raggedness index", &ExpansionFit::raggedness);
        add("Raggedness p-value", &ExpansionFit::p_raggedness);
    }

    [[nodiscard]] SummaryTable mismatch() const {
        SummaryTable t{"Mismatch analysis", "mismatch", "\nMismatch analysis\n", "Statistics", "", "", false, {}};
        if (set_.MismatchDemogExp) {
            t.rows.push_back(SummaryRow{"\nDemographic expansion", {}});
            add_quantiles(t, "Tau", &PopGenetics::demographic_fit_, &ExpansionFit::tau);
            add_quantiles(t, "Theta0", &PopGenetics::demographic_fit_, &ExpansionFit::theta0);
            add_quantiles(t, "Theta1", &PopGenetics::demographic_fit_, &ExpansionFit::theta1);
            add_fit(t, &PopGenetics::demographic_fit_);
        }
        if (set_.MismatchSpatialExp) {
            t.rows.push_back(SummaryRow{"\nSpatial expansion", {}});
            add_quantiles(t, "Tau", &PopGenetics::spatial_fit_, &ExpansionFit::tau);
            add_quantiles(t, "Theta", &PopGenetics::spatial_fit_, &ExpansionFit::theta1);
            add_quantiles(t, "M", &PopGenetics::spatial_fit_, &ExpansionFit::m);
            add_fit(t, &PopGenetics::spatial_fit_);
        }
        return t;
    }

    Samples const& samples_;
    settings const& set_;
    std::vector<PopGenetics const*> populations_;  // borrowed
    std::vector<std::string> names_;
};

}  // namespace

void Samples::WriteSummaryStatistics(settings& s) { Summary(*this, s).print(s.ofs()); }

/// Sites with a substitution in one sample alone, counted to that sample.
void Samples::computeNumPrivateSubstSitesPerPop(settings& s) {
    if (s.DataType != DNA) {
        return;
    }
    std::vector<PopulDNA*> samples;
    for (int i = 0; i < NbPopulations(); ++i) {
        auto* const population = dynamic_cast<PopulDNA*>((*this)[i]);
        if (population != nullptr && population->sample_size() > 0.0) {
            population->substitution_counts().private_sites = 0;
            samples.push_back(population);
        }
    }
    auto const& flags = PopGenetics::globalSubstPolymSites;
    for (long site = 0; site < flags.GetItemsInContainer(); ++site) {
        if (!flags[site]) {
            continue;
        }
        PopulDNA* only = nullptr;
        int found = 0;
        for (PopulDNA* const sample : samples) {
            if (sample->has_substitution(static_cast<int>(site))) {
                only = sample;
                ++found;
            }
        }
        if (found == 1) {
            ++only->substitution_counts().private_sites;
        }
    }
}

}  // namespace tov
