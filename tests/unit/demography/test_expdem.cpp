// Estimation of expansions over a sample: what is simulated, which replicates count, and what is printed.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "demography/expdem.h"
#include "demography/spatialexp.h"
#include "diversity/popdna.h"
#include "simulation/genealgy.h"
#include "support/analysed_project.h"
#include "support/scratch_directory.h"
#include "support/text.h"

namespace tov {
namespace {

using test::AnalysedProject;
using test::holds;

std::string dna(std::string const& size, std::string const& data) {
    return test::profile_text("DNA") + "[[Samples]]\n" + test::sample_text("here", size, data);
}

std::string const nine_copies =
    "a 3 ACGTACGTACGTACGT\nb 2 ACGTACGTACGTACAA\nc 2 GCGTACGTTTGTACGT\nd 1 GCGTACGTTTGTCCGG\n"
    "e 1 ACGTACCCACGTACGT\n";

class Expansion : public testing::Test {
protected:
    ~Expansion() override {
        PopGenetics::globalSubstPolymSites.Flush();
        TNode::hits.Flush();
    }
    test::ScratchDirectory directory;  // glob_res.xl is written there
};

/// The estimate with its steps at hand.
template <class Estimate>
class Probe : public Estimate {
public:
    using Estimate::Estimate;
    using Estimate::calc_mismatch;
    using Estimate::simulate;
};

TEST_F(Expansion, SimulatedDistributionsFollowTheirDraws) {
    test::FreshProcess const fresh(0);
    PopulDNA pop;
    pop.set_sample_size(6);
    settings set;
    Probe<ann_missmatch> probe(pop, set);
    random_state.ran3.seed(-1);
    ASSERT_EQ(probe.simulate({1.0, 20.0, 4.0, 0.0}), 1);
    EXPECT_EQ(pop.getGeneTree().nb_mutations(), 12);
    double const next = uniform();
    random_state.ran3.seed(-1);
    for (int draw = 0; draw < 49; ++draw) {
        uniform();
    }
    EXPECT_EQ(uniform(), next);
    std::vector<double> y(11);
    int sites = 0;
    probe.calc_mismatch(y, sites);
    EXPECT_EQ(sites, 11);
    double const expected[] = {0, .2, .06666666667, 0, .1333333333, .3333333333, .1333333333, 0, .06666666667,
                               .06666666667, 0};
    for (std::size_t c = 0; c < y.size(); ++c) {
        EXPECT_NEAR(y[c], expected[c], 1e-10) << c;
    }
    // With classes 0 to 5 alone, the pairs beyond them are left out and the others keep their shares.
    y.resize(6);
    probe.calc_mismatch(y, sites);
    for (std::size_t c = 0; c < y.size(); ++c) {
        EXPECT_NEAR(y[c], expected[c], 1e-10) << c;
    }
}

TEST_F(Expansion, NothingIsSimulatedWithoutSizeOrWithoutLimit) {
    test::FreshProcess const fresh;
    PopulDNA pop;
    pop.set_sample_size(6);
    settings set;
    EXPECT_EQ((Probe<ann_missmatch>(pop, set).simulate({0.0, 0.0, 4.0, 0.0})), 0);
    Probe<mismatchSpatialExpansion> spatial(pop, set, ExpansionModel::spatial_4p);
    EXPECT_EQ(spatial.simulate({1.0, 0.0, 4.0, 1.0}), 0);
    EXPECT_EQ(spatial.simulate({1.0, 2e16, 4.0, 1.0}), 0);
    EXPECT_EQ(spatial.simulate({1.0, 5.0, 4.0, 1.0}), 1);
}

/// Its first replicates have no mutations.
class LateDiversity : public ann_missmatch {
public:
    using ann_missmatch::ann_missmatch;
    int simulations = 0;

protected:
    int simulate(ExpansionParameters const& p) override {
        ExpansionParameters used = p;
        if (++simulations <= 5) {
            used.theta0 = used.theta1 = 1e-12;
            used.tau = 1e-12;
        }
        return ann_missmatch::simulate(used);
    }
};

TEST_F(Expansion, ReplicatesWithoutDiversityAreDrawnAnew) {
    AnalysedProject p(dna("9", nine_copies));
    p.run(task::mismatch);
    p.set.NumBootExpDem = 4;
    LateDiversity estimate(p.sample(), p.set);
    std::ostringstream out;
    estimate.solve_least_square(out);
    EXPECT_TRUE(holds(out.str(), "Based on 4 replicates\n"));
    EXPECT_GE(estimate.simulations, 9);
}

TEST_F(Expansion, AnEstimateThatCannotBeSimulatedHasNoTest) {
    AnalysedProject p(dna("3", "a 1 ACGT\nb 1 ACGA\nc 1 GCGA\n"));
    p.set.NumBootExpDem = 5;
    p.set.MismatchSpatialExp = 1;
    p.set.MismatchSpatialExpNumParams = 4;
    std::string const text = p.run(task::mismatch);
    EXPECT_GT(p.sample().spatial_fit_.theta1.value, mismatchSpatialExpansion::largest_theta);
    EXPECT_TRUE(holds(text, "        #Diff     Observed    Model Freq.\n"));
    EXPECT_FALSE(holds(text, "Test of goodness-of-fit:"));
    EXPECT_TRUE(holds(p.log(), "\t\tno sample could be simulated under the estimated parameters\n"));
}

TEST_F(Expansion, PrintsEstimatesTestIntervalsAndRegion) {
    AnalysedProject p(dna("9", nine_copies));
    p.set.NumBootExpDem = 3;
    p.set.MismatchDemogExp = p.set.MismatchSpatialExp = 1;
    p.set.MismatchSpatialExpNumParams = 2;
    std::string const text = p.run(task::mismatch);
    std::string const stars(54, '*');
    EXPECT_TRUE(holds(text, "\n\n" + stars + "\nParameters estimated under the sudden expansion model:\n" + stars +
                                "\n\nMismatch observed mean              : "))
        << text;
    EXPECT_TRUE(holds(text, "\nMismatch observed variance          : "));
    EXPECT_TRUE(holds(text, "\nTest of goodness-of-fit:\n------------------------\n"
                            "\n         Sum of Squared deviation: 0."));
    EXPECT_TRUE(holds(text, "\n\nConfidence intervals (Percentile method):\t alpha=\t0.050\nBased on 3 replicates\n"));
    EXPECT_TRUE(holds(text, "\n                  Variable:       Est. val:     Low. bound:      Up. bound:"
                            "     Mean Value:\n"));
    EXPECT_TRUE(holds(text, "\nConfidence region for the observed mismatch:\n\n"));
    EXPECT_TRUE(holds(text, "        #Diff     Observed    Low. bound  Up. bound   Model Freq.\n"));
    EXPECT_TRUE(holds(text, "\nM                                   : "));
    std::string const four =
        "Parameters of the spatial expansion assuming different deme size before (theta0) and after (theta1) expansion";
    std::string const three = "Parameters of the spatial expansion assuming constant deme size";
    EXPECT_TRUE(holds(text, "\n\n" + std::string(four.size(), '-') + "\n" + four + "\n"));
    EXPECT_TRUE(holds(text, "\n\n" + std::string(63, '=') + "\n" + three + "\n"));
    EXPECT_LT(text.find(four), text.find(three));
    EXPECT_EQ(directory.read("glob_res.xl"),
              "Data file\tTau\tC.I. Tau\tTheta1\tC.I. Theta1\tTheta0\tC.I. Theta0\tP-value\tSignif. 5%\tTau (R-H)"
              "\tTheta1 (R-H)\tTheta0 (R-H)\n");
}

/// No search ends within its steps.
class Restless : public ann_missmatch {
public:
    using ann_missmatch::ann_missmatch;
    void print(std::ostream& out) const { print_not_converged(out); }
};
class RestlessInSpace : public mismatchSpatialExpansion {
public:
    using mismatchSpatialExpansion::mismatchSpatialExpansion;
    void print(std::ostream& out) const { print_not_converged(out); }
};

TEST_F(Expansion, SaysThatASearchDidNotConverge) {
    PopulDNA pop;
    settings set;
    std::ostringstream out;
    Restless(pop, set).print(out);
    EXPECT_EQ(out.str(), "\nLeast-square procedure to fit expected and observed"
                         "\nmismatch distribution did not converge after 2000steps \n");
    out.str("");
    RestlessInSpace(pop, set, ExpansionModel::spatial_3p).print(out);
    EXPECT_EQ(out.str(), "\nLeast-square procedure to fit expected to observed mismatch distribution\n"
                         "did not converge after 2000 steps\n");
    out.str("");
    RestlessInSpace(pop, set, ExpansionModel::spatial_4p).print(out);
    EXPECT_EQ(out.str(), "\nLeast square procedure to fit model mismatch distribution\n"
                         "and observed distribution did not converge after 2000steps\n");
}

}  // namespace
}  // namespace tov
