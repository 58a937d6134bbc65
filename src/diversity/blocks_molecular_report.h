// Molecular diversity indices and theta estimates as the document and the batch tables show them.
#pragma once

#include <string_view>

#include "input/profile.h"

namespace tov {

class SampleRun;
struct NucleotideFrequencies;
struct SubstitutionCounts;

/// Name of a distance method in the document, and in the batch tables.
[[nodiscard]] std::string_view distance_title(TDataType type, int method);
[[nodiscard]] std::string_view short_distance_title(TDataType type, int method);

void print_molecular_heading(SampleRun& run);
/// Numbers of copies and haplotypes, weights, allowed level of missing data.
void print_sample_sizes(SampleRun& run);
/// Observed changes and the sites that show them.
void print_substitution_counts(SampleRun& run, SubstitutionCounts const& counts);
/// Numbers of sites (loci) and usable sites; for other data than DNA the polymorphic ones too.
void print_site_numbers(SampleRun& run);
/// Nucleotide composition in percent.
void print_composition(SampleRun& run, NucleotideFrequencies const& f);
void print_distance_choice(SampleRun& run);
void print_mean_differences(SampleRun& run);

// --- Theta; each also writes its part of the theta table ---
void begin_theta_row(SampleRun& run);
void print_theta(SampleRun& run, std::string_view estimator, double value, double sd);
void print_theta_k(SampleRun& run, bool limits);
/// The estimators that all copies being distinct leaves out.
void print_distinct_copies(SampleRun& run);
/// The estimators that the data type leaves out.
void print_theta_refusals(SampleRun& run);
void end_theta_row(SampleRun& run);

// --- Row of the table of molecular diversity; the functions above write its first part ---
void begin_molecular_row(SampleRun& run);
void write_diversity_values(SampleRun& run);
void end_molecular_row(SampleRun& run);

}  // namespace tov
