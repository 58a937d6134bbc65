// Phylip files: one sequence a taxon, with names of ten columns.
//
// Format: Felsenstein 1989, Cladistics 5:164-166.
#pragma once

#include <iosfwd>

namespace tov {

class Project;

/// Turns a Phylip file into a project of one sample of standard data.
///
/// The first line gives the numbers of taxa and of characters. Sequences may stand on one line a taxon, or go on over
/// several lines, taxon after taxon or interleaved; the layout in which every taxon gets its characters is taken. The
/// characters are single ones, or words with blanks between them. Longer sequences are cut, shorter ones make the
/// project fail when it is read.
void phylip_to_project(std::istream& in, std::ostream& project);

/// Writes an opened project, all samples merged, one line a gene copy. The log tells what was merged.
/// @return false after a log line when the data have no loci.
bool write_phylip(Project& project, std::ostream& out);

}  // namespace tov
