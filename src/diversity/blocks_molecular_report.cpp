// Molecular diversity indices and theta estimates as the document and the batch tables show them.
#include "diversity/blocks_molecular_report.h"

#include <array>
#include <ostream>
#include <string>
#include <vector>

#include "diversity/blocks.h"
#include "diversity/popdna.h"
#include "input/distance_names.h"
#include "input/settings.h"
#include "output/glbobj.h"
#include "output/references.h"
#include "output/style.h"
#include "output/table.h"

namespace tov {
namespace {

constexpr int heading_length = 32;
constexpr int label_width = 45;
constexpr int theta_label_width = 20;

/// A label padded to the column of the colon.
left_label padded(std::string_view text) { return {text, label_width}; }

void print_count(SampleRun& run, std::string_view text, long long value) {
    run.out << padded(text) << ": " << value << '\n';
}

/// Literature of the indices that the block prints for this data type and these settings.
std::vector<std::string_view> references_of(SampleRun const& run) {
    std::vector<std::string_view> tags = {"tajima1983", "tajima1993", "nei1987"};
    int const method = run.set.DistanceMethod;
    std::string_view const reference = distance_method_reference(run.words.type, method);
    if (!reference.empty()) {
        tags.push_back(reference);
        if (run.set.GammaAValue != 0.0 && method <= 2) {
            tags.push_back("jin_nei1990");
        }
    }
    int thetas = run.set.ComputeTheta;
    if (run.words.type == MICROSAT) {
        thetas &= theta_bit::hom;
    } else if (run.words.type == STANDARD) {
        thetas &= theta_bit::hom | theta_bit::k;
    }
    if ((thetas & theta_bit::hom) != 0) {
        tags.push_back("zouros1979");
        tags.push_back("chakraborty_weiss1991");
    }
    if ((thetas & theta_bit::k) != 0) {
        tags.push_back("ewens1972");
    }
    if ((thetas & theta_bit::S) != 0) {
        tags.push_back("watterson1975");
    }
    return tags;
}

void print_reference_list(std::ostream& out, std::vector<std::string_view> const& tags) {
    for (std::size_t i = 0; i < tags.size(); ++i) {
        References(out, tags[i], i == 0 ? 0 : i + 1 < tags.size() ? 1 : 2);
    }
}

/// A label of a theta estimate, right aligned, and its value.
void print_estimate(std::ostream& out, std::string const& text, double value) {
    out << label{text, theta_label_width};
    write_padded(out, value_or_na(value, 6), 12);
    out << '\n';
}

}  // namespace

std::string_view short_distance_title(TDataType type, int method) {
    static constexpr std::array<std::string_view, 7> dna = {"#Diff", "JC", "K2P", "%Diff", "TajNei", "Tam", "TamNei"};
    if (type == RFLP) {
        return method == 1 ? "%Diff" : "#Diff";
    }
    if (type == MICROSAT) {
        return method == 0 ? "#Diff" : "SqDiff";
    }
    return type == DNA && method >= 0 && method < 7 ? dna[static_cast<std::size_t>(method)] : "#Diff";
}

std::string_view distance_title(TDataType type, int method) {
    switch (type) {
        case DNA: return method < 0 || method > 6 ? "DIFF" : distance_method_name(type, method);
        case RFLP: return method < 0 || method > 1 ? "DIFF" : distance_method_name(type, method);
        case MICROSAT: return distance_method_name(type, method == 0 ? 0 : 1);  // any other number squares the sizes
        default: return distance_method_name(type, 0);                           // there is one distance only
    }
}

void print_molecular_heading(SampleRun& run) {
    sample_heading(run.out, "Molecular diversity indices", run.name(), heading_length);
    print_reference_list(run.out, references_of(run));
    run.out << '\n';
}

void print_sample_sizes(SampleRun& run, TabRow& table_row) {
    settings const& set = run.set;
    int const distinct = run.pop.nb_haplotypes();
    print_count(run, "Sample size", run.copies());
    if (run.haplotypes_known()) {
        print_count(run, "No. of haplotypes", distinct);
    }
    table_row << run.copies() << distinct;
    if (run.shows_original_number()) {
        print_count(run, "No. of original haplotypes in sample", run.pop.nb_original_haplotypes);
        table_row << run.pop.nb_original_haplotypes;
    }
    run.out << '\n';
    if (run.words.type == DNA || run.words.type == RFLP) {
        run.out << padded("Deletion weight") << ": " << num{set.DeletionWeight, 0, 4} << '\n';
    }
    if (run.words.type == DNA) {
        run.out << padded("Transition weight") << ": " << num{set.TransitionWeight, 0, 4} << '\n'
                << padded("Transversion weight") << ": " << num{set.TranversionWeight, 0, 4} << '\n';
    }
    run.out << padded("Allowed level of missing data") << ": " << num{100.0 * set.AllowedLevelOfMissingData, 0, 2}
            << " %\n\n";
    table_row << set.DeletionWeight << set.TransitionWeight << set.TranversionWeight << set.AllowedLevelOfMissingData;
}

void print_substitution_counts(SampleRun& run, SubstitutionCounts const& c) {
    print_count(run, "No. of observed transitions", c.transitions);
    print_count(run, "No. of observed transversions", c.transversions);
    print_count(run, "No. of observed substitutions", c.substitutions);
    print_count(run, "No. of observed indels", c.indels);
    print_count(run, "No. of polymorphic sites", run.pop.numPolymSites());
    print_count(run, "No. of observed sites with transitions", c.transition_sites);
    print_count(run, "No. of observed sites with transversions", c.transversion_sites);
    print_count(run, "No. of observed sites with substitutions", c.substitution_sites);
    print_count(run, "No. of observed sites with indels", c.indel_sites);
    run.out << '\n';
}

void print_site_numbers(SampleRun& run, TabRow& table_row) {
    SubstitutionCounts c;
    if (auto const* const dna = dynamic_cast<PopulDNA const*>(&run.pop)) {
        c = dna->substitution_counts();
        print_count(run, "Number of observed nucleotide sites", run.pop.nb_loci());
        print_count(run, "Number of usable nucleotide sites", run.pop.nb_usable_loci());
    } else if (run.words.type == RFLP) {
        print_count(run, "No. of polymorphic sites", run.pop.numPolymSites());
        print_count(run, "Number of observed sites", run.pop.nb_loci());
        print_count(run, "Number of usable sites", run.pop.nb_usable_loci());
    } else {
        print_count(run, "No. of polymorphic loci", run.pop.numPolymSites());
        print_count(run, "Number of observed loci", run.pop.nb_loci());
        print_count(run, "Number of usable loci", run.pop.nb_usable_loci());
    }
    for (int const n :
         {c.transitions, c.transversions, c.substitutions, c.indels, run.pop.numPolymSites(), c.transition_sites,
          c.transversion_sites, c.substitution_sites, c.indel_sites, run.pop.nb_loci(), run.pop.nb_usable_loci()}) {
        table_row << n;
    }
}

void print_composition(SampleRun& run, NucleotideFrequencies const& f) {
    run.out << "\nNucleotide composition (Relative values)";
    auto line = [&run](std::string_view text, double share) { run.out << text << num{100.0 * share, 8, 2} << " %"; };
    double const total = f.c + f.t + f.a + f.g;
    line("\n   C :", f.c);
    line("\n   T :", f.t);
    line("\n   A :", f.a);
    line("\n   G :", f.g);
    line("\n   Total :", total);
    run.out << '\n';
    batch_row(ofs_nuc_comp, settings::input_file, run.name()) << f.c << f.t << f.a << f.g << total;
}

void print_distance_choice(SampleRun& run, TabRow& table_row) {
    TDataType const type = run.pop.profile.DataType;
    int const method = run.set.DistanceMethod;
    run.out << '\n' << padded("Distance method") << ": " << distance_title(type, method);
    double const a = run.set.GammaAValue;
    if (run.words.type == DNA) {
        run.out << gamma_note{a};
    }
    run.out << '\n';
    if (type == FREQUENCY) {
        table_row << "none"
                  << "none";
        return;
    }
    table_row << short_distance_title(type, method);
    if (run.words.type == DNA && a != 0.0) {
        table_row << a;
    } else {
        table_row << " inf";
    }
}

void print_mean_differences(SampleRun& run) {
    PopGenetics const& pop = run.pop;
    if (run.haplotypes_known()) {
        run.out << '\n'
                << padded("Mean number of pairwise differences") << ": " << plus_minus{pop.pi(), pop.sd_pi(), 12, 6};
    }
    run.out << '\n'
            << padded(run.words.diversity_per_locus) << ": "
            << plus_minus{pop.nucleotide_diversity(), pop.sd_nucleotide_diversity(), 12, 6} << "\n\n"
            << "(Standard deviations are for both the sampling and the stochastic processes)\n";
}

void write_diversity_values(SampleRun const& run, TabRow& table_row) {
    PopGenetics const& pop = run.pop;
    table_row << pop.pi() << pop.sd_pi() << pop.nucleotide_diversity() << pop.sd_nucleotide_diversity();
}

void print_theta(SampleRun& run, TabRow& table_row, std::string_view estimator, double value, double sd) {
    std::string const name = "Theta(" + std::string(estimator) + ") : ";
    print_estimate(run.out, name, value);
    print_estimate(run.out, "S.D. " + name, sd);
    run.out << '\n';
    table_row << "(" + std::string(estimator) + ")" << value << sd;
}

void print_theta_k(SampleRun& run, TabRow& table_row, bool limits) {
    PopGenetics const& pop = run.pop;
    print_estimate(run.out, "Theta(k) : ", pop.theta_k_);
    if (limits) {
        run.out << "\n95 % confidence interval limits for theta(k) : [ " << num{pop.theta_k_inf_, 0, 6} << ", "
                << num{pop.theta_k_sup_, 0, 6} << " ]\n";
    }
    run.out << '\n';
    table_row << "(k)" << pop.theta_k_;
    if (limits) {
        table_row << pop.theta_k_inf_ << pop.theta_k_sup_;
    }
}

void print_distinct_copies(SampleRun& run) {
    int const wanted = run.set.ComputeTheta;
    switch (run.words.type) {
        case DNA:
            if ((wanted & theta_bit::hom) != 0) {
                run.out << "\nUnable to compute Theta(Hom) when all gene copies are different";
            }
            if ((wanted & theta_bit::k) != 0) {
                run.out << "\nUnable to compute Theta(k) when all gene copies are different";
            }
            break;
        case MICROSAT:
            if ((wanted & theta_bit::hom) != 0) {
                run.out << "Unable to compute theta(Hom) when all gene copies are different";
            }
            break;
        default:
            if ((wanted & (theta_bit::hom | theta_bit::k)) != 0) {
                run.out << "\nUnable to compute theta(Hom) and theta(k) when all gene copies are different";
            }
            break;
    }
    run.out << "\n\n";
}

void print_theta_refusals(SampleRun& run) {
    int const wanted = run.set.ComputeTheta;
    if (run.words.type == MICROSAT) {
        run.out << "Unable to compute some theta values for microsatellite data type\n\n";
        return;
    }
    if ((wanted & theta_bit::S) != 0) {
        run.out << "Unable to compute theta(S) for standard data type\n";
    }
    if ((wanted & theta_bit::pi) != 0) {
        run.out << "Unable to compute theta(Pi) for standard data type\n";
    }
}

}  // namespace tov
