// Genepop files: genotypes of four or six digits, one individual after the other, samples parted by "Pop".
//
// Format: Raymond and Rousset 1995, Journal of Heredity 86:248-249.
#pragma once

#include <iosfwd>

namespace tov {

class Project;

/// Turns a Genepop file into a project of standard data of unknown phase.
///
/// The file is read twice. Its samples begin with a line "Pop", in any case; an individual is a line with a comma, and
/// goes on over the lines without one. A field of any other length than 4 or 6 digits, or than the fields of its locus
/// before, gives a comment and no allele, and makes the project fail when it is read; so do an individual with fewer
/// fields than the file names loci, and a sample without individuals. The fields of two or three digits that
/// write_genepop makes of haplotypes are among those of another length.
/// @param in       can be set back to its beginning.
/// @param diploid  two lines an individual; otherwise only the first allele of each field.
void genepop_to_project(std::istream& in, bool diploid, std::ostream& project);

/// Writes the samples of an opened project whose allele vectors are built.
///
/// Alleles become their number within the locus, from 1, in two digits; in three when a locus has more than 99.
/// @return false after a log line when the data have no loci, or a locus more than 999 alleles.
bool write_genepop(Project& project, std::ostream& out);

}  // namespace tov
