// Simulated loci: their statistics against whole projects, against theory, and the P-values of neutral loci.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <ostream>
#include <sstream>

#include "base/scoped_swap.h"
#include "structure/formula/selection_p.h"
#include "structure/gen_struct.h"
#include "structure/loc_by_loc.h"
#include "structure/selection.h"
#include "structure/simulated_project.h"
#include "support/analysed_project.h"
#include "support/scratch_directory.h"

namespace tov {
namespace {

using test::AnalysedProject;

/// Samples of equal copies in groups of `per_group`; their alleles don't matter.
std::string project_text(std::string const& type, int samples, int copies, int per_group, bool genotypic) {
    bool const sites = type == "DNA" || type == "RFLP";
    std::string const allele = type == "DNA" ? "A" : "1";
    std::string text = "[Profile]\nTitle=\"t\"\nNbSamples=" + std::to_string(samples) + "\nDataType=" + type +
                       "\nGenotypicData=" + (genotypic ? "1\nGameticPhase=1" : "0") +
                       "\nLocusSeparator=" + (sites ? "NONE" : "WHITESPACE") +
                       "\nMissingData='?'\n[Data]\n[[Samples]]\n";
    for (int s = 0; s < samples; ++s) {
        std::string const id = std::to_string(s + 1);
        std::string data;
        if (genotypic) {
            data = "i" + id + " " + std::to_string(copies / 2) + " " + allele + "\n" + allele + "\n";
        } else {
            data = "h" + id + " " + std::to_string(copies) + " " + allele + "\n";
        }
        text += test::sample_text("S" + id, std::to_string(genotypic ? copies / 2 : copies), data);
    }
    text +=
        "[[Structure]]\nStructureName=\"g\"\nNbGroups=" + std::to_string((samples + per_group - 1) / per_group) + "\n";
    for (int s = 0; s < samples; ++s) {
        if (s % per_group == 0) text += "Group={\n";
        text += "\"S" + std::to_string(s + 1) + "\"\n";
        if (s % per_group == per_group - 1 || s == samples - 1) text += "}\n";
    }
    return text;
}

/// A project with the view that its analyses take.
struct SelectionProject {
    explicit SelectionProject(std::string const& text, bool genotypic = false, bool keep_groups = false)
        : analysed(text, genotypic), tested(analysed.project.structure) {
        if (!keep_groups) tested.merge_groups();
        view.structure = &tested;
        analysed.set.silent_structure = true;
        analysed.set.NumPermutationsAMOVA = 0;
    }
    AnalysedProject analysed;
    Structure tested;
    amova_results results;
    ProjectView view{analysed.set,
                     &analysed.project.samples,
                     nullptr,
                     &analysed.project.haplotypes,
                     &analysed.project.distances,
                     &analysed.alleles,
                     &analysed.project.mantel,
                     &results};
};

SimulationPlan plan_of(double fst, double fct, bool two_levels, int demes = 20, int groups = 4) {
    SimulationPlan plan;
    plan.model.two_levels = two_levels;
    plan.model.Fst = fst;
    plan.model.Fct = fct;
    plan.model.demes = demes;
    plan.model.groups = groups;
    plan.het_high = 0.9;
    plan.theta_limit = std::min(1.0 / fst - 1.0, 1.0);
    return plan;
}

struct PipelineCase {
    char const* type;
    bool genotypic;
    bool groups;
    bool individuals;
    int method;
    double least_derived;
};

void PrintTo(PipelineCase const& c, std::ostream* out) {
    *out << c.type << (c.genotypic ? " genotypes" : " haplotypes") << (c.groups ? " in groups" : "")
         << (c.individuals ? " with individuals" : "") << " method " << c.method << " from " << c.least_derived;
}

class SimulatedLociOf : public ::testing::TestWithParam<PipelineCase> {};

// 200 loci, each computed from its states, then all written as a project, read and analysed locus by locus.
TEST_P(SimulatedLociOf, HaveTheValuesOfTheWholePipeline) {
    PipelineCase const c = GetParam();
    SelectionProject source(project_text(c.type, 5, 12, 3, c.genotypic), c.genotypic, c.groups);
    settings& set = source.analysed.set;
    set.IncludeIndividualLevel = c.individuals;
    set.DistanceMethodAMOVA = c.method;
    set.TransitionWeight = 0.7;
    set.TranversionWeight = 1.9;
    set.MinDafFreq = c.least_derived;
    NullLoci loci(source.view, source.tested);
    SimulatedProject project(source.view, source.tested);
    SimulationPlan const plan = plan_of(0.15, 0.08, c.groups);
    std::vector<LocusFixation> expected;
    for (int i = 0; i < 200; ++i) {
        ASSERT_TRUE(loci.simulate(plan));
        expected.push_back(loci.statistics());
        project.addLocus(loci);
    }
    std::ostringstream text;
    ASSERT_EQ(project.write(text), 1);

    SelectionProject read(text.str(), c.genotypic, c.groups);
    ASSERT_EQ(read.analysed.project.result, 1) << read.analysed.project.log;
    ASSERT_EQ(read.analysed.alleles.nb_loci(), 200);
    settings& again = read.analysed.set;
    again.IncludeIndividualLevel = c.individuals;
    again.DistanceMethodAMOVA = c.method;
    again.TransitionWeight = 0.7;
    again.TranversionWeight = 1.9;
    again.TaskNumber = task::amova;
    again.LocByLocAMOVA = 1;
    locus_by_locus_amova(read.view);
    computeMeanHeterozygosityOverSamplesInStructure(read.tested, read.analysed.alleles);
    int polymorphic = 0;
    for (int i = 0; i < 200; ++i) {
        TLocus const& locus = *read.analysed.alleles[i];
        LocusFixation const& e = expected[static_cast<std::size_t>(i)];
        EXPECT_NEAR(locus.mean_heterozygosity, e.mean_heterozygosity, 1e-14) << i;
        EXPECT_NEAR(locus.FST, e.FST, 1e-12) << i;
        EXPECT_NEAR(locus.FSC, e.FSC, 1e-12) << i;
        EXPECT_NEAR(locus.FCT, e.FCT, 1e-12) << i;
        polymorphic += e.mean_heterozygosity > 0.0;
    }
    EXPECT_GT(polymorphic, 100);
}

INSTANTIATE_TEST_SUITE_P(DataTypes, SimulatedLociOf,
                         ::testing::Values(PipelineCase{"STANDARD", false, false, false, 0, 0.0},
                                           PipelineCase{"STANDARD", true, true, true, 0, 0.0},
                                           PipelineCase{"MICROSAT", false, true, false, 1, 0.0},
                                           PipelineCase{"MICROSAT", true, false, true, 1, 0.0},
                                           PipelineCase{"MICROSAT", false, false, false, 0, 0.0},
                                           PipelineCase{"DNA", false, false, false, 0, 0.1},
                                           PipelineCase{"DNA", true, true, false, 0, 0.0},
                                           PipelineCase{"DNA", false, true, false, 0, 3.0},
                                           PipelineCase{"RFLP", false, false, false, 0, 0.0},
                                           PipelineCase{"RFLP", true, true, true, 0, 0.2}));

/// Ratio estimate with its error: sum of shares over sum of weights.
struct Ratio {
    std::vector<double> part, whole;
    void add(double p, double w) {
        part.push_back(p);
        whole.push_back(w);
    }
    [[nodiscard]] double value() const {
        double a = 0.0, b = 0.0;
        for (std::size_t i = 0; i < part.size(); ++i) {
            a += part[i];
            b += whole[i];
        }
        return a / b;
    }
    [[nodiscard]] double error() const {
        double const r = value();
        double squares = 0.0, b = 0.0;
        for (std::size_t i = 0; i < part.size(); ++i) {
            squares += (part[i] - r * whole[i]) * (part[i] - r * whole[i]);
            b += whole[i];
        }
        return std::sqrt(squares) / b;
    }
};

TEST(NullDistribution, MeanFstOfAHundredDemesIsTheTarget) {
    SelectionProject source(project_text("STANDARD", 10, 20, 10, false));
    NullLoci loci(source.view, source.tested);
    SimulationPlan plan = plan_of(0.1, 0.0, false, 100);
    plan.het_high = 0.2;  // few mutations: hardly any on the way between demes
    Ratio fst;
    for (int i = 0; i < 6000; ++i) {
        ASSERT_TRUE(loci.simulate(plan));
        LocusFixation const locus = loci.statistics();
        if (locus.FST == 0.0) continue;
        double const het = het_between_populations(locus.mean_heterozygosity, locus.FST);
        fst.add(locus.FST * het, het);
    }
    EXPECT_NEAR(fst.value(), 0.1, 4.0 * fst.error());
    EXPECT_LT(fst.error(), 0.005);
}

/// Mean times of a pair's common ancestor in g groups of s demes, migrants between groups entering the first deme of
/// their group; samples sit in random demes.
struct PairTimes {
    double own = 0.0;    ///< both in one deme
    double group = 0.0;  ///< in two demes of a group
    double apart = 0.0;  ///< in two groups
};

PairTimes expected_times(double fst, double fct, int s, int g) {
    // Places of a pair: in one deme, the first (0) or another (1); in two demes of a group, one of them the first (2)
    // or none (3); in two groups, both in first demes (4), one (5) or none (6).
    constexpr int places = 7;
    MigrationRates const rates = two_level_island_rates(fst, fct, s, g);
    double const within = rates.within * deme_size, between = rates.between * deme_size;
    double const w = within / (s - 1), b = between / (g - 1);  // to one deme, to one group
    double const to[places][places] = {
        {0, 0, 2 * within, 0, 2 * between, 0, 0},
        {0, 0, 2 * w, 2 * w * (s - 2), 0, 2 * between, 0},
        {w, w, 0, w * (s - 2), between, between, 0},
        {0, 2 * w, 2 * w, 0, 0, 2 * between, 0},
        {2 * b, 0, 0, 0, 0, 2 * within, 0},
        {b, 0, b, 0, w + b * (g - 2), 0, within},
        {0, 0, 2 * b, 0, 0, 2 * w + 2 * b * (g - 2), 0},
    };
    double a[places][places + 1];
    for (int i = 0; i < places; ++i) {
        double out = i < 2 ? 1.0 : 0.0;  // meeting
        for (int k = 0; k < places; ++k) {
            a[i][k] = -to[i][k];
            out += to[i][k];
        }
        a[i][i] = out;
        a[i][places] = 1.0;
    }
    for (int c = 0; c < places; ++c) {  // diagonally dominant: no pivots needed
        for (int r = 0; r < places; ++r) {
            if (r == c) continue;
            double const f = a[r][c] / a[c][c];
            for (int k = 0; k <= places; ++k) a[r][k] -= f * a[c][k];
        }
    }
    auto const T = [&](int i) { return a[i][places] / a[i][i]; };
    double const first = 1.0 / s, other = 1.0 - first;
    return {first * T(0) + other * T(1), 2.0 * first * T(2) + (1.0 - 2.0 * first) * T(3),
            first * first * T(4) + 2.0 * first * other * T(5) + other * other * T(6)};
}

TEST(NullDistribution, MeanFctAndFscOfTwoLevelsAreThoseOfTheirCoalescenceTimes) {
    SelectionProject source(project_text("STANDARD", 12, 16, 4, false), false, true);
    NullLoci loci(source.view, source.tested);
    double const fsc = 0.10, fct = 0.25;
    SimulationPlan plan = plan_of(1.0 - (1.0 - fsc) * (1.0 - fct), fct, true, 100, 10);
    plan.het_high = 0.2;
    Ratio ratio_fct, ratio_fsc;
    for (int i = 0; i < 1500; ++i) {
        ASSERT_TRUE(loci.simulate(plan));
        LocusFixation const locus = loci.statistics();
        if (locus.FST == 0.0) continue;
        double const total = het_between_populations(locus.mean_heterozygosity, locus.FST);
        ratio_fct.add(locus.FCT * total, total);
        ratio_fsc.add(locus.FSC * (1.0 - locus.FCT) * total, (1.0 - locus.FCT) * total);
    }
    PairTimes const times = expected_times(plan.model.Fst, fct, 100, 10);
    double const expected_fct = 1.0 - times.group / times.apart;
    double const expected_fsc = 1.0 - times.own / times.group;
    EXPECT_NEAR(expected_fct, fct, 0.001);  // the targets hold but for the migrants' first deme
    EXPECT_NEAR(expected_fsc, fsc, 0.001);
    EXPECT_NEAR(ratio_fct.value(), expected_fct, 4.0 * ratio_fct.error());
    EXPECT_NEAR(ratio_fsc.value(), expected_fsc, 4.0 * ratio_fsc.error());
    EXPECT_LT(ratio_fct.error(), 0.02);
    EXPECT_LT(ratio_fsc.error(), 0.02);
}

/// A model with its loci and their P-values.
struct NeutralCase {
    char const* type;
    bool genotypic;
    bool groups;
    double fst;
    double fct;
    double least_derived;
};

void PrintTo(NeutralCase const& c, std::ostream* out) {
    *out << c.type << (c.genotypic ? " genotypes" : " haplotypes") << (c.groups ? " in groups" : "") << " FST " << c.fst
         << " FCT " << c.fct << " from " << c.least_derived;
}

class NeutralLociOf : public ::testing::TestWithParam<NeutralCase> {
protected:
    /// P-values of loci of the same model, and of loci that don't belong to it.
    struct Null {
        SimulatedLoci loci;
        [[nodiscard]] double p(double statistic, double het, std::vector<double> const& null) const {
            SelectionKernel const kernel;
            return calcFSTpvalue(statistic, loci.het, null, kernel.h_stat, het, kernel.h_het, kernel.grid_points);
        }
    };

