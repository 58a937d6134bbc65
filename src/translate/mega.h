// Mega files: sequences behind '#' names, or a matrix of distances.
//
// Format: Kumar, Tamura and Nei 1994, Computer Applications in the Biosciences 10:189-191.
#pragma once

#include <iosfwd>
#include <string>

namespace tov {

class Project;

/// Turns a Mega file into a project of one sample.
///
/// Sequences become standard data; a name that comes again carries its sequence on (interleaved files). Comments in
/// brackets, commands ('!' to ';') and the file's own signs for missing data and identity are understood; numbers of
/// taxa and sites that it declares must be found. A triangle of distances becomes a distance matrix and a sample of
/// frequencies.
/// @param source  name of the file, told in the first line.
void mega_to_project(std::istream& in, std::string const& source, std::ostream& project);

/// Writes an opened project, all samples merged, one line a gene copy. The log tells what was merged. Brackets and
/// braces of names and title become '_'.
/// @return false after a log line when an allele isn't a single character, or a bracket or brace, or without loci.
bool write_mega(Project& project, std::ostream& out);

}  // namespace tov
