// Linkage disequilibrium of pairs of loci when the gametic phase is known.
#include <ostream>

#include "base/trimat.h"
#include "diversity/popgen.h"
#include "inference/association_tables.h"
#include "inference/chain_run.h"
#include "inference/first_seen.h"
#include "inference/ld_report.h"
#include "input/settings.h"
#include "run/errors.h"

namespace tov {

MY_TArrayAsVector<double> PopGenetics::mean_Dprime{0, 10};
MY_TArrayAsVector<double> PopGenetics::mean_R2{0, 10};
MY_TArrayAsVector<double> PopGenetics::adj_Dprime{0, 10};
MY_TArrayAsVector<double> PopGenetics::adj_R2{0, 10};
MY_TArrayAsVector<double> PopGenetics::flank_Dprime{0, 10};
MY_TArrayAsVector<double> PopGenetics::flank_R2{0, 10};

namespace {

constexpr long longest_single_chain = 100000;  // beyond it the chain is restarted batch by batch

/// Gametes of two loci with their alleles.
struct GameteTable {
    ContingencyTable counts;
    std::vector<TAllele const*> first;   // borrowed
    std::vector<TAllele const*> second;  // borrowed
};

// @return 0, or the code of the error: a locus lies outside a haplotype, or the table is too large.
int count_gametes(Population const& sample, int first, int second, GameteTable& table) {
    struct Entry {
        int first;
        int second;
        int copies;
    };
    char const missing = sample.profile.MissingData;
    std::vector<Entry> gametes;
    SeenAlleles alleles[2];
    for (int i = 0; i < sample.nb_haplotypes(); ++i) {
        PHaploDef const& h = sample.haplotype(i);
        if (first < 0 || second < 0 || first >= h.nb_loci() || second >= h.nb_loci()) return 60;
        TAllele const* const a = h[first];
        TAllele const* const b = h[second];
        if (is_missing(a, missing) || is_missing(b, missing)) continue;
        gametes.push_back({alleles[0].number(a), alleles[1].number(b), h.copies});
    }
    if (!table_fits(alleles[0].size(), alleles[1].size())) return 155;
    table.counts.shape(alleles[0].size(), alleles[1].size());
    for (Entry const& e : gametes) table.counts.at(e.first, e.second) += e.copies;
    table.first = alleles[0].in_order();
    table.second = alleles[1].in_order();
    return 0;
}

bool make_table(PopGenetics& sample, int* k, GameteTable& made) {
    sample.monomorphic = 0;
    if (int const code = count_gametes(sample, k[0], k[1], made)) {
        E.error(ErrorType::Error, "PopGenetics::make_all_table()", code);
        return false;
    }
    k[0] = made.counts.rows;
    k[1] = made.counts.columns;
    if (k[0] < 2 || k[1] < 2) sample.monomorphic = 1;
    return true;
}

double untested(long steps, settings& s, PopGenetics& sample, int* k) {
    settings::inc_work_done(static_cast<double>(steps / 1000));
    s.p_value = 1.0;
    s.sd_p_value = 0.0;
    sample.clear_table(k);
    return 1.0;
}

std::vector<std::string> names_of(std::vector<TAllele const*> const& alleles) {
    std::vector<std::string> names;
    for (TAllele const* const a : alleles) names.emplace_back(std::string_view(a->name()));
    return names;
}

}  // namespace

// --- The chain ---

int PopGenetics::make_all_table(int* k) {
    GameteTable made;
    if (!make_table(*this, k, made)) return 0;
    table = std::move(made.counts);
    return 1;
}

double PopGenetics::swap_in_table(int* k, long& seed) {
    if (k[0] < 2 || k[1] < 2 || k[0] > table.rows || k[1] > table.columns) {
        E.error(ErrorType::Error, "PopGenetics::swap_in_table()", 60);
        return 0.0;
    }
    if (seed < 0) ran3(&seed);
    DrawBlock draws(chain_generator());
    return two_way_step(TableWalk(table), draws).ratio;
}

double PopGenetics::calc_gam_des_prob2(int* loci, long& seed, settings& s, long& stepsDone) {
    int k[] = {loci[0], loci[1]};
    stepsDone = 0;
    long const steps = s.MarkovChainStepsLD;
    if (!make_all_table(k) || k[0] < 2 || k[1] < 2 || steps < 1) return untested(steps, s, *this, k);
    if (seed < 0) ran3(&seed);
    // kept on purpose: 0 and not 1e-06, which the other chains allow; sums are exact, so that ties are ties.
    ChainPlan const plan = ChainPlan::square(steps, s.MarkovChainDememorisationStepsLD, 0);
    double const work = 0.001 * static_cast<double>(plan.batches);
    ChainOutcome const outcome = walk_table(table, TableKind::two_way, plan, s.is_stop(), [&] {
        chain_goes_on(s, work);
        return true;
    });
    clear_table(k);
    return keep_chain_outcome(outcome, s, stepsDone);
}

double PopGenetics::calc_gam_des_prob3(int* loci, long& seed, settings& s, long& stepsDone) {
    constexpr long block = 20000;
    int k[] = {loci[0], loci[1]};
    stepsDone = 0;
    double const precision = s.sd_p_value;
    long const steps = std::max(s.MarkovChainStepsLD, block);
    if (!make_all_table(k) || k[0] < 2 || k[1] < 2) return untested(steps, s, *this, k);
    if (seed < 0) ran3(&seed);
    ChainPlan plan;
    plan.burn_in = s.MarkovChainDememorisationStepsLD;
    plan.batches = steps / block + 1;
    plan.per_batch = block;
    double const work = 0.001 * static_cast<double>(block);
    ChainOutcome const outcome = walk_table_in_batches(table, TableKind::two_way, plan, {precision, false},
                                                       [&] { return chain_goes_on(s, work); });
    clear_table(k);
    return keep_chain_outcome(outcome, s, stepsDone);
}

// --- Coefficients ---

namespace {

constexpr double no_value = -1.0;

/// Keeps neighbouring loci and the flanking pair for the summary, also a pair that has no coefficients.
void keep_pair(double Dprime, double r2, int distance, int last) {
    if (distance == 1) {
        PopGenetics::adj_Dprime.Add(Dprime);
        PopGenetics::adj_R2.Add(r2);
    }
    if (distance == last) {
        PopGenetics::flank_Dprime.Add(Dprime);
        PopGenetics::flank_R2.Add(r2);
    }
}

}  // namespace

int PopGenetics::calc_d_sd_values(int* loci, settings& s, double& sumD, double& sumDprime, int i, int last) {
    constexpr char const* origin = "PopGenetics::calc_d_sd_values()";
    int k[] = {loci[0], loci[1]};
    GameteTable made;
    bool const stands = make_table(*this, k, made);
    if (!stands && !monomorphic) E.error(ErrorType::Error, origin, 155);
    if (!stands || monomorphic) {
        keep_pair(no_value, no_value, i, last);
        clear_table(k);
        return 1;
    }
    LdCoefficients const x = ld_coefficients(made.counts);
    for (int cell = 0; cell < x.without_Dmax; ++cell) E.error(ErrorType::Error, origin, 105);
    print_ld_tables(s.ofs(), {loci[0], loci[1], names_of(made.first), names_of(made.second)}, made.counts, x);
    sumD += x.mean_r2;
    sumDprime += x.mean_abs_Dprime;
    keep_pair(x.mean_abs_Dprime, x.mean_r2, i, last);
    clear_table(k);
    return 1;
}

void PopGenetics::print_ld_histo(int n, int* loci, TriMat& p_values, settings& s, std::ostream& out) {
    print_linked_loci(out, p_values, {loci, static_cast<std::size_t>(std::max(n, 0))}, s.SignificanceLevelLD);
}

// --- All pairs ---

namespace {

void flush_summary() {
    for (auto* const list : {&PopGenetics::mean_Dprime, &PopGenetics::mean_R2, &PopGenetics::adj_Dprime,
                             &PopGenetics::adj_R2, &PopGenetics::flank_Dprime, &PopGenetics::flank_R2}) {
        list->Flush();
    }
}

// @return false when the user stopped the test.
bool test_all_pairs(PopGenetics& sample, std::ostream& out, std::vector<int>& sites, long steps, settings& s) {
    int const n = static_cast<int>(sites.size());
    TriMat p_values(n);
    long seed = 1;
    print_ld_title(out);
    print_ld_chain_lengths(out, steps, s.MarkovChainDememorisationStepsLD);
    for (int a = 0; a < n; ++a) {
        for (int b = 0; b < a; ++b) {
            if (*s.is_stop() != 0) return false;
            int loci[] = {sites[static_cast<std::size_t>(b)], sites[static_cast<std::size_t>(a)]};
            LinkedPair pair{loci[0], loci[1]};
            s.sd_p_value = s.PrecisionOnPValueLD;
            pair.p = steps > longest_single_chain ? sample.calc_gam_des_prob3(loci, seed, s, pair.steps)
                                                  : sample.calc_gam_des_prob2(loci, seed, s, pair.steps);
            if (pair.p == stopped_by_user) return false;
            pair.sd = s.sd_p_value;
            p_values(a, b) = pair.p;
            print_ld_pair(out, pair);
            write_linkage_batch_row(sample.pop_name().str(), pair);
        }
    }
    write_linkage_side_table(s, sample.pop_name().str(), p_values, n);
    s.print_diseq_table(p_values, n, sites.data());
    sample.print_ld_histo(n, sites.data(), p_values, s, out);
    return true;
}

void print_all_coefficients(PopGenetics& sample, std::ostream& out, std::vector<int> const& sites, settings& s) {
    int const n = static_cast<int>(sites.size());
    double sum_r2 = 0.0;
    double sum_Dprime = 0.0;
    int pairs = 0;  // with coefficients
    for (int a = 0; a < n; ++a) {
        for (int b = 0; b < a; ++b) {
            int loci[] = {sites[static_cast<std::size_t>(b)], sites[static_cast<std::size_t>(a)]};
            print_ld_loci(out, loci[0], loci[1]);
            sample.calc_d_sd_values(loci, s, sum_r2, sum_Dprime, a - b, n - 1);
            pairs += sample.monomorphic ? 0 : 1;
        }
    }
    PopGenetics::mean_Dprime.Add(pairs > 0 ? sum_Dprime / pairs : no_value);
    PopGenetics::mean_R2.Add(pairs > 0 ? sum_r2 / pairs : no_value);
    sample.keep_linkage_summary();
}

}  // namespace

void PopGenetics::keep_linkage_summary() {
    auto const values = [](MY_TArrayAsVector<double> const& list) {
        std::vector<double> copy;
        for (long i = 0; i < list.GetItemsInContainer(); ++i) copy.push_back(list[i]);
        return copy;
    };
    linkage_ = {mean_Dprime.IsEmpty() ? -1.0 : mean_Dprime[0], mean_R2.IsEmpty() ? -1.0 : mean_R2[0],
                values(adj_Dprime), values(adj_R2), flank_Dprime.IsEmpty() ? -1.0 : flank_Dprime[0],
                flank_R2.IsEmpty() ? -1.0 : flank_R2[0]};
}

void PopGenetics::calc_all_gam_des(std::ostream& out, long steps, settings& s) {
    constexpr char const* origin = "PopGenetics::calc_all_gam_des()";
    flush_summary();
    if (nb_haplotypes() == 0) {
        E.error(ErrorType::Error, origin, 108);
        return;
    }
    std::vector<int> sites;
    for (int site = 0; site < static_cast<int>(polym_sites.size()); ++site) {
        if (polymSite(site)) sites.push_back(site);
    }
    if (sites.size() < 2) {
        E.error(ErrorType::Error, origin, 167);
        return;
    }
    if (s.MakeExactTestLD && steps > 0 && !test_all_pairs(*this, out, sites, steps, s)) return;
    if (s.ComputeDvalues) print_all_coefficients(*this, out, sites, s);
}

}  // namespace tov
