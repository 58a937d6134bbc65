// Zentara files: haplotype frequencies, one file a population, with a matrix of distances and a structure.
#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>

namespace tov {

class Project;

/// Opens a file by its path for reading; null when it can't be opened.
using FileOpener = std::function<std::unique_ptr<std::istream>(std::string const& path)>;

/// Where the parts of a Zentara file lie.
struct ZentaraSource {
    std::string directory;            ///< of the file, with its slash, or empty
    std::string matrix_file;          ///< serves when the file names no matrix; may be empty
    std::string structure_file;       ///< serves when the file has no structure; may be empty
    bool directory_in_names = false;  ///< the project lies elsewhere: a name of the matrix always has a directory
    FileOpener open;
};

/// Turns a Zentara file into a project of haplotype frequencies.
///
/// Lines "+++" part the file: the names of the populations, the name of the file with the distance matrix, and then the
/// groups of the structure, one a part. The data of a population are in the file of its name with the extension ".pop",
/// a line an identifier and a frequency; the matrix is a line of labels and the rows of the lower triangle.
void zentara_to_project(std::istream& in, ZentaraSource const& source, std::ostream& project);

/// Writes the main file into `out`, and a file for each population and "dist_mat.dis" into a directory.
///
/// @param directory  with its slash, or empty.
/// @return false after a log line for genotypic data, without a structure, or when a file can't be written.
bool write_zentara(Project& project, std::string const& directory, std::ostream& out);

}  // namespace tov
