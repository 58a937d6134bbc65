// Simulated loci: their statistics against whole projects, against theory, and the P-values of neutral loci.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>

#include "structure/formula/selection_p.h"
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

TEST(NullDistribution, MeanFctAndFscOfTwoLevelsAreNearTheirTargets) {
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
    EXPECT_NEAR(ratio_fct.value(), fct, 4.0 * ratio_fct.error() + 0.005);
    EXPECT_NEAR(ratio_fsc.value(), fsc, 4.0 * ratio_fsc.error() + 0.005);
}

TEST(NullDistribution, NeutralLociHaveUniformTailsAndAPlantedOneIsFound) {
    SelectionProject source(project_text("STANDARD", 10, 40, 10, false));
    NullLoci loci(source.view, source.tested);
    SimulationPlan plan = plan_of(0.1, 0.0, false, 100);
    plan.het_high = 1.0;
    SimulatedLoci null;
    auto const simulate = [&](SimulatedLoci& into) {
        ASSERT_TRUE(loci.simulate(plan));
        LocusFixation const locus = loci.statistics();
        double const het = locus.FST == 0.0 ? 0.0 : het_between_populations(locus.mean_heterozygosity, locus.FST);
        into.add(het, locus.FST, locus.FCT, loci.mutations());
    };
    for (int i = 0; i < 6000; ++i) simulate(null);
    SimulatedLoci neutral;
    while (neutral.het.size() < 500) {
        simulate(neutral);
        if (neutral.het.back() > 0.0) continue;
        neutral.het.pop_back();
        neutral.FST.pop_back();
    }
    SelectionKernel const kernel;
    auto const p_value = [&](double fst, double het) {
        return calcFSTpvalue(fst, null.het, null.FST, kernel.h_stat, het, kernel.h_het, kernel.grid_points);
    };
    int below_25 = 0, below_50 = 0;
    for (std::size_t i = 0; i < 500; ++i) {
        double const p = p_value(neutral.FST[i], neutral.het[i]);
        EXPECT_LE(p, 0.5 + 1e-3);
        below_25 += p < 0.025;
        below_50 += p < 0.05;
    }
    EXPECT_GE(below_25, 15);
    EXPECT_LE(below_25, 40);
    EXPECT_GE(below_50, 35);
    EXPECT_LE(below_50, 75);
    EXPECT_LT(p_value(0.5, 0.6), 0.001);
    EXPECT_LT(p_value(0.001, 0.9), 0.01);
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

/// A detection of a few loci of individuals, which is stopped as soon as the observed loci are analysed.
struct StoppedDetection {
    explicit StoppedDetection(int loci, int stop) {
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

TEST(Detection, RunToItsEndRestoresAll) {
    StoppedDetection const detection(3, 0);
    ASSERT_EQ(detection.result, 1);
    EXPECT_NE(detection.document.str().find("Finite island model:"), std::string::npos);
    EXPECT_EQ(detection.simulated(), 1000);
    EXPECT_TRUE(detection.scratch.has("fdist2_ObsOut.txt"));
}

class SimulationFiles : public ::testing::Test {
protected:
    test::ScratchDirectory scratch;
    [[nodiscard]] std::string write(std::string const& text) const {
        std::string const path = "sims.txt";
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }
};

TEST_F(SimulationFiles, OfOneGroupGiveFirstAndThirdColumn) {
    SimulatedLoci loci;
    EXPECT_TRUE(
        read_simulated_loci(write("head\n0.1\tNA\t0.3\t0.27\t4\n0.2\t0.5\t0.6\r\nx\t1\t2\n0.3\t1\n"), false, loci));
    EXPECT_EQ(loci.FST, (std::vector<double>{0.1, 0.2}));
    EXPECT_EQ(loci.het, (std::vector<double>{0.3, 0.6}));
    EXPECT_EQ(loci.mutations, (std::vector<int>{4, 0}));
    EXPECT_EQ(loci.lowest, 0.3);
    EXPECT_EQ(loci.highest, 0.6);
}

TEST_F(SimulationFiles, OfSeveralGroupsHaveSevenColumns) {
    SimulatedLoci loci;
    EXPECT_TRUE(read_simulated_loci(write("head\n0.1\t0.06\t0.05\tNA\t0.3\t0.27\t4\n0.2\t0.5\t0.6\n"), true, loci));
    EXPECT_EQ(loci.FST, (std::vector<double>{0.1}));
    EXPECT_EQ(loci.FCT, (std::vector<double>{0.05}));
    EXPECT_EQ(loci.het, (std::vector<double>{0.3}));
    EXPECT_EQ(loci.mutations, (std::vector<int>{4}));
}

TEST_F(SimulationFiles, WithoutLinesOrMissingGiveNothing) {
    SimulatedLoci loci;
    EXPECT_FALSE(read_simulated_loci(write("head\n"), false, loci));
    EXPECT_FALSE(read_simulated_loci("no such file", false, loci));
    EXPECT_TRUE(loci.het.empty());
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