    static void simulate(NullLoci& source, SimulationPlan const& plan, SimulatedLoci& into) {
        ASSERT_TRUE(source.simulate(plan));
        SimulatedLocus const locus = simulated_locus(source.statistics());
        into.add(locus.het_between, locus.FST, locus.FCT, source.mutations());
    }

    /// Bounds around 0.05 and 0.1, which the two tails of an exact test give; the smoothed test is close to them.
    static void expect_shares(int below_25, int below_50) {
        EXPECT_GE(below_25, 0.03 * neutral_loci);
        EXPECT_LE(below_25, 0.08 * neutral_loci);
        EXPECT_GE(below_50, 0.07 * neutral_loci);
        EXPECT_LE(below_50, 0.15 * neutral_loci);
    }
    static constexpr int neutral_loci = 1000;
};

TEST_P(NeutralLociOf, HaveUniformTailsAndAPlantedOneIsFound) {
    NeutralCase const c = GetParam();
    SelectionProject source(project_text(c.type, c.groups ? 12 : 10, 40, c.groups ? 4 : 10, c.genotypic), c.genotypic,
                            c.groups);
    source.analysed.set.MinDafFreq = c.least_derived;
    NullLoci loci(source.view, source.tested);
    SimulationPlan plan = plan_of(c.fst, c.fct, c.groups, c.groups ? 20 : 100, 10);
    plan.het_high = has_state_characters(loci.type()) ? 0.5 : 1.0;
    Null null;
    for (int i = 0; i < 4000; ++i) simulate(loci, plan, null.loci);
    int tested = 0, below_25 = 0, below_50 = 0, fct_below_25 = 0, fct_below_50 = 0;
    while (tested < neutral_loci) {
        SimulatedLoci locus;
        simulate(loci, plan, locus);
        double const het = locus.het[0];
        if (het == 0.0) continue;
        ++tested;
        double const p = null.p(locus.FST[0], het, null.loci.FST);
        EXPECT_LE(p, 0.5 + 1e-3);
        below_25 += p < 0.025;
        below_50 += p < 0.05;
        if (!c.groups) continue;
        double const p_fct = null.p(locus.FCT[0], het, null.loci.FCT);
        fct_below_25 += p_fct < 0.025;
        fct_below_50 += p_fct < 0.05;
    }
    expect_shares(below_25, below_50);
    if (c.groups) expect_shares(fct_below_25, fct_below_50);
    EXPECT_LT(null.p(0.9, 0.45, null.loci.FST), 0.001);
}

INSTANTIATE_TEST_SUITE_P(DataTypes, NeutralLociOf,
                         ::testing::Values(NeutralCase{"STANDARD", false, false, 0.15, 0.0, 0.0},
                                           NeutralCase{"STANDARD", true, false, 0.15, 0.0, 0.0},
                                           NeutralCase{"MICROSAT", false, false, 0.1, 0.0, 0.0},
                                           NeutralCase{"DNA", false, false, 0.1, 0.0, 0.0},
                                           NeutralCase{"DNA", true, false, 0.1, 0.0, 0.05},
                                           NeutralCase{"RFLP", false, false, 0.2, 0.0, 0.1},
                                           NeutralCase{"STANDARD", false, true, 0.19, 0.1, 0.0},
                                           NeutralCase{"DNA", false, true, 0.19, 0.1, 0.05}));

// The tail below 0 is empty: a derived allele that one sample carries once differentiates nothing, and is no locus of
// the null distribution.
TEST(SimulatedLocusValues, OfASingleDerivedCopyAreZeroForEverySampleSize) {
    for (int copies = 2; copies < 90; ++copies) {
        for (int samples = 2; samples < 6; ++samples) {
            auto const n = static_cast<std::size_t>(samples);
            StructureSizes const sizes(std::vector<double>(n, copies), {samples});
            LocusFixationWalk walk(sizes, FixationUnit::haplotypes, StateDistance::equality);
            std::vector<int> states(n * static_cast<std::size_t>(copies), 0);
            states.back() = 1;
            LocusFixation const raw = walk.compute(states);
            EXPECT_NEAR(raw.FST, 0.0, 1e-13);
            EXPECT_GT(raw.mean_heterozygosity, 0.0);
            SimulatedLocus const locus = simulated_locus(raw);
            EXPECT_EQ(locus.FST, 0.0);
            EXPECT_EQ(locus.het_between, 0.0);
            EXPECT_EQ(locus.H, 0.0);
        }
    }
}

TEST(SimulatedLocusValues, KeepWhatIsNoRounding) {
    LocusFixation raw;
    raw.FST = 0.2, raw.FSC = -1e-17, raw.FCT = -0.01, raw.mean_heterozygosity = 0.4;
    SimulatedLocus const locus = simulated_locus(raw);
    EXPECT_EQ(locus.FST, 0.2);
    EXPECT_EQ(locus.FSC, 0.0);
    EXPECT_EQ(locus.FCT, -0.01);
    EXPECT_EQ(locus.H, 0.4);
    EXPECT_EQ(locus.het_between, 0.4 / (1.0 - 0.2));
    raw.FST = 1.0, raw.mean_heterozygosity = 0.0;
    EXPECT_EQ(simulated_locus(raw).het_between, 1.0);
    EXPECT_EQ(without_rounding(-9e-13), 0.0);
    EXPECT_EQ(without_rounding(2e-12), 2e-12);
    EXPECT_EQ(without_rounding(unusable_locus), unusable_locus);
}

TEST(Targets, AreMeansWeightedByTheHeterozygosityBetweenPopulations) {
    std::vector<TestedLocus> loci(4);
    loci[0].FST = 0.1, loci[0].FCT = 0.04, loci[0].het_between = 0.5;
    loci[1].FST = 0.3, loci[1].FCT = 0.10, loci[1].het_between = 0.25;
    loci[2].FST = unusable_locus, loci[2].het_between = 1.0;
    FixationTargets const one = target_means(loci, false);
    EXPECT_NEAR(one.FST, (0.05 + 0.075) / 0.75, 1e-15);
    EXPECT_EQ(one.FCT, 0.0);
    FixationTargets const several = target_means(loci, true);
    EXPECT_NEAR(several.FCT, (0.02 + 0.025) / 0.75, 1e-15);
    EXPECT_NEAR(several.FSC, 1.0 - (1.0 - several.FST) / (1.0 - several.FCT), 1e-15);
    EXPECT_EQ(target_means({}, true).FST, 0.0);
}

TEST(Targets, HeterozygosityBetweenPopulationsIsOneWithoutWithin) {
    EXPECT_EQ(het_between_populations(0.3, 1.0), 1.0);
    EXPECT_EQ(het_between_populations(0.3, unusable_locus), 1.0);
    EXPECT_NEAR(het_between_populations(0.3, 0.25), 0.4, 1e-15);
    EXPECT_EQ(het_between_populations(0.0, 0.0), 0.0);
}

TEST(Theta, InvertsTheHeterozygosityOfEachModel) {
    EXPECT_NEAR(theta_of_heterozygosity(0.5, MUT_INFINITE_ALLELES), 1.0, 1e-15);
    EXPECT_NEAR(theta_of_heterozygosity(0.5, MUT_STEPWISE), 1.5, 1e-15);  // 1 - 1 / sqrt(1 + 2 theta)
    EXPECT_NEAR(theta_of_heterozygosity(0.25, MUT_NUCLEOTIDES), 0.5, 1e-15);
    EXPECT_NEAR(theta_of_heterozygosity(0.25, MUT_BINARY), 0.5, 1e-15);
}

TEST(Simulations, SpendOneNumberForTheHeterozygosityAndOneMoreForHighOnesOfSites) {
    SelectionProject source(project_text("DNA", 3, 6, 3, false));
    NullLoci loci(source.view, source.tested);
    SimulationPlan plan = plan_of(0.2, 0.0, false);
    plan.het_low = plan.het_high = 0.5;
    RandomState const before = random_state;
    double const next = (uniform(), uniform());
    random_state = before;
    ASSERT_TRUE(loci.simulate(plan));
    EXPECT_DOUBLE_EQ(loci.target_het(), 0.45 + 0.05 * next);
    plan.het_high = 0.3;
    plan.het_low = 0.3;
    ASSERT_TRUE(loci.simulate(plan));
    EXPECT_DOUBLE_EQ(loci.target_het(), 0.3);
}

TEST(Simulations, SamplesOutsideTheGroupsAreSimulatedInTheFlatModelOnly) {
    std::string text = project_text("STANDARD", 4, 6, 2, false);
    std::string const last = "Group={\n\"S3\"\n\"S4\"\n}\n";
    text.replace(text.find(last), last.size(), "Group={\n\"S3\"\n}\n");
    SelectionProject flat(text);
    NullLoci all(flat.view, flat.tested);
    ASSERT_TRUE(all.simulate(plan_of(0.2, 0.0, false)));
    EXPECT_EQ(all.states_of_sample(3).size(), 6u);
    SelectionProject groups(text, false, true);
    NullLoci some(groups.view, groups.tested);
    ASSERT_TRUE(some.simulate(plan_of(0.2, 0.1, true)));
    EXPECT_EQ(some.states_of_sample(2).size(), 6u);
    EXPECT_TRUE(some.states_of_sample(3).empty());
}

TEST(Heterozygosity, OfSamplesAndGroupsIsWeightedByGeneCopies) {
    std::string const text = test::profile_text("STANDARD", 2, "WHITESPACE") + "[[Samples]]\n" +
                             test::sample_text("S1", "4", "a 3 1 1\nb 1 2 1\n") +
                             test::sample_text("S2", "6", "a 3 1 1\nc 3 2 ?\n") +
                             "[[Structure]]\nStructureName=\"g\"\nNbGroups=1\nGroup={\n\"S1\"\n\"S2\"\n}\n";
    SelectionProject p(text);
    ASSERT_EQ(p.analysed.project.result, 1) << p.analysed.project.log;
    computeMeanHeterozygosityOverSamplesInStructure(p.tested, p.analysed.alleles);
    TLocus const& first = *p.analysed.alleles[0];
    EXPECT_NEAR(first.mean_heterozygosity, (4 * 0.5 + 6 * 0.6) / 10, 1e-15);
    double const f = (4 * 0.75 + 6 * 0.5) / 10;
    EXPECT_NEAR(first.mean_gene_diversity, (1 - f * f - (1 - f) * (1 - f)) * 10 / 9, 1e-15);
    EXPECT_EQ(p.analysed.alleles[1]->mean_heterozygosity, 0.0);
}

/// What a detection borrows from the settings.
std::vector<long> borrowed_settings(settings const& set) {
    return {set.TaskNumber,
            set.HaplAMOVA,
            set.LocByLocAMOVA,
            set.NumPermutationsAMOVA,
            set.ComputeConventionalFST,
            set.ComputeDistanceMatrixAMOVA,
            set.ComputeDeltaMuSqr,
            set.ComputePairwiseFST,
            set.PrintMissIntermatchs,
            set.KeepNullDistrib,
            set.silent_structure,
            set.DistanceMethodAMOVA};
}

/// A detection of a few loci of individuals, which is stopped before it starts or as soon as the observed loci are
/// analysed.
struct StoppedDetection {
    explicit StoppedDetection(int loci, int stop, bool at_once = false, std::string const& parameters = "") {
        std::string row;
        for (int i = 0; i < loci; ++i) row += " %";
        std::string text =
            "[Profile]\nTitle=\"t\"\nNbSamples=3\nDataType=STANDARD\nGenotypicData=1\nGameticPhase=1\n"
            "LocusSeparator=WHITESPACE\nMissingData='?'\n[Data]\n[[Samples]]\n";
        auto const alleles = [&](char allele) {
            std::string alleles_row = row;
            std::replace(alleles_row.begin(), alleles_row.end(), '%', allele);
            return alleles_row + "\n";
        };
        text += test::sample_text("S1", "6", "a 5" + alleles('1') + alleles('1') + "b 1" + alleles('1') + alleles('2'));
        text += test::sample_text("S2", "6", "a 2" + alleles('1') + alleles('1') + "b 4" + alleles('1') + alleles('2'));
        text += test::sample_text("S3", "6", "b 1" + alleles('1') + alleles('2') + "c 5" + alleles('2') + alleles('2'));
        text += "[[Structure]]\nStructureName=\"g\"\nNbGroups=2\nGroup={\n\"S1\"\n\"S2\"\n}\nGroup={\n\"S3\"\n}\n";
        SelectionProject project(text, true, true);
        settings& set = project.analysed.set;
        set.silent_structure = false;
        set.TaskNumber = 77;
        set.NumberOfSimsForFDist2 = 1000;
        set.NumberOfDemesForFDist2 = 10;
        set.NumPermutationsAMOVA = 333;
        set.KeepNullDistrib = 1;
        set.tree_script = "tree.js";
        set.project_dir = "";
        set.stop = at_once ? 1 : 0;
        ScopedSwap<std::string> const file(settings::input_file, "p.tvp");
        if (!parameters.empty()) std::ofstream("simParamFile.txt") << parameters;
        set.set_ofs(&document);
        E.results = &document;
        std::vector<long> const before = borrowed_settings(set);
        StructureActions actions;
        actions.convert_genotypes = [&] { set.stop = stop; };
        actions.convert_repeat_lengths = [] {};
        actions.calc_dist_matrix = [](int, double) { return 1; };
        actions.print_distance_matrix = [] {};
        detect_selected_loci(project.view, actions, false);
        EXPECT_EQ(borrowed_settings(set), before);
        EXPECT_EQ(project.analysed.alleles.nb_loci(), loci);
        EXPECT_EQ(&set.ofs(), &document);
        EXPECT_EQ(E.results, &document);
        EXPECT_EQ(set.tree_script, "tree.js");
        EXPECT_EQ(project.tested.nb_groups(), 2);
        EXPECT_FALSE(std::ifstream("tree.js").good());
        result = project.analysed.project.result;
    }
    test::ScratchDirectory scratch;
    std::ostringstream document;
    int result = 0;
    [[nodiscard]] int simulated() const {
        std::string const table = scratch.read("fdist2_simOut.txt");
        return static_cast<int>(std::count(table.begin(), table.end(), '\n')) - 1;
    }
};

TEST(Detection, StoppedAmongTheObservedLociRestoresAllAndPrintsNothing) {
    StoppedDetection const detection(10, 1);
    ASSERT_EQ(detection.result, 1);
    EXPECT_EQ(detection.document.str(), "");
    EXPECT_FALSE(detection.scratch.has("fdist2_simOut.txt"));
}

TEST(Detection, StoppedAmongTheSimulationsRestoresAllAndPrintsNothing) {
    StoppedDetection const detection(3, 1);
    ASSERT_EQ(detection.result, 1);
    EXPECT_EQ(detection.document.str(), "");
    EXPECT_EQ(detection.simulated(), 10);
    EXPECT_FALSE(detection.scratch.has("fdist2_ObsOut.txt"));
}

TEST(Detection, StoppedBeforeItStartsRestoresAllAndAnalysesNothing) {
    StoppedDetection const detection(3, 0, true);
    ASSERT_EQ(detection.result, 1);
    EXPECT_EQ(detection.document.str(), "");
    EXPECT_FALSE(detection.scratch.has("fdist2_simOut.txt"));
}

TEST(Detection, StoppedAmongProjectsToMakeRestoresAllAndWritesNoProject) {
    std::string const parameters = "t\nf\n2\nl\n20\ng\n1\nd\n10\nFSC\n0.1\nFCT\n0.1\n";
    StoppedDetection const stopped(3, 1, false, parameters);
    ASSERT_EQ(stopped.result, 1);
    EXPECT_EQ(stopped.document.str(), "");
    EXPECT_FALSE(stopped.scratch.has("p_sim1.tvp"));
}

TEST(Detection, OfProjectsToMakeRestoresAllAndWritesThem) {
    std::string const parameters = "t\nf\n2\nl\n20\ng\n1\nd\n10\nFSC\n0.1\nFCT\n0.1\n";
    StoppedDetection const detection(3, 0, false, parameters);
    EXPECT_EQ(detection.document.str(), "");
    EXPECT_EQ(detection.scratch.read("sims.tvb"), "p_sim1.tvp\np_sim2.tvp\n");
    EXPECT_TRUE(detection.scratch.has("p_sim2.tvp"));
    EXPECT_FALSE(detection.scratch.has("fdist2_simOut.txt"));
}

TEST(Detection, RunToItsEndRestoresAll) {
    StoppedDetection const detection(3, 0);
    ASSERT_EQ(detection.result, 1);
    EXPECT_NE(detection.document.str().find("Finite island model:"), std::string::npos);
    EXPECT_EQ(detection.simulated(), 1000);
    EXPECT_TRUE(detection.scratch.has("fdist2_ObsOut.txt"));
}

bool read_loci(std::string const& text, bool several_groups, SimulatedLoci& loci) {
    std::istringstream in(text);
    return read_simulated_loci(in, several_groups, loci);
}

TEST(SimulationFiles, OfOneGroupGiveFirstAndThirdColumn) {
    SimulatedLoci loci;
    EXPECT_TRUE(read_loci("head\n0.1\tNA\t0.3\t0.27\t4\n0.2\t0.5\t0.6\r\nx\t1\t2\n0.3\t1\n", false, loci));
    EXPECT_EQ(loci.FST, (std::vector<double>{0.1, 0.2}));
    EXPECT_EQ(loci.het, (std::vector<double>{0.3, 0.6}));
    EXPECT_EQ(loci.mutations, (std::vector<int>{4, 0}));
    EXPECT_EQ(loci.lowest, 0.3);
    EXPECT_EQ(loci.highest, 0.6);
}

TEST(SimulationFiles, OfSeveralGroupsHaveSevenColumns) {
    SimulatedLoci loci;
    EXPECT_TRUE(read_loci("head\n0.1\t0.06\t0.05\tNA\t0.3\t0.27\t4\n0.2\t0.5\t0.6\n", true, loci));
    EXPECT_EQ(loci.FST, (std::vector<double>{0.1}));
    EXPECT_EQ(loci.FCT, (std::vector<double>{0.05}));
    EXPECT_EQ(loci.het, (std::vector<double>{0.3}));
    EXPECT_EQ(loci.mutations, (std::vector<int>{4}));
}

TEST(SimulationFiles, WithoutLinesOrMissingGiveNothing) {
    SimulatedLoci loci;
    EXPECT_FALSE(read_loci("head\n", false, loci));
    EXPECT_FALSE(read_loci("", false, loci));
    std::ifstream nowhere("no such file");
    EXPECT_FALSE(read_simulated_loci(nowhere, false, loci));
    EXPECT_TRUE(loci.het.empty());
}

TEST(SimulationFiles, LinesThatAreCutOrNoFiniteNumbersArePassedOver) {
    SimulatedLoci loci;
    EXPECT_TRUE(read_loci("h\nnan\t0\t0.1\n0.1\t0\tinf\n0.1\t0\t1e999\n0.1 0 0.2\n\n\t\t\n0.1\t0\t0.25\n0.2\t0\t0.",
                          false, loci));
    EXPECT_EQ(loci.het, (std::vector<double>{0.25, 0.0}));  // the last number was cut after its point
}

struct Parameters {
    explicit Parameters(std::string const& text, bool two_levels = true) {
        plan.simulations = 77;
        plan.model.two_levels = two_levels;
        plan.model.groups = two_levels ? 10 : 1;
        plan.model.demes = 100;
        std::istringstream in(text);
        read_simulation_parameters(in, plan, targets);
    }
    SimulationPlan plan;
    FixationTargets targets{0.1, 0.06, 0.05};
};

TEST(SimulationParameters, StandOnEverySecondLineFromTheThirdOn) {
    Parameters const p("title\nfiles\n2\nloci\n30\ngroups\n5\ndemes\n40\nFSC\n0.2\nFCT\n0.1\nmore\n9\n");
    EXPECT_TRUE(p.plan.makes_files);
    EXPECT_EQ(p.plan.files, 2);
    EXPECT_EQ(p.plan.simulations, 30);
    EXPECT_EQ(p.plan.model.groups, 5);  // fewer than the settings have
    EXPECT_EQ(p.plan.model.demes, 40);
    EXPECT_EQ(p.targets.FSC, 0.2);
    EXPECT_EQ(p.targets.FCT, 0.1);
    EXPECT_NEAR(p.targets.FST, 1.0 - 0.8 * 0.9, 1e-15);
}

TEST(SimulationParameters, AreTheFirstWordsOfTheirLines) {
    Parameters const p("t\nf\n 3 files\r\nl\n\t12\tloci\ng\n4# groups\nd\n20 demes\nFSC\n 1e-1 \nFCT\n0\n");
    EXPECT_EQ(p.plan.files, 3);
    EXPECT_EQ(p.plan.simulations, 12);
    EXPECT_EQ(p.plan.model.groups, 10);  // no number
    EXPECT_EQ(p.plan.model.demes, 20);
    EXPECT_EQ(p.targets.FSC, 0.1);
    EXPECT_EQ(p.targets.FCT, 0.0);
}

TEST(SimulationParameters, ThatAreMissingStayAsTheyWere) {
    for (char const* const text : {"", "title", "t\nf\n", "t\nf\nnone\nl\n0\ng\n\nd\nnan\nFSC\ninf\n"}) {
        Parameters const p(text);
        EXPECT_TRUE(p.plan.makes_files);
        EXPECT_EQ(p.plan.files, 1);
        EXPECT_EQ(p.plan.simulations, 77);
        EXPECT_EQ(p.plan.model.groups, 10);
        EXPECT_EQ(p.plan.model.demes, 100);
        EXPECT_NEAR(p.targets.FST, 1.0 - 0.94 * 0.95, 1e-15);
    }
}

TEST(SimulationParameters, OutOfRangeCountAsZero) {
    Parameters const p("t\nf\n-4\nl\n-3\ng\n1e300\nd\n99999999999\nFSC\n0\nFCT\n0\n");
    EXPECT_EQ(p.plan.files, 0);
    EXPECT_EQ(p.plan.simulations, 77);
    EXPECT_EQ(p.plan.model.groups, 0);
    EXPECT_EQ(p.plan.model.demes, 0);
    Parameters const flat("t\nf\n1\nl\n1\ng\n5\n", false);
    EXPECT_EQ(flat.plan.model.groups, 1);
}

TEST(FixationWalk, TooFewCopiesOrOneAlleleGiveZeros) {
    LocusFixationWalk walk(StructureSizes({2, 2}, {2}), FixationUnit::haplotypes, StateDistance::equality);
    std::vector<int> const same{3, 3, 3, 3};
    EXPECT_EQ(walk.compute(same).FST, 0.0);
    EXPECT_EQ(walk.compute(same).mean_heterozygosity, 0.0);
    EXPECT_EQ(walk.compute({}).FST, 0.0);
    std::vector<int> const fixed{1, 1, -2, -2};
    EXPECT_EQ(walk.compute(fixed).FST, 1.0);
    EXPECT_EQ(walk.compute(fixed).mean_heterozygosity, 0.0);
}

}  // namespace
}  // namespace tov
