// The batch tables of the distances between pairs of samples.
#pragma once

#include <string_view>

namespace tov {

struct PairwiseResults;
class Samples;

/// Appends one block a table that is open: the project file, the labels of the samples, and the matrix row by row.
///
/// Values are those of the document, in the default format, separated by tabs. All matrices are lower triangles with
/// their diagonal, but for the one of mean differences, which is square. An infinite value is "inf". The table of all
/// pairs has the P-values of a tested FST below it.
/// @param file  name of the project file, written in double quotes.
void write_pairwise_tables(PairwiseResults const& results, Samples const& samples, std::string_view file);

}  // namespace tov
