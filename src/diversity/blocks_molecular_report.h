// Molecular diversity indices and theta estimates as the document and the batch tables show them.
#pragma once

#include <string_view>

#include "input/profile.h"

namespace tov {

class SampleRun;
class TabRow;
struct NucleotideFrequencies;
struct SubstitutionCounts;

/// Name of a distance method in the document, and in the batch tables.
[[nodiscard]] std::string_view distance_title(TDataType type, int method);
[[nodiscard]] std::string_view short_distance_title(TDataType type, int method);

void print_molecular_heading(SampleRun& run);
/// Numbers of copies and haplotypes, weights, allowed level of missing data; appended to the sample's row too.
void print_sample_sizes(SampleRun& run, TabRow& table_row);
/// Observed changes and the sites that show them.
void print_substitution_counts(SampleRun& run, SubstitutionCounts const& counts);
/// Numbers of sites (loci) and usable sites; for other data than DNA the polymorphic ones too. All counts of changes
/// and sites are appended to the sample's row.
void print_site_numbers(SampleRun& run, TabRow& table_row);
/// Nucleotide composition in percent.
void print_composition(SampleRun& run, NucleotideFrequencies const& f);
/// The distance; appended to the sample's row too.
void print_distance_choice(SampleRun& run, TabRow& table_row);
void print_mean_differences(SampleRun& run);

/// Appends the mean differences and the diversity per site to the sample's row; -1 where they were not computed.
void write_diversity_values(SampleRun const& run, TabRow& table_row);

// --- Theta; each is also appended to the sample's row in the theta table ---
void print_theta(SampleRun& run, TabRow& table_row, std::string_view estimator, double value, double sd);
void print_theta_k(SampleRun& run, TabRow& table_row, bool limits);
/// The estimators that all copies being distinct leaves out.
void print_distinct_copies(SampleRun& run);
/// The estimators that the data type leaves out.
void print_theta_refusals(SampleRun& run);

}  // namespace tov
