// Exact test of Hardy-Weinberg proportions, locus by locus and over whole haplotypes.
#include <ostream>

#include "base/special.h"
#include "inference/association_tables.h"
#include "inference/chain_run.h"
#include "inference/first_seen.h"
#include "inference/hw_report.h"
#include "input/settings.h"
#include "model/popbase.h"
#include "run/errors.h"

namespace tov {

namespace {

constexpr char const* table_origin = "Population::make_hw_table() ";
constexpr long longest_single_chain = 200000;  // over haplotypes: beyond it the chain is restarted batch by batch

/// Genotypes, as pairs of allele numbers with their individuals.
struct GenotypeCounts {
    struct Entry {
        int first;
        int second;
        int individuals;
    };
    std::vector<Entry> list;
    int alleles = 0;
};

void fill_table(ContingencyTable& table, GenotypeCounts const& counts) {
    table.shape(counts.alleles, counts.alleles);
    for (GenotypeCounts::Entry const& e : counts.list) table.genotype(e.first, e.second) += e.individuals;
}

// @return false when the locus lies outside a phenotype.
bool count_genotypes(TPhenDB const& phenotypes, int locus, char missing, GenotypeCounts& counts) {
    SeenAlleles seen;
    for (TPhenotype const* const p : phenotypes.view()) {
        if (locus >= p->pheno_length()) return false;
        TAllele const* const a = p->pseudo_hapl0(locus);
        TAllele const* const b = p->pseudo_hapl1(locus);
        if (is_missing(a, missing) || is_missing(b, missing)) continue;
        int const first = seen.number(a);
        counts.list.push_back({first, seen.number(b), static_cast<int>(p->obs_count())});
    }
    counts.alleles = seen.size();
    return true;
}

void count_haplotype_pairs(TPhenDB const& phenotypes, GenotypeCounts& counts) {
    SeenHaplotypes seen;
    for (TPhenotype const* const p : phenotypes.view()) {
        if (!p->ps_hapl0() || !p->ps_hapl1()) continue;
        int const first = seen.number(p->ps_hapl0());
        counts.list.push_back({first, seen.number(p->ps_hapl1()), static_cast<int>(p->obs_count())});
    }
    counts.alleles = seen.size();
}

}  // namespace

int Population::make_hw_table(int* loci) {
    monomorphic = 0;
    GenotypeCounts counts;
    if (loci[1] < 0) {
        count_haplotype_pairs(phenotypes, counts);
    } else if (!count_genotypes(phenotypes, loci[1], profile.MissingData, counts)) {
        E.error(ErrorType::Error, table_origin, 60);
        return 0;
    }
    if (counts.alleles < 2) {
        loci[0] = 0;
        monomorphic = loci[1] < 0 ? 0 : 1;
        return 1;
    }
    if (!table_fits(counts.alleles, counts.alleles)) {
        E.error(ErrorType::Error, table_origin, 155);
        return 0;
    }
    fill_table(table, counts);
    loci[0] = counts.alleles;
    return 1;
}

void Population::clear_table(int* /*k*/) { table.release(); }

double Population::swap_in_table2(int* k, long& seed) {
    if (k[0] < 2 || k[0] > table.rows || k[0] > table.columns) {
        E.error(ErrorType::Error, "Population::swap_in_table2()", 60);
        return 1.0;
    }
    if (seed < 0) ran3(&seed);
    DrawBlock draws(chain_generator());
    return hardy_weinberg_step(TableWalk(table), draws).ratio;
}

double Population::make_hw_test1(TPhenDB const& ph, double& stat, settings& s, int* loci) {
    int const one_locus[] = {1, loci[1]};
    TPhenDB restricted;
    restricted.create_temp_PhenDB(one_locus, ph);
    int df = 0;
    stat = restricted.hw_chi_stat(alleles, loci[1], profile.MissingData, df);
    s.p_value = df > 0 ? static_cast<double>(Prob_of_chi_sq(static_cast<float>(df), static_cast<float>(stat))) : 1.0;
    return s.p_value;
}

double Population::make_hw_test2(long const& steps, double& stat, settings& s, long& stepsDone, int* loci) {
    stepsDone = 0;
    s.sd_p_value = 0.0;
    int const made = make_hw_table(loci);
    if (!made || loci[0] < 2 || steps < 1) {
        if (made && loci[0] < 2) settings::inc_work_done(static_cast<double>(steps));
        clear_table(loci);
        return 1.0;
    }
    ChainPlan const plan = ChainPlan::square(steps, s.MarkovChainDememorisationStepsHW);
    double const work = 0.001 * static_cast<double>(plan.batches);
    ChainOutcome const outcome =
        walk_table(table, TableKind::genotypes, plan, nullptr, [&] { return chain_goes_on(s, work); });
    stat = 0.0;
    clear_table(loci);
    return keep_chain_outcome(outcome, s, stepsDone);
}

double Population::make_hw_test3(long const& steps, double& stat, settings& s, long& stepsDone, int* loci) {
    stepsDone = 0;
    double const precision = s.sd_p_value;
    if (!make_hw_table(loci) || loci[0] < 2 || steps < 1) {
        s.sd_p_value = 0.0;
        clear_table(loci);
        return 1.0;
    }
    ChainPlan const plan = ChainPlan::square(steps, s.MarkovChainDememorisationStepsHW);
    double const work = 0.001 * static_cast<double>(plan.per_batch);
    ChainOutcome const outcome = walk_table_in_batches(table, TableKind::genotypes, plan, {precision, false},
                                                       [&] { return chain_goes_on(s, work); });
    stat = 0.0;
    clear_table(loci);
    return keep_chain_outcome(outcome, s, stepsDone);
}

void Population::compute_locus_heterozygosity(int const& locus, double& obs, double& exp, int& n) {
    GenotypeCounts counts;
    n = 0;
    obs = exp = 0.0;
    if (!count_genotypes(phenotypes, locus, profile.MissingData, counts)) return;
    std::vector<double> copies(static_cast<std::size_t>(counts.alleles), 0.0);
    double heterozygotes = 0.0;
    for (GenotypeCounts::Entry const& e : counts.list) {
        n += e.individuals;
        if (e.first != e.second) heterozygotes += e.individuals;
        copies[static_cast<std::size_t>(e.first)] += e.individuals;
        copies[static_cast<std::size_t>(e.second)] += e.individuals;
    }
    if (n == 0) return;
    double squares = 0.0;
    for (double const a : copies) squares += a * a;
    obs = heterozygotes / n;
    exp = n * 2.0 * (1.0 - squares / (4.0 * n * n)) / (2.0 * n - 1.0);
}

namespace {

enum class Level { loci = 0, haplotypes = 1, both = 2 };

Level level_of(Population const& sample, settings const& s) {
    bool const phase = sample.profile.GameticPhase != 0;
    if (s.TypeOfTestHW == 2) return Level::both;
    return s.TypeOfTestHW == 1 && phase ? Level::haplotypes : Level::loci;
}

// One line of the table. @return false when the user stopped the test.
bool test_locus(Population& sample, std::ostream& out, int locus, long steps, settings& s, TabRow& table_row) {
    HardyWeinbergRow row;
    double stat = 0.0;
    int loci[] = {1, locus};
    print_hw_locus(out, locus);
    double const result = sample.make_hw_test2(steps, stat, s, row.steps, loci);
    if (result == stopped_by_user) return false;
    sample.compute_locus_heterozygosity(locus, row.obs_het, row.exp_het, row.individuals);
    if (sample.monomorphic) {
        out << "   This locus is monomorphic: no test done.";
        row.p = row.sd = -1.0;
        write_hw_batch_locus(table_row, locus, row);
        return true;
    }
    row.p = s.p_value;
    row.sd = s.sd_p_value;
    print_hw_row(out, row);
    write_hw_batch_locus(table_row, locus, row);
    return true;
}

// A line a locus and, with `tests`, a row of the sample in the batch table. @return false when the user stopped the
// test.
bool print_loci(Population& sample, std::ostream& out, int nb_loci, long steps, settings& s, bool tests) {
    TabRow table_row = tests ? hw_batch_row(sample.pop_name().str()) : TabRow(nullptr, {});
    for (int locus = 0; locus < nb_loci; ++locus) {
        s.p_value = 1.0;
        if (tests && !test_locus(sample, out, locus, steps, s, table_row)) {
            out << std::endl;
            return false;
        }
        out << '\n';
    }
    return true;
}

bool test_haplotypes(Population& sample, std::ostream& out, long steps, settings& s) {
    print_hw_lengths(out, "Haplotypes", s.MarkovChainStepsHW, s.MarkovChainDememorisationStepsHW);
    HardyWeinbergRow row;
    double stat = 0.0;
    int loci[] = {1, -1};
    s.p_value = 1.0;
    double result = 0.0;
    if (steps > longest_single_chain) {
        s.sd_p_value = s.PrecisionOnPValueHW;
        result = sample.make_hw_test3(steps, stat, s, row.steps, loci);
    } else {
        result = sample.make_hw_test2(steps, stat, s, row.steps, loci);
    }
    if (result == stopped_by_user) return false;
    row.p = s.p_value;
    row.sd = s.sd_p_value;
    print_hw_haplotypes(out, row);
    return true;
}

}  // namespace

void Population::make_all_hw(std::ostream& out, TPhenDB const& ph, long const& steps, settings& s) {
    Level const level = level_of(*this, s);
    if (level != Level::haplotypes) {
        print_hw_lengths(out, "Loci", s.MarkovChainStepsHW, s.MarkovChainDememorisationStepsHW);
    }
    print_hw_head(out);
    bool const tests_loci = s.MakeHWExactTest && level != Level::haplotypes;
    if (!print_loci(*this, out, ph.num_loci(), steps, s, tests_loci)) return;
    print_hw_rule(out);
    if (s.MakeHWExactTest && profile.GameticPhase != 0 && level != Level::loci &&
        !test_haplotypes(*this, out, steps, s)) {
        return;
    }
    out << std::endl;
}

}  // namespace tov
