// What the neutrality tests print.
#pragma once

#include <iosfwd>
#include <string_view>

namespace tov {

class settings;

/// Mean and deviation of a statistic over the replicates.
struct ReplicateMoments {
    double mean = 0.0;
    double sd = 0.0;
};

/// Tajima's test of the observed sample.
struct TajimaReport {
    int copies = 0;
    int sites = 0;
    double pi = 0.0;
    double D = 0.0;
};
void print_tajima_sample(std::ostream& out, TajimaReport const& r);

/// Tajima's test by its replicates, of which there is at least one.
struct TajimaSimulationReport {
    int replicates = 0;
    double theta_S = 0.0;
    ReplicateMoments theta;
    ReplicateMoments D;
    double p = 0.0;
};
void print_tajima_simulation(std::ostream& out, TajimaSimulationReport const& r);

/// Fu's test of the observed sample.
struct FuReport {
    bool checks_definition = false;  ///< haplotypes that don't differ were merged for the test
    int original_alleles = 0;
    int alleles = 0;
    double theta_pi = 0.0;
    double expected_alleles = 0.0;
    double Fs = 0.0;
};
void print_fu_sample(std::ostream& out, FuReport const& r);
void print_fu_single_allele(std::ostream& out, int copies, int alleles);

/// Fu's test by its replicates, of which there is at least one.
struct FuSimulationReport {
    int replicates = 0;
    ReplicateMoments theta;
    ReplicateMoments alleles;
    double p = 0.0;
};
void print_fu_simulation(std::ostream& out, FuSimulationReport const& r);

/// Why an Ewens-Watterson test can't be made.
enum class EwensObstacle { none, all_copies_distinct, one_allele, too_large };
/// Sentence of the obstacle, in the document between a line end and a dash rule, and its form in the batch table.
void print_ewens_obstacle(std::ostream& out, EwensObstacle obstacle, int copies, int alleles);
[[nodiscard]] std::string_view ewens_obstacle_row(EwensObstacle obstacle);
/// The table of the test can't reach the sample.
void print_ewens_table_limit(std::ostream& out);

/// The Ewens-Watterson tests of a sample.
struct EwensReport {
    bool checks_definition = false;
    int copies = 0;
    int original_haplotypes = 0;
    int haplotypes = 0;
    double F_obs = 0.0;
    double F_exp = -1.0;
    int replicates = 0;
    double p_watterson = -1.0;
    double p_slatkin = -1.0;
};
void print_ewens(std::ostream& out, EwensReport const& r);

/// Chakraborty's test of a sample.
struct ChakrabortyReport {
    int copies = 0;
    int alleles = 0;
    double homozygosity = 0.0;
    double expected_alleles = 0.0;
    double p_exact = 0.0;
    double p_or_more = 0.0;
};
void print_chakraborty(std::ostream& out, ChakrabortyReport const& r);
void print_chakraborty_distinct(std::ostream& out, int copies, int alleles);
void print_chakraborty_limit(std::ostream& out);

/// The warning that a test needs more than one haplotype, in the document and on the console.
/// @param test  "Chakraborty's" or "Ewens-Watterson's".
void warn_single_haplotype(std::ostream& out, std::ostream& console, std::string_view test);

}  // namespace tov
